#include <opc/model/CoreProperties.hpp>

#include <opc/model/CorePropertyField.hpp>

#include <algorithm>

namespace opc::model {

CoreProperties::CoreProperties() = default;
CoreProperties::CoreProperties(const CoreProperties&) = default;
CoreProperties& CoreProperties::operator=(const CoreProperties&) = default;
CoreProperties::CoreProperties(CoreProperties&&) noexcept = default;
CoreProperties& CoreProperties::operator=(CoreProperties&&) noexcept = default;
CoreProperties::~CoreProperties() = default;

void CoreProperties::clear() {
    *this = CoreProperties();
}

bool CoreProperties::isEmpty() const {
    const auto& fields = CorePropertyField::all();
    return std::all_of(fields.begin(), fields.end(), [this](const CorePropertyField& field) {
        return field.visit(*this, [](const auto& value) { return !value; });
    });
}

} // namespace opc::model

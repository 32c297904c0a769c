#include "coreproperties/CorePropertiesLoss.hpp"

#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>

namespace opc::model {

namespace {

/// Values as a file keeps them.
/// @{
const CoreProperties::Text& kept(const CoreProperties::Text& text) {
    return text;
}

/// Empty if there is none.
std::u16string kept(const CoreProperties::Time& time) {
    return time ? convertTimeToString(*time) : std::u16string();
}

CoreProperties::KeywordList kept(const CoreProperties::Keywords& keywords) {
    CoreProperties::KeywordList list = keywords.value_or(CoreProperties::KeywordList());
    for (auto& [text, language] : list)
        text.erase(text.find_last_not_of(u" \t\n\v\f\r") + 1);
    return list;
}
/// @}

} // namespace

const CorePropertyField* findLostCoreProperty(const CoreProperties& written, const CoreProperties& read) {
    for (const CorePropertyField& field : CorePropertyField::all()) {
        const bool isKept = std::visit(
            [&](auto member) { return kept(written.*member) == kept(read.*member); }, field.member);
        if (!isKept)
            return &field;
    }
    return nullptr;
}

} // namespace opc::model

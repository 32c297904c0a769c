#include <opc/model/CoreProperties.hpp>

namespace opc::model {

CoreProperties::CoreProperties() = default;
CoreProperties::CoreProperties(const CoreProperties&) = default;
CoreProperties& CoreProperties::operator=(const CoreProperties&) = default;
CoreProperties::~CoreProperties() = default;

void CoreProperties::clear() {
    *this = CoreProperties();
}

bool CoreProperties::isEmpty() const {
    return !category && !contentStatus && !created && !creator && !description && !identifier && !keywords &&
           !language && !lastModifiedBy && !lastPrinted && !modified && !revision && !subject && !title &&
           !version;
}

} // namespace opc::model

#include "relationships/RelationshipTarget.hpp"

#include <bedrock/network/IRI.hpp>
#include <opc/model/URI.hpp>

#include <algorithm>

namespace opc::model {

std::u16string withSlashes(const std::u16string& target) {
    std::u16string result = target;
    std::replace(result.begin(), result.end(), u'\\', URI::getSlash());
    return result;
}

bool isIRITarget(const std::u16string& target) {
    try {
        const bedrock::network::IRI iri(withSlashes(target));
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace opc::model

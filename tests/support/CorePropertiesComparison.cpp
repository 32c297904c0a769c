#include "support/CorePropertiesComparison.hpp"

#include "coreproperties/CorePropertiesScanner.hpp"
#include "support/Outcome.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>

namespace opc::test {

using namespace model;

bool CorePropertiesComparison::isRecognised(const Bytes& document) {
    CoreProperties properties;
    std::size_t elements = 0;
    return scanCoreProperties(toText(document), properties, elements);
}

std::string CorePropertiesComparison::findDifference(const Bytes& document) {
    return isRecognised(document) ? differenceOf(read(document, true), read(document, false)) : std::string();
}

std::string CorePropertiesComparison::read(const Bytes& document, bool scanning) {
    CoreProperties properties;
    ByteArrayInAdaptor stream(document);
    const std::string failure = outcomeOf(
        [&] { scanning ? serializer.read(stream, properties) : serializer.parse(stream, properties); });
    if (!failure.empty())
        return failure;
    return model::CorePropertiesSerializer::serialize(properties);
}

} // namespace opc::test

#include "FuzzTarget.hpp"

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "support/CorePropertiesComparison.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Errors.hpp>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;

namespace {

CoreProperties read(CorePropertiesSerializer& serializer, const Bytes& bytes) {
    CoreProperties properties;
    ByteArrayInAdaptor stream(bytes);
    serializer.read(stream, properties);
    return properties;
}

Bytes write(CorePropertiesSerializer& serializer, const CoreProperties& properties) {
    const std::string document = serializer.compose(properties);
    Bytes bytes(document.begin(), document.end());
    Bytes byXerces;
    ByteArrayOutAdaptor other(byXerces);
    serializer.writeByXerces(properties, other);
    require(bytes == byXerces, "properties are written as Xerces writes them");
    return bytes;
}

void checkText(const CoreProperties::Text& left, const CoreProperties::Text& right) {
    require(left.has_value() == right.has_value(), "a field that was written is read");
    if (left)
        requireEqual(*left, *right, "a field has the text that was written");
}

/// A file keeps whole seconds.
void checkTime(const CoreProperties::Time& left, const CoreProperties::Time& right) {
    require(left.has_value() == right.has_value(), "a time that was written is read");
    if (left)
        requireEqual(convertTimeToString(*left), convertTimeToString(*right),
                     "a time is read as it was written");
}

void checkSame(const CoreProperties& left, const CoreProperties& right) {
    checkText(left.getCategory(), right.getCategory());
    checkText(left.getContentStatus(), right.getContentStatus());
    checkTime(left.getCreated(), right.getCreated());
    checkText(left.getCreator(), right.getCreator());
    checkText(left.getDescription(), right.getDescription());
    checkText(left.getIdentifier(), right.getIdentifier());
    require(left.getKeywords() == right.getKeywords(), "the keywords that were written are read");
    checkText(left.getLanguage(), right.getLanguage());
    checkText(left.getLastModifiedBy(), right.getLastModifiedBy());
    checkTime(left.getLastPrinted(), right.getLastPrinted());
    checkTime(left.getModified(), right.getModified());
    checkText(left.getRevision(), right.getRevision());
    checkText(left.getSubject(), right.getSubject());
    checkText(left.getTitle(), right.getTitle());
    checkText(left.getVersion(), right.getVersion());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CorePropertiesSerializer serializer; // compiling its schemas takes longer than reading
    static opc::test::CorePropertiesComparison comparison;
    const Bytes document(data, data + size);
    const std::string difference = comparison.findDifference(document);
    require(difference.empty(), ("scanner and parser find the same: " + difference).c_str());
    CoreProperties properties;
    if (!attempt<InvalidPartContent>([&] { properties = read(serializer, document); }))
        return 0;
    const Bytes written = write(serializer, properties);
    const CoreProperties again = read(serializer, written);
    checkSame(properties, again);
    require(write(serializer, again) == written, "what was read is written as it was");
    return 0;
}

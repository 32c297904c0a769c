#include "FuzzTarget.hpp"

#include "coreproperties/CorePropertiesSerializer.hpp"
#include "support/CorePropertiesComparison.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>
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
    const std::string document = serializer.write(properties);
    require(document == CorePropertiesSerializer::serialize(properties),
            "properties are written as Xerces writes them");
    return Bytes(document.begin(), document.end());
}

/// Values as a file keeps them, in whole seconds.
/// @{
const CoreProperties::Text& kept(const CoreProperties::Text& text) {
    return text;
}
const CoreProperties::Keywords& kept(const CoreProperties::Keywords& keywords) {
    return keywords;
}
boost::optional<std::u16string> kept(const CoreProperties::Time& time) {
    return time ? boost::make_optional(convertTimeToString(*time)) : boost::none;
}
/// @}

void checkSame(const CoreProperties& written, const CoreProperties& read) {
    for (const CorePropertyField& field : CorePropertyField::all())
        require(std::visit([&](auto member) { return kept(written.*member) == kept(read.*member); },
                           field.member),
                (std::string(field.name()) + " is read as it was written").c_str());
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

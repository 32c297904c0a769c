#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/CoreProperties.hpp>

#include <cstddef>
#include <memory>
#include <string>

namespace opc::model {

/// Reads and writes the XML document in the core properties part. Each object serves one operation. A document in the
/// form that most programs write is scanned without Xerces. All others go to a validating parser, which compiles five
/// schemas first and needs most of a millisecond for that.
class CorePropertiesSerializer {
public:
    /// @param budget what the documents of the package may use together
    explicit CorePropertiesSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    CorePropertiesSerializer(const CorePropertiesSerializer&) = delete;
    CorePropertiesSerializer& operator=(const CorePropertiesSerializer&) = delete;

    /// Replaces `properties` by the values of the document. A time that `ptime` can't hold leaves its field absent.
    /// @throws InvalidXMLSchema    a schema of the library doesn't load
    /// @throws InvalidPartContent  the document isn't valid, and `properties` haven't changed; or it breaks one of
    ///                             the rules [M4.2] to [M4.5], and they are empty
    void read(InputStream& stream, CoreProperties& properties);

    /// Reads with the validating parser alone.
    void parse(InputStream& stream, CoreProperties& properties);

    /// Makes the document that holds the properties, and reads it again to check that it does.
    /// @throws InvalidPartContent  a document can't hold a value, or the value read again differs
    std::string write(const CoreProperties& properties);

    /// The document as Xerces writes it, without further checks.
    /// @throws InvalidPartContent  a text that XML can't hold
    static std::string serialize(const CoreProperties& properties);

private:
    void read(InputStream& stream, CoreProperties& properties, std::size_t largestScanned);
    static void serialize(const CoreProperties& properties, OutputStream& stream);

    std::shared_ptr<DocumentBudget> budget;
};

} // namespace opc::model

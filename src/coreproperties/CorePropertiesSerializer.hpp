#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/CoreProperties.hpp>

#include <cstddef>
#include <memory>
#include <string>

namespace opc::model {

/// Reads and writes the XML document in the core properties part. Made for one operation and dropped after
/// it. A document in the form that most programs write is scanned; any other goes to a validating parser, which
/// compiles five schemas first, and takes most of a millisecond for it. Xerces isn't woken before that.
class CorePropertiesSerializer {
public:
    /// @param budget what the documents of the package may take, together
    explicit CorePropertiesSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>());
    CorePropertiesSerializer(const CorePropertiesSerializer&) = delete;
    CorePropertiesSerializer& operator=(const CorePropertiesSerializer&) = delete;
    ~CorePropertiesSerializer();

    /// Puts what the document says in the place of what `properties` hold. A time that `ptime` can't hold
    /// leaves its field absent.
    /// @throws InvalidXMLSchema    a schema of the library doesn't load
    /// @throws InvalidPartContent  the document isn't valid, and `properties` are as they were; or it breaks
    ///                             one of the rules [M4.2] to [M4.5], and they are empty
    void read(InputStream& stream, CoreProperties& properties);

    /// The same by the validating parser alone, whatever the form.
    void parse(InputStream& stream, CoreProperties& properties);

    /// The document that holds the properties, which has been read again to see that it does.
    /// @throws InvalidPartContent  a value that a document can't hold, or that doesn't come back as it is
    std::string write(const CoreProperties& properties);

    /// The document as Xerces writes it, whatever the values, without a further look.
    /// @throws InvalidPartContent  a text that XML can't hold
    static std::string serialize(const CoreProperties& properties);

private:
    struct Parser;

    void read(InputStream& stream, CoreProperties& properties, std::size_t largestScanned);
    void parse(InputStream& stream, CoreProperties& properties, DocumentShare& share);
    static void serialize(const CoreProperties& properties, OutputStream& stream);

    std::shared_ptr<DocumentBudget> budget;
    std::unique_ptr<Parser> parser; // made by the first document that isn't scanned
};

} // namespace opc::model

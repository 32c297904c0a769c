#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace opc::model {

class ContentType;
class ContentTypeMap;
struct ScannedContentTypes;

/// Reads and writes the XML document in the content types stream. One in the plain form that nearly all have is
/// scanned, and Xerces not woken for it; any other goes to a validating parser.
class ContentTypeSerializer {
public:
    /// @param budget  what the documents of the package may take, together
    explicit ContentTypeSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>())
        : budget(std::move(budget)) {}

    /// Replaces what `map` holds. Of entries with the same key the first counts.
    /// @throws InvalidPartContent  the document isn't valid
    /// @throws InvalidContentType, InvalidURI
    void read(ContentTypeMap& map, InputStream& stream) const;

    /// The same by the validating parser alone, whatever the form.
    void parse(ContentTypeMap& map, InputStream& stream) const;

    /// Whether a content type comes back from a document as it is, parameter by parameter.
    bool canHold(const ContentType& contentType) const;

    /// Writes the entries that count: all `Override`, and each `Default` that a part rests on.
    /// @throws InvalidPartContent
    void write(const ContentTypeMap& map, OutputStream& stream) const;

    /// The document as Xerces writes it, whatever the values, without a further check.
    /// @throws InvalidPartContent  a text that XML can't hold
    static std::string serialize(const ContentTypeMap& map);

private:
    void read(ContentTypeMap& map, InputStream& stream, std::size_t largestScanned) const;
    static void takeScanned(ContentTypeMap& map, const ScannedContentTypes& scanned,
                            std::string_view document);
    static void parse(ContentTypeMap& map, InputStream& stream, DocumentShare& share);
    static void serialize(const ContentTypeMap& map, OutputStream& stream);

    std::shared_ptr<DocumentBudget> budget;
};

} // namespace opc::model

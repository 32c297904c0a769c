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

/// Reads and writes the XML document in the content types stream. A document in the plain form, which nearly all
/// packages have, is scanned without Xerces. All others go to a validating parser.
class ContentTypeSerializer {
public:
    /// @param budget  what the documents of the package may use together
    explicit ContentTypeSerializer(
        std::shared_ptr<DocumentBudget> budget = std::make_shared<DocumentBudget>())
        : budget(std::move(budget)) {}

    /// Replaces the entries of `map`. If several entries have the same key, the first one counts.
    /// @throws InvalidPartContent  the document isn't valid
    /// @throws InvalidContentType, InvalidURI
    void read(ContentTypeMap& map, InputStream& stream) const;

    /// Reads with the validating parser alone.
    void parse(ContentTypeMap& map, InputStream& stream) const;

    /// Whether a content type is read from a document exactly as it was written, with all its parameters.
    bool canHold(const ContentType& contentType) const;

    /// Writes all `Override` entries, and each `Default` that a part uses.
    /// @throws InvalidPartContent
    void write(const ContentTypeMap& map, OutputStream& stream) const;

    /// The document as Xerces writes it, without further checks.
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

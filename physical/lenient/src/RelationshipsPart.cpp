#include "RelationshipsPart.hpp"

#include "BytesStream.hpp"
#include "MendedDocument.hpp"

#include <opc/core/Exception.hpp>

namespace opc::physical::lenient {

namespace {

/// A document without its prefixes. Nothing if it has none, or can't be read: that is for the model to say.
std::optional<Bytes> removePrefixes(const Bytes& document) {
    try {
        MendedDocument mended(document);
        const model::XercesString namespaceURI(
            u"http://schemas.openxmlformats.org/package/2006/relationships");
        if (mended.removePrefixes(namespaceURI))
            return mended.toBytes();
    } catch (const Exception&) {
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::u16string RelationshipsPart::getContentType() const {
    const std::u16string contentType = part.getContentType();
    return contentType.empty() ? CONTENT_TYPE : contentType;
}

interfaces::IPhysicalInputStream* RelationshipsPart::getInputStream() {
    interfaces::IPhysicalInputStream* const stream = part.getInputStream();
    if (stream == nullptr)
        return nullptr; // for the model to refuse
    const auto document = readDocument(*stream);
    if (document && mayHavePrefixes(*document)) {
        std::optional<Bytes> text = removePrefixes(*document);
        if (text && text->size() <= budget.left) {
            budget.left -= text->size();
            return mended.emplace_back(std::make_unique<BytesStream>(std::move(*text))).get();
        }
    }
    stream->close();
    stream->open();
    return stream;
}

} // namespace opc::physical::lenient

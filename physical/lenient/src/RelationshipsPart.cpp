#include "RelationshipsPart.hpp"

#include "BytesStream.hpp"
#include "ReadStream.hpp"

#include <opc/core/Exception.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <string>
#include <utility>

namespace opc::physical::lenient {

namespace {

Bytes noRelationships() {
    using namespace model::vocabulary::relationships;
    std::string document;
    document.append("<")
        .append(RELATIONSHIPS)
        .append(" xmlns=\"")
        .append(model::vocabulary::relationships::NAMESPACE)
        .append("\"/>");
    return Bytes(document.begin(), document.end());
}

} // namespace

std::u16string RelationshipsPart::getContentType() const {
    const std::u16string contentType = part.getContentType();
    return contentType.empty() ? CONTENT_TYPE : contentType;
}

interfaces::IPhysicalInputStream* RelationshipsPart::getInputStream() {
    found.clear();
    keptIDs.clear();
    hasMore = false;
    defect.clear();
    wasRead = true;
    try {
        return giveReadable();
    } catch (const Exception& e) {
        hasMore = true;
        defect = std::string("a change would lose what is in the document, which can't be read: ") + e.what();
        found.push_back({"M1.20",
                         {},
                         0,
                         std::string("can't be read: ") + e.what(),
                         "taken to have no relationships, and kept in the file",
                         true});
        return give(noRelationships());
    }
}

interfaces::IPhysicalInputStream* RelationshipsPart::giveReadable() {
    interfaces::IPhysicalInputStream* const stream = part.getInputStream();
    if (stream == nullptr)
        return nullptr; // the model refuses it
    auto bytes = readDocument(*stream);
    if (!bytes) {
        stream->close();
        stream->open();
        return stream;
    }
    if (!isForModel(*bytes)) {
        const RelationshipsDocument document(*bytes, source);
        Bytes view = document.view();
        if (view.size() <= shared.bytesLeft) {
            shared.bytesLeft -= view.size();
            found = document.findings();
            keptIDs = document.keptIDs();
            hasMore = document.keepsMore();
            return give(std::move(view));
        }
    }
    return given.emplace_back(std::make_unique<ReadStream>(*stream, std::move(*bytes))).get();
}

/// Whether the model can read the document itself, or must refuse it.
bool RelationshipsPart::isForModel(const Bytes& document) const {
    const std::string_view text(reinterpret_cast<const char*>(document.data()), document.size());
    if (model::RelationshipRules::isPlain(text))
        return source == RelationshipsDocument::Source::Part || !mayRepeatCoreProperties(text);
    return hasTooMuchMarkup(document) || hasDocumentType(document);
}

interfaces::IPhysicalInputStream* RelationshipsPart::give(Bytes document) {
    return given.emplace_back(std::make_unique<BytesStream>(std::move(document))).get();
}

interfaces::IPhysicalOutputStream* RelationshipsPart::getOutputStream() {
    if (output && output->hasFailed()) {
        output->restart();
        return output.get();
    }
    const auto old = readDocument(*part.getInputStream());
    if (!old || hasTooMuchMarkup(*old))
        return part.getOutputStream(); // the model has read all of it
    output = std::make_unique<RelationshipsOutput>(part, *old, source);
    return output.get();
}

const std::vector<RelationshipsFinding>& RelationshipsPart::findings() {
    if (!wasRead)
        getInputStream();
    return found;
}

} // namespace opc::physical::lenient

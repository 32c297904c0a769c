#pragma once

#include "DocumentText.hpp"
#include "Markup.hpp"

#include <opc/physical/LenientExport.hpp>

#include <optional>

namespace opc::interfaces {
class IPhysicalInputStream;
}

namespace opc::physical::lenient {

/// All bytes of a stream, which is open at its start; nothing if there are more than the memory limit allows.
std::optional<Bytes> readDocument(interfaces::IPhysicalInputStream& stream);

/// Whether a document has so many elements and attributes that their list would take too much memory.
bool hasTooMuchMarkup(const Bytes& document);

/// Whether a document begins with a document type, in any encoding that extends ASCII.
bool hasDocumentType(const Bytes& document);

/// A well-formed document, with its text and its elements.
class OPC_LENIENT_EXPORT Document {
public:
    /// @throws Exception  the document isn't well-formed by the model's own rules, or has too much markup
    explicit Document(const Bytes& bytes);

    const DocumentText& text() const { return decoded; }
    const Markup& markup() const { return found; }

private:
    const DocumentText decoded;
    const Markup found;
};

} // namespace opc::physical::lenient

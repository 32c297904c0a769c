#pragma once

#include "subject/Subject.hpp"

#include <opc/model/XmlEvents.hpp>

#include <string_view>
#include <vector>

namespace opc::inspection {

constexpr std::u16string_view MARKUP_COMPATIBILITY =
    u"http://schemas.openxmlformats.org/markup-compatibility/2006";
constexpr std::u16string_view XML_NAMESPACE = u"http://www.w3.org/XML/1998/namespace";
constexpr std::u16string_view SCHEMA_INSTANCE = u"http://www.w3.org/2001/XMLSchema-instance";

/// What a listener throws when a document has more than it can hold: the reading ends, and the state says so.
struct BeyondLimit {
    const char* what;
};

/// Whether a message of the reader refuses a document that may be valid, but is built to exhaust readers.
bool isLimit(std::string_view message);

/// Reads a document as far as it can be read, and notes in its state what all documents of the package's own must heed,
/// but for faults. Throws nothing but `std::bad_alloc`.
/// @param items   of the document, at least one
/// @param events  gets all of it, and throws nothing but `BeyondLimit`
void readDocument(const Archive& archive, const std::vector<const ArchiveItem*>& items, DocumentState& state,
                  model::XmlEvents& events);

/// The same for a document from anywhere.
/// @param content  ready to read
void readDocument(InputStream& content, DocumentState& state, model::XmlEvents& events);

} // namespace opc::inspection

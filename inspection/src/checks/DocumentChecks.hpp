#pragma once

#include "checks/Findings.hpp"
#include "subject/Subject.hpp"

#include <string_view>

namespace opc::inspection {

/// What a document of the package's own must be, whatever its kind: in UTF-8 or UTF-16, without a document type, and valid
/// by its schema.
/// @param place         the part, or the item
/// @param namespaceURI  of the root
/// @return whether the document can be read to its end, and has that root
bool checkDocument(const DocumentState& document, const Place& place, std::string_view namespaceURI,
                   std::string_view root, Findings& findings);

/// Whether it declares another encoding than UTF-8 and UTF-16.
bool isWrongEncoding(const DocumentState& document);

/// Tells of a document in a form that is valid, but that not every reader sees through.
void checkForm(const DocumentState& document, const Place& place, Findings& findings);

/// The place in a document.
Place placeAt(Place document, std::uint64_t line, std::uint64_t column);

} // namespace opc::inspection

#pragma once

#include "RelationshipsDocument.hpp"

#include <optional>

namespace opc::physical::lenient {

/// Changes a document in its own text so that its relationships are those of another one, which the model has written.
/// What the document has beside relationships stays.
/// @return nothing if they are already
std::optional<Bytes> editRelationships(const RelationshipsDocument& document, const Bytes& written);

} // namespace opc::physical::lenient

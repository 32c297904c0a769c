#pragma once

#include "RelationshipsDocument.hpp"

#include <optional>

namespace opc::physical::lenient {

/// Changes a document in its own text so that it has the relationships of another one, which the model has written.
/// Everything else in the document stays.
/// @return nothing if it has them already
std::optional<Bytes> editRelationships(const RelationshipsDocument& document, const Bytes& written);

} // namespace opc::physical::lenient

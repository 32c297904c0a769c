#pragma once

#include <opc/model/CoreProperties.hpp>

#include <string_view>

namespace opc::model {

/// Recognises core properties in the form that most programs give them, at a small part of the parser's cost.
///
/// In this form the prefixes are the usual ones, all declared by the root, and texts hold no references. As with plain documents (`xml/PlainDocument.hpp`), what is recognised must be valid, and mean the same to
/// the parser: every other form is left to it, and every doubt and error.
/// @param found  takes what the document says in place of what it held
/// @return whether the document is recognised. If not, `found` doesn't count
bool scanCoreProperties(std::string_view document, CoreProperties& found);

} // namespace opc::model

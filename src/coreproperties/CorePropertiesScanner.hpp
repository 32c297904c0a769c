#pragma once

#include <opc/model/CoreProperties.hpp>

#include <cstddef>
#include <string_view>

namespace opc::model {

/// Recognises core properties in the form that most programs give them, at a small part of the parser's cost.
///
/// In this form the root declares all prefixes, which are the usual ones; names of the core properties' own namespace
/// may have none. As with plain documents (`xml/PlainDocument.hpp`), what is recognised must be valid, and mean the
/// same to the parser: every other form is left to it, and every doubt and error.
/// @param found     takes what the document says in place of what it held
/// @param elements  set to how many there are
/// @return whether the document is recognised. If not, neither counts
bool scanCoreProperties(std::string_view document, CoreProperties& found, std::size_t& elements);

} // namespace opc::model

#pragma once

#include <opc/model/CoreProperties.hpp>

#include <cstddef>
#include <string_view>

namespace opc::model {

/// Recognises core properties in the form that most programs write, in a fraction of the parser's time.
///
/// In this form the root declares all prefixes, which are the usual ones; names in the core properties' own namespace
/// may have no prefix. As with plain documents (`xml/PlainDocument.hpp`), whatever is recognised is valid and means
/// the same to the parser. Every other form, every doubt and every error is left to the parser.
/// @param found     receives the values; its old content is lost
/// @param elements  set to how many there are
/// @return whether the document is recognised. If not, ignore both results
bool scanCoreProperties(std::string_view document, CoreProperties& found, std::size_t& elements);

} // namespace opc::model

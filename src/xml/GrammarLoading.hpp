#pragma once

#include "xml/EmbeddedSchemas.hpp"

#include <xercesc/util/XercesDefs.hpp>

#include <initializer_list>

XERCES_CPP_NAMESPACE_BEGIN
class DOMLSParser;
class Grammar;
XERCES_CPP_NAMESPACE_END

namespace opc::model {

/// Caches the grammars of `schemas` in `parser`, in their order, and makes the parser use them. The parser must be
/// new, with all other parameters already set.
/// @throws InvalidXMLSchema  a schema doesn't load
void loadGrammars(xercesc::DOMLSParser* parser, std::initializer_list<const EmbeddedSchema*> schemas);

/// The same for one schema that imports nothing, without a check for errors.
/// @return the grammar, which belongs to the parser; null after an error
xercesc::Grammar* loadGrammarUnchecked(xercesc::DOMLSParser* parser, const EmbeddedSchema& schema);

} // namespace opc::model

#pragma once

#include "xml/IdleParsers.hpp"

namespace opc::model {

/// The parsers that have the schema of content types streams.
IdleParsers& contentTypesParsers();

/// Those that have the schema of relationships parts.
IdleParsers& relationshipsParsers();

IdleParsers& parsersWithoutSchema();

} // namespace opc::model

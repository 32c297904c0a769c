#pragma once

#include "xml/IdleParsers.hpp"

namespace opc::model {

/// The parsers that have the schema of content types streams.
IdleParsers& contentTypesParsers();

} // namespace opc::model

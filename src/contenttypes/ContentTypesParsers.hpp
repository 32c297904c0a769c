#pragma once

#include "xml/IdleParsers.hpp"

namespace opc::model {

/// Those that have the schema of content types streams.
IdleParsers& contentTypesParsers();

} // namespace opc::model

#pragma once

#include <opc/core/PrintableText.hpp>

namespace opctool {

using opc::escapedJSON;
using opc::linesWithoutControlCharacters;
using opc::withoutControlCharacters;

} // namespace opctool

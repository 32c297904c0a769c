#pragma once

#include <opc/core/OutputStream.hpp>

#include <string_view>

namespace opc::model {

/// Writes the bytes of a whole document, and flushes. The rest is dropped once the stream says that it is done.
void writeDocument(std::string_view document, OutputStream& stream);

} // namespace opc::model

#pragma once

#include <string_view>

namespace opc::inspection {

/// Whether a format of this name, as `Subject::format` gives it, belongs to Word, Excel, PowerPoint or Visio.
bool isOfficeFormat(std::string_view format);

/// Whether documents of this format can have macros.
bool allowsMacros(std::string_view format);

} // namespace opc::inspection

#pragma once

#include <string_view>

namespace opc::inspection {

/// Whether a format of this name, as `Subject::format` gives it, belongs to Word, Excel, PowerPoint or Visio.
bool isOfficeFormat(std::string_view format);

/// Whether documents of this format can have macros.
bool allowsMacros(std::string_view format);

/// Whether a content type is one that office programs have for their parts.
/// @param mediaType  in lower case
bool isOfficeMediaType(std::string_view mediaType);

/// Whether a content type is that of a main part of a document or template, with macros or without.
/// @param mediaType  in lower case
bool isMainType(std::string_view mediaType);

} // namespace opc::inspection

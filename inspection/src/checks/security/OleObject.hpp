#pragma once

#include <string>
#include <string_view>

namespace opc::inspection {

/// The name of the file that an OLE object holds as a whole (a stream `Ole10Native`), such as `invoice.exe`.
/// @param content  the first bytes of the object
/// @return empty if there is none, or it lies behind those bytes
std::string fileNameInObject(std::string_view content);

/// Whether an OLE object has a VBA project in its folders.
/// @param content  as above
bool holdsMacros(std::string_view content);

/// Whether a file of this name is run when it is opened, by its extension.
bool isRunnable(std::string_view fileName);

} // namespace opc::inspection

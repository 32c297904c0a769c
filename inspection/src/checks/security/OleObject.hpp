#pragma once

#include "content/ByteSearch.hpp"

#include <string>
#include <string_view>

namespace opc::inspection {

/// Looks into an OLE object while it comes.
class OleObject {
public:
    void begin();
    void add(std::string_view piece);

    /// The name of the file that the object holds as a whole (a stream `Ole10Native`), such as `invoice.exe`; of several,
    /// the first that is run when it is opened. Empty if there is none.
    const std::string& fileName() const { return name; }

    /// Whether it has a VBA project in its folders.
    bool holdsMacros() const { return macros.isFound(); }

private:
    void look(std::string_view content);

    ByteSearch macros{{std::string_view("_\0V\0B\0A\0_\0P\0R\0O\0J\0E\0C\0T\0", 24)}}; // names are in UTF-16
    std::string name;
    std::string last; // the end of the last piece
};

/// Whether a file of this name is run when it is opened, by its extension.
bool isRunnable(std::string_view fileName);

} // namespace opc::inspection

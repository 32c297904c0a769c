#pragma once

#include <opc/editing/Export.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace opc::editing::archive {

/// Whether some system means a device by the name, whatever its extension: `con.xml` is a console.
bool isDeviceName(std::string_view name);

/// Names the files for the items of an archive, so that every usual file system and Git can hold them beside each other.
///
/// A file has the name of its item, unless that leads out of the folder, has characters or words that some system gives a
/// meaning, is too long, or differs from an earlier one in case or accents alone. Then it gets a similar name.
class OPC_EDITING_EXPORT FileNames {
public:
    struct Name {
        std::string path; ///< relative, with slashes
        std::string why;  ///< it differs from the item's name; empty if it doesn't
    };

    /// @param item  its name in UTF-8; names may repeat
    Name add(std::string_view item);

private:
    /// A file or folder in a folder, by the name that all systems see.
    using Key = std::pair<std::size_t, std::u16string>;

    struct Place {
        std::string name;
        std::size_t folder; ///< its number; 0 for a file
    };

    std::size_t enter(std::size_t folder, const std::string& segment, Name& result);
    std::string freeName(std::size_t folder, const std::string& segment);

    std::map<Key, Place> places;
    std::map<Key, Place> besides;       ///< folders for those whose names files have
    std::map<Key, std::size_t> numbers; ///< the last number that was tried for a name
    std::size_t folders = 0;            ///< the top is folder 0
};

} // namespace opc::editing::archive

#pragma once

#include <opc/editing/Export.hpp>

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace opc::editing::archive {

/// The files that describe an unpacked package.
constexpr char DESCRIPTION_FILE[] = ".opctool/tree.json";
constexpr char ORIGINAL_FILE[] = ".opctool/original";

/// What a tree of files doesn't tell by itself. It may come from strangers: whoever uses it compares it with the files and
/// with the original. Texts are UTF-8.
struct OPC_EDITING_EXPORT TreeDescription {
    static constexpr std::size_t LARGEST = 256U << 20; ///< in bytes

    /// An item of the original.
    struct Item {
        std::size_t number; ///< its place in the directory
        std::string name;
        std::string file; ///< its path; empty if it has none
    };

    std::vector<Item> renamed; ///< those whose files have other names
    std::vector<Item> left;    ///< those that have content and no file
    std::set<std::string>
        faults; ///< fingerprints of the errors that the package had, if the original isn't kept

    std::string write() const;

    /// @param place  how messages name the document
    /// @throws opc::Exception  it isn't the description of a tree, or one of a later version
    static TreeDescription read(std::string_view document, const std::string& place);
};

} // namespace opc::editing::archive

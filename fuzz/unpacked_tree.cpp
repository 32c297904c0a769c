// The names of files for the items of an archive, and the description of a folder: each line of the input is the name of an
// item, and all of it is a description.
#include "FuzzTarget.hpp"

#include "archive/FileNames.hpp"
#include "archive/TreeDescription.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/inspection/FoldedName.hpp>

#include <set>
#include <string>
#include <string_view>

namespace {

using namespace opc::fuzz;
using opc::editing::archive::FileNames;
using opc::editing::archive::TreeDescription;

/// Whether the path stays in its folder, and is neither of Git nor of the tool.
bool isSafe(std::string_view path) {
    for (bool isFirst = true; !path.empty(); isFirst = false) {
        const std::string_view segment = path.substr(0, path.find('/'));
        if (segment.empty() || segment.back() == '.' || segment.substr(0, 4) == ".git" ||
            segment.find_first_of(std::string_view("\\:\0", 3)) != std::string_view::npos ||
            (isFirst && segment == ".opctool"))
            return false;
        if (segment.size() == path.size())
            return true;
        path.remove_prefix(segment.size() + 1);
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FileNames names;
    std::set<std::u16string> seen;
    for (const Bytes& line : split(data, size, '\n')) {
        const std::string item = opc::toUDEString(toText(line));
        const FileNames::Name name = names.add(item);
        require(isSafe(name.path), "a file stays in its folder");
        require(name.why.empty() == (name.path == item), "another name has a reason");
        require(seen.insert(opc::inspection::foldedName(name.path)).second, "no system confuses two files");
    }
    try {
        const std::string_view input(reinterpret_cast<const char*>(data), size);
        const TreeDescription read = TreeDescription::read(input, "input");
        require(TreeDescription::read(read.write(), "output").write() == read.write(),
                "what is written is read back");
    } catch (const opc::Exception&) {
        return 0; // no description
    }
    return 0;
}

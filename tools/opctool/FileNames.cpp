#include "FileNames.hpp"

#include "RepeatableOption.hpp"

#include <opc/core/Exception.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace opctool {

void addSelectionOptions(CLI::App& command, FileSelection& selection) {
    const char* const group = "Many packages";
    CLI::Option* folders =
        addRepeatable(&command, "-r,--recursive", selection.folders,
                      "Read the packages in a folder and the folders in it, which the extensions of known "
                      "formats tell");
    folders->type_name("DIR")->group(group);
    folders->check([](const std::string& folder) { // an option would pass for one
        return folder.compare(0, 2, "--") == 0 ? "a folder is missing in front of " + folder : "";
    });
    CLI::Option* extensions = addRepeatable(&command, "--ext", selection.extensions,
                                            "With -r: read the files with this extension instead");
    extensions->type_name("EXT")->delimiter(',')->needs(folders)->group(group);
    command.add_flag("--all-files", selection.allFiles, "With -r: read every file")
        ->needs(folders)
        ->excludes(extensions)
        ->group(group);
    CLI::Option* lists =
        addRepeatable(&command, "--files-from", selection.lists,
                      "Read the packages that a file names, one a line; - is standard input");
    lists->type_name("FILE")->group(group);
    command.add_flag("-0,--null", selection.endWithNull, "In that file, names end with a NUL character")
        ->needs(lists)
        ->group(group);
}

FileNames::FileNames(const FileSelection& selection) : selection(selection) {
    const auto countInput = [](const std::vector<std::string>& names) {
        return std::count(names.begin(), names.end(), "-");
    };
    if (countInput(selection.packages) + countInput(selection.lists) > 1)
        throw CLI::ValidationError("-", "standard input can be read only once");
}

FileNames::~FileNames() = default;

std::optional<FoundFile> FileNames::next() {
    if (packages < selection.packages.size()) {
        const std::string& name = selection.packages[packages++];
        std::error_code ignored; // reading the file tells it
        return FoundFile{name, !selection.takesFolders && std::filesystem::is_directory(name, ignored)
                                   ? "is a folder; -r reads the packages in it"
                                   : ""};
    }
    for (;;) {
        if (walk)
            if (auto found = walk->next())
                return found;
        if (folders == selection.folders.size())
            break;
        std::vector<std::string> extensions = selection.extensions;
        for (std::string& extension : extensions)
            extension.erase(0, extension.find_first_not_of('.'));
        walk = std::make_unique<FolderWalk>(
            selection.folders[folders++], extensions.empty() ? opc::scanning::knownExtensions() : extensions,
            selection.allFiles);
    }
    walk.reset();
    return nextOfLists();
}

std::optional<FoundFile> FileNames::nextOfLists() {
    for (;;) {
        std::string name;
        while (list != nullptr && std::getline(*list, name, selection.endWithNull ? '\0' : '\n')) {
            if (!selection.endWithNull && !name.empty() && name.back() == '\r')
                name.pop_back(); // a file with such a name needs -0
            if (!name.empty())   // in a list, "-" is a file of that name
                return FoundFile{name == "-" ? "./-" : name, {}};
        }
        const bool isBroken = list != nullptr && list->bad();
        list = nullptr;
        if (isBroken)
            return FoundFile{selection.lists[lists - 1], "can't read the list"};
        if (lists == selection.lists.size())
            return std::nullopt;
        if (!openList(selection.lists[lists++]))
            return FoundFile{selection.lists[lists - 1], "can't open the list"};
    }
}

bool FileNames::openList(const std::string& name) {
    if (name == "-") {
        list = &std::cin;
        return true;
    }
    listFile = std::make_unique<std::ifstream>(name, std::ios::binary);
    list = *listFile ? listFile.get() : nullptr;
    return list != nullptr;
}

} // namespace opctool

#include "ArchiveFile.hpp"
#include "Commands.hpp"
#include "Files.hpp"
#include "OpenedPackage.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/core/Text.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string_view>

namespace opctool {

namespace {

using opc::inspection::Archive;
using opc::inspection::ArchiveItem;
using opc::inspection::ItemKind;

bool equalsCaseless(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

bool isContentTypes(const std::string& name) {
    return equalsCaseless(name, "[Content_Types].xml") || equalsCaseless(name, "/[Content_Types].xml");
}

bool isRelationshipsPart(const std::string& name) {
    const std::size_t file = name.rfind('/') + 1; // 0 if there is no slash
    constexpr std::string_view FOLDER = "/_rels/";
    constexpr std::string_view EXTENSION = ".rels";
    return file >= FOLDER.size() && name.size() - file >= EXTENSION.size() &&
           equalsCaseless(std::string_view(name).substr(file - FOLDER.size(), FOLDER.size()), FOLDER) &&
           equalsCaseless(std::string_view(name).substr(name.size() - EXTENSION.size()), EXTENSION);
}

bool hasContent(const ArchiveItem& item, const std::string& name) {
    const bool isPiece = item.kind == ItemKind::Piece;
    if (isContentTypes(name))
        return item.kind == ItemKind::ContentTypes || (isPiece && item.partName.empty());
    return (isPiece || item.kind == ItemKind::Relationships) && equalsCaseless(item.partName, name);
}

/// The item with that content, or the pieces that hold it.
std::vector<const ArchiveItem*> findItems(const Archive& archive, const std::string& name) {
    std::vector<const ArchiveItem*> items;
    for (const ArchiveItem& item : archive.items())
        if (hasContent(item, name) && (items.empty() || item.kind == ItemKind::Piece))
            items.push_back(&item);
    std::sort(items.begin(), items.end(), [](const ArchiveItem* left, const ArchiveItem* right) {
        return left->pieceNumber < right->pieceNumber;
    });
    return items;
}

/// Content types and relationships are no parts for the model, and are shown as they lie, also where it can't read them.
void catItem(FileRun& run, const std::string& name) {
    const Archive archive = openArchive(run);
    const std::vector<const ArchiveItem*> items = findItems(archive, name);
    if (items.empty())
        throw opc::Exception("There is no item " + name,
                             make_error_code(boost::system::errc::no_such_file_or_directory));
    opc::StreamHelper::copyStreamToStream(*archive.open(items), run.out());
}

void catPart(FileRun& run, const opc::model::PartName& name) {
    OpenedPackage package(run, opc::interfaces::OpenMode::ReadOnly);
    opc::StreamHelper::copyStreamToStream(package->getPart(name).getInputStream(), run.out());
}

void declareCat(CLI::App& command) {
    const auto part = std::make_shared<std::string>();
    const auto files = addFile(command, CAT);
    command.add_option("PART", *part, "A part name, or [Content_Types].xml")->required()->type_name("");
    command.callback([files, part] {
        if (isContentTypes(*part) || isRelationshipsPart(*part))
            return files->run([&part](FileRun& run) { catItem(run, *part); });
        const std::u16string name = fromArgument(*part);
        files->run([&name](FileRun& run) { catPart(run, opc::model::PartName(name)); });
    });
}

} // namespace

const Command CAT{"cat", "Write the content of a part to standard output", declareCat,
                  "[Content_Types].xml and relationships parts, such as /_rels/.rels, are shown as they lie "
                  "in the archive, "
                  "also where no other command reads the package.",
                  "opctool cat report.docx /word/document.xml | xmllint --format -\n"
                  "opctool cat report.docx '[Content_Types].xml'\n"
                  "opctool cat report.docx /word/_rels/document.xml.rels"};

} // namespace opctool

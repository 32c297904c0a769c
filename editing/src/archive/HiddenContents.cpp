#include "archive/HiddenContents.hpp"

#include "zip/src/ExtraFields.hpp"

#include <iterator>
#include <optional>
#include <string>

namespace opc::editing::archive {

using inspection::ArchiveGap;
using inspection::ArchiveItem;
using inspection::ItemKind;

namespace {

std::string countOf(std::uint64_t count) {
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

const char* whereText(ArchiveGap::Where where) {
    static constexpr const char* NAMES[] = {"in front of the items", "between items",
                                            "in front of the directory", "behind the directory",
                                            "behind the end"};
    return NAMES[static_cast<int>(where)];
}

bool hasUnknownFields(const std::optional<inspection::ItemHeader>& header) {
    return header &&
           physical::zip::holdsUnknownData(reinterpret_cast<const unsigned char*>(header->extraFields.data()),
                                           header->extraFields.size());
}

void append(std::vector<HiddenContent>& all, std::vector<HiddenContent> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

} // namespace

bool isEmptyFolder(const ArchiveItem& item) {
    return item.kind == ItemKind::Folder && item.central && item.central->size == 0;
}

std::vector<HiddenContent> findHidden(const ArchiveItem& item) {
    std::vector<HiddenContent> hidden;
    if (item.kind == ItemKind::Hidden)
        hidden.push_back({item.name, "an item that the directory doesn't list"});
    if (!item.comment.empty())
        hidden.push_back({item.name, "a comment of " + countOf(item.comment.size())});
    if (hasUnknownFields(item.central) || hasUnknownFields(item.local))
        hidden.push_back({item.name, "data in its extra fields"});
    return hidden;
}

std::vector<HiddenContent> findGaps(const inspection::Archive& archive) {
    std::vector<HiddenContent> gaps;
    for (const ArchiveGap& gap : archive.gaps())
        gaps.push_back({"", countOf(gap.size) + ' ' + whereText(gap.where)});
    return gaps;
}

std::vector<HiddenContent> findComment(const inspection::Archive& archive) {
    const std::string comment = archive.comment();
    if (comment.empty())
        return {};
    return {{"", "a comment of " + countOf(comment.size())}};
}

std::vector<HiddenContent> findHidden(const inspection::Archive& archive) {
    std::vector<HiddenContent> hidden;
    for (const ArchiveItem& item : archive.items())
        append(hidden, findHidden(item));
    append(hidden, findGaps(archive));
    append(hidden, findComment(archive));
    return hidden;
}

} // namespace opc::editing::archive

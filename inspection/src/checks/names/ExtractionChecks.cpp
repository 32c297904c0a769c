#include "checks/names/NameChecks.hpp"

#include "checks/container/ContainerChecks.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"
#include <opc/inspection/FoldedName.hpp>

#include "zip/src/ExtraFields.hpp"
#include "zip/src/ExtractionNames.hpp"
#include "zip/src/NameText.hpp"

#include <algorithm>
#include <unordered_map>

namespace opc::inspection {

namespace {

bool isASCII(const std::string& name) {
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return (static_cast<unsigned char>(c) & 0x80U) == 0; });
}

/// Items whose names most programs leave as they are can't meet each other here: other rules compare them.
bool isPlain(const ArchiveItem& item) {
    const bool hasExtra =
        !item.central->extraFields.empty() || (item.local && !item.local->extraFields.empty());
    return !hasExtra && !item.partName.empty() && item.name.size() + 1 == item.partName.size() &&
           item.name.find_first_of("%:;") == std::string::npos &&
           item.partName.compare(1, item.partName.size() - 1, item.name) == 0;
}

/// Further names by which some programs call an item: in other encodings, and of Unicode Path fields.
std::vector<std::string> otherNames(const ArchiveItem& item) {
    std::vector<std::string> names;
    if (!isASCII(item.name))
        names = {physical::zip::fromCodePage437(item.central->name),
                 physical::zip::fromLatin1(item.central->name)};
    for (const auto* header : {&item.central, &item.local}) {
        if (!*header)
            continue;
        const std::string& extra = (*header)->extraFields;
        physical::zip::ExtraFieldWalk walk(reinterpret_cast<const unsigned char*>(extra.data()),
                                           extra.size());
        for (physical::zip::ExtraField field; walk.next(field);)
            if (field.kind == physical::zip::UNICODE_PATH_FIELD) {
                const std::string_view name = physical::zip::unicodePath(field);
                names.emplace_back(name.substr(0, name.find('\0')));
            }
    }
    return names;
}

/// Finds items that programs extract to one file although their names differ.
class ExtractedFiles {
public:
    explicit ExtractedFiles(Findings& findings) : findings(findings) {}

    void add(const ArchiveItem& item) {
        if (add(item, item.name))
            return;
        for (const std::string& name : otherNames(item))
            if (name != item.name && add(item, name))
                return;
    }

private:
    /// @return whether it has been told
    bool add(const ArchiveItem& item, const std::string& name) {
        const bool isPart = !item.partName.empty();
        const auto [found, isNew] = files.emplace(physical::zip::extractedName(name, isPart), &item);
        const ArchiveItem& other = *found->second;
        if (isNew || &other == &item || other.name == item.name || isSamePart(other, item))
            return false;
        findings.add("SEC-55", placeOf(item), "Programs may extract the item over " + other.name);
        return true;
    }

    static bool isSamePart(const ArchiveItem& left, const ArchiveItem& right) {
        if (left.hasPieceName && right.hasPieceName && keyOfName(left.name) == keyOfName(right.name))
            return true; // [M2.15]
        return left.partName.empty() ? left.kind == ItemKind::ContentTypes && left.kind == right.kind
                                     : keyOfName(left.partName) == keyOfName(right.partName);
    }

    Findings& findings;
    std::unordered_map<std::string, const ArchiveItem*, TextHash> files;
};

/// Names that differ in the case or the accents of letters beyond ASCII alone.
class FoldedFiles {
public:
    explicit FoldedFiles(Findings& findings) : findings(findings) {}

    void add(const ArchiveItem& item) {
        const auto [found, isNew] = files.emplace(narrow(foldedName(item.name)), &item);
        if (!isNew && keyOfName(found->second->name) != keyOfName(item.name))
            findings.add("SEC-56", placeOf(item),
                         "File systems may take the item and " + found->second->name + " for one file");
    }

private:
    Findings& findings;
    std::unordered_map<std::string, const ArchiveItem*, TextHash> files;
};

template <typename Test>
bool anyItem(const std::vector<ArchiveItem>& items, const Test& test) {
    return std::any_of(items.begin(), items.end(), test);
}

} // namespace

void checkExtraction(const Subject& subject, Findings& findings) {
    const std::vector<ArchiveItem>& items = subject.archive().items();
    const auto isUnusual = [](const ArchiveItem& item) { return item.central && !isPlain(item); };
    if (findings.wants("SEC-55") && anyItem(items, [&](const ArchiveItem& item) {
            return isUnusual(item) && item.kind != ItemKind::Folder;
        })) {
        ExtractedFiles files(findings);
        for (const bool plain : {true, false}) // it is the unusual one that is told
            for (const ArchiveItem& item : items)
                if (item.central && item.kind != ItemKind::Folder && isPlain(item) == plain)
                    files.add(item);
    }
    if (findings.wants("SEC-56") &&
        anyItem(items, [](const ArchiveItem& item) { return !isASCII(item.name); })) {
        FoldedFiles files(findings);
        for (const ArchiveItem& item : items)
            if (item.central)
                files.add(item);
    }
}

} // namespace opc::inspection

#include "checks/Checks.hpp"
#include "checks/DocumentChecks.hpp"
#include "checks/container/ContainerChecks.hpp"
#include "checks/contenttypes/DefaultTypes.hpp"
#include "checks/contenttypes/TypeGrammar.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/ContentTypeRules.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace opc::inspection {

namespace {

constexpr std::string_view CONTENT_TYPES = "[Content_Types].xml";
constexpr std::string_view TYPES_NAMESPACE = "http://schemas.openxmlformats.org/package/2006/content-types";

/// Checks the entries one by one, and what they cover.
class ContentTypeChecks {
public:
    ContentTypeChecks(const Subject& subject, Findings& findings)
        : subject(subject), findings(findings), document(subject.contentTypesDocument()) {
        if (document.item != nullptr)
            place.item = document.item->name;
    }

    void run() {
        checkItems();
        if (document.item == nullptr)
            return;
        const bool isRead = checkDocument(document, place, TYPES_NAMESPACE, "Types", findings);
        checkForm(document, place, findings);
        if (document.usesMarkupCompatibility)
            findings.add("M2.10", place, "The content types stream uses markup compatibility");
        for (const ContentTypeEntry& entry : subject.contentTypes())
            check(entry);
        if (isRead)
            checkCover();
    }

private:
    void checkItems() {
        const std::vector<ArchiveItem>& items = subject.archive().items();
        const auto isStream = [](const ArchiveItem& item) { return item.kind == ItemKind::ContentTypes; };
        if (document.item == nullptr) {
            if (subject.archive().isZip() &&
                (lacksContentTypesAlone(subject) || !findings.wants("SEC-57"))) // which names the format
                findings.add("M3.10", {}, "There is no item [Content_Types].xml");
            return;
        }
        for (const ArchiveItem& item : items)
            if (isStream(item) && &item != document.item &&
                (item.name != document.item->name ||
                 !findings.wants("M3.3"))) // which tells of names in general
                findings.add("M3.10", placeOf(item), "There is a second content types stream");
        if (document.item->name != CONTENT_TYPES && equalsCaseless(document.item->name, CONTENT_TYPES))
            findings.add("SEC-36", place, "The name has another letter case than [Content_Types].xml");
        checkOrder(items);
    }

    /// Who stores parts in pieces means the package to be read while it comes; for all others the order doesn't matter.
    void checkOrder(const std::vector<ArchiveItem>& items) {
        const auto firstPart = std::find_if(items.begin(), items.end(), [](const ArchiveItem& item) {
            return item.kind == ItemKind::Part || item.kind == ItemKind::Piece;
        });
        if (firstPart == items.end() || isPiece(*firstPart) || document.item < &*firstPart)
            return;
        if (std::any_of(firstPart, items.end(),
                        [](const ArchiveItem& item) { return item.kind == ItemKind::Piece; }))
            findings.add("S2.3", place, "The content types stand behind " + firstPart->partName);
    }

    /// Of the content types stream itself.
    bool isPiece(const ArchiveItem& item) const {
        return item.kind == ItemKind::Piece && item.partName == document.item->partName;
    }

    void check(const ContentTypeEntry& entry) {
        const Place at = placeAt(place, entry.line, entry.column);
        const bool isDefault = entry.kind == ContentTypeEntry::Kind::Default;
        if (isDefault ? checkExtension(entry, at) : checkPartName(entry, at)) {
            const std::string known = isDefault ? toLowerASCII(entry.key) : keyOfName(entry.key);
            if (!(isDefault ? extensions : names).insert(known).second)
                findings.add("M2.5", at,
                             isDefault ? "There is a second Default for the extension " + entry.key
                                       : "There is a second Override for " + entry.key);
            else if (isDefault && entry.hasContentType)
                checkDefault(entry, at);
        }
        if (!entry.hasContentType) {
            findings.add(isDefault ? "M2.6" : "M2.7", at, shown(entry) + " has no ContentType");
            return;
        }
        checkType(entry, at);
    }

    static std::string shown(const ContentTypeEntry& entry) {
        return (entry.kind == ContentTypeEntry::Kind::Default ? "The Default for the extension "
                                                              : "The Override for ") +
               (entry.key.empty() ? "an empty name" : entry.key);
    }

    /// @return whether it can have a type
    bool checkExtension(const ContentTypeEntry& entry, const Place& at) {
        if (!entry.hasKey || entry.key.empty()) {
            findings.add("M2.6", at, entry.hasKey ? "The Extension is empty" : "A Default has no Extension");
            return false;
        }
        const std::string defect =
            model::ContentTypeRules::findDefectOfExtension(opc::toString(entry.key, true));
        if (!defect.empty())
            findings.add("M2.6", at,
                         entry.key.front() == '.' ? "The Extension " + entry.key + " begins with a dot"
                                                  : defect + ": " + entry.key);
        return defect.empty();
    }

    bool checkPartName(const ContentTypeEntry& entry, const Place& at) {
        const std::string_view name = trimmed(entry.key);
        if (name.empty()) {
            findings.add("M2.7", at, entry.hasKey ? "The PartName is empty" : "An Override has no PartName");
            return false;
        }
        if (name.front() != '/') {
            findings.add("M1.4", at, "The PartName " + entry.key + " doesn't begin with a slash");
            return false;
        }
        const PartView* const part = subject.findPart(name);
        if (hasOddCharacter(name) &&
            (part == nullptr || part->items.front()->name != name.substr(1))) { // [M1.6]
            findings.add("M2.7", at,
                         "The PartName \"" + entry.key + "\" has a character that part names can't have");
            return part != nullptr;
        }
        if (part != nullptr)
            return true;
        const std::string key = keyOfName(name);
        if (key == CONTENT_TYPES_KEY) {
            findings.add("M2.1", at, "An Override names the content types stream");
            return false;
        }
        try {
            const model::PartName valid(opc::toString(key, true));
        } catch (const Exception& failure) {
            findings.add("M2.7", at,
                         "The PartName " + entry.key + " isn't the name of a part: " + failure.what());
            return false;
        }
        if (!subject.isIncomplete(name) || !findings.wants("M2.16"))
            findings.add("SEC-35", at, "There is no part for the Override of " + entry.key);
        return true;
    }

    /// Formats whose packages contain programs.
    bool holdsPrograms() const {
        const std::string& format = subject.format();
        return format == "nupkg" || format == "vsix" || format.compare(0, 4, "appx") == 0 ||
               format.compare(0, 4, "msix") == 0;
    }

    void checkDefault(const ContentTypeEntry& entry, const Place& at) {
        const std::string extension = toLowerASCII(entry.key);
        defaults.push_back(&entry);
        if (holdsPrograms())
            return;
        if (const std::string oddity = oddityOfDefault(extension, entry.contentType); !oddity.empty())
            findings.add("SEC-42", at, oddity);
    }

    void checkType(const ContentTypeEntry& entry, const Place& at) {
        const auto [known, isNew] = defects.try_emplace(entry.contentType);
        if (isNew)
            known->second = findTypeDefect(entry.contentType);
        if (!known->second.rule.empty())
            findings.add(known->second.rule, at, shown(entry) + known->second.message);
    }

    std::unordered_set<const PartView*> findTargets() const {
        std::unordered_set<const PartView*> targets;
        for (const RelationshipsView& view : subject.relationships())
            for (const RelationshipView& entry : view.entries)
                targets.insert(entry.part);
        return targets;
    }

    /// Which parts have a type, and which entries give one.
    void checkCover() {
        const std::unordered_set<const PartView*> targets = findTargets();
        std::unordered_set<std::string, TextHash> used;
        bool areRelationshipsTold = false; // they lack the same Default
        for (const PartView& part : subject.parts()) {
            if (part.typeFrom == PartView::TypeFrom::Default)
                used.insert(toLowerASCII(part.extension()));
            if (part.typeFrom != PartView::TypeFrom::Nothing ||
                (part.isRelationships() && areRelationshipsTold))
                continue;
            areRelationshipsTold = areRelationshipsTold || part.isRelationships();
            Place at;
            at.part = part.name;
            const bool isNeeded = part.isRelationships() || targets.count(&part) != 0;
            findings.add(isNeeded ? "M1.2" : "SEC-32", at,
                         isNeeded ? "The part has no content type"
                                  : "The item has no content type, and no relationship leads to it");
        }
        for (const ContentTypeEntry* const entry : defaults)
            if (used.count(toLowerASCII(entry->key)) == 0)
                findings.add("SEC-35", placeAt(place, entry->line, entry->column),
                             "No part has its type from the Default for the extension " + entry->key);
    }

    const Subject& subject;
    Findings& findings;
    const DocumentState& document;
    Place place;
    std::vector<const ContentTypeEntry*> defaults; ///< those that count
    std::unordered_set<std::string, TextHash> extensions;
    std::unordered_set<std::string, TextHash> names;
    std::unordered_map<std::string, TypeDefect, TextHash> defects;
};

} // namespace

void checkContentTypes(const Subject& subject, Findings& findings) {
    ContentTypeChecks(subject, findings).run();
}

} // namespace opc::inspection

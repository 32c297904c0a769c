#pragma once

#include "documents/DocumentEditing.hpp"
#include "hash/TextHash.hpp"
#include "mending/ArchivePlan.hpp"

#include "subject/Subject.hpp"

#include <opc/editing/Change.hpp>
#include <opc/inspection/Finding.hpp>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace opc::editing::mending {

using inspection::ArchiveItem;
using inspection::ContentTypeEntry;
using inspection::Finding;
using inspection::PartView;
using inspection::RelationshipsView;
using inspection::RelationshipView;
using inspection::Subject;

/// What came of a finding.
struct Outcome {
    bool isMended = false;
    std::string text{};            ///< what was done, or why nothing was, as a sentence without a full stop
    std::vector<Change> changes{}; ///< to parts and relationships
};

inline Outcome left(std::string why) {
    return {false, std::move(why)};
}
inline Outcome mended(std::string what, std::vector<Change> changes = {}) {
    return {true, std::move(what), std::move(changes)};
}

/// A relationships part, and its text where it can be edited.
struct EditedRelationships {
    const RelationshipsView* view = nullptr;
    std::unique_ptr<DocumentEditing> document;                             ///< null if it can't be
    std::vector<std::size_t> elements;                                     ///< of the entries of the view
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::size_t> places; ///< of the entries
    std::map<std::string, std::size_t, std::less<>>
        ids;                     ///< also new ones, each with the first entry that has it
    std::size_t lastNumber = 0;  ///< of a new id
    std::vector<bool> isRemoved; ///< of the entries
    std::optional<std::size_t>
        core; ///< the entry that leads to the core properties: the first whose part is there
};

/// One relationship of such a part.
struct EditedEntry {
    EditedRelationships* relationships = nullptr;
    std::size_t index = 0;

    explicit operator bool() const { return relationships != nullptr; }
    const RelationshipView& view() const { return relationships->view->entries[index]; }
    DocumentEditing& document() const { return *relationships->document; }
    std::size_t element() const { return relationships->elements[index]; }
    bool isRemoved() const { return relationships->isRemoved[index]; }
    Change::State state() const;

    /// The first one that has the same Id.
    EditedEntry first() const;

    /// Takes it out of the document.
    Change remove() const;

    /// Gives it another value.
    Change set(std::u16string_view attribute, const std::string& value) const;
};

/// One pass over a package: what its findings say is mended in a plan, and in the texts of its own documents.
class Round {
public:
    /// All must outlive this object.
    Round(const inspection::Archive& archive, const Subject& subject, std::string fileName);

    const inspection::Archive& archive() const { return plan.archive; }
    const Subject& subject;
    const std::string fileName;
    ArchivePlan plan;

    /// @name Items
    /// @{

    /// The item that a finding is about: by its place in the archive, or by its name. Null if there is none.
    const ArchiveItem* itemOf(const Finding& finding) const;

    using Items = std::vector<const ArchiveItem*>;

    /// Those whose plain names are the same but for letter case, the item itself too.
    const Items& itemsLike(const ArchiveItem& item);

    /// The pieces of a content, in the order of the archive, also where some are missing.
    /// @param name  of the item if it weren't in pieces
    const Items& piecesOf(std::string_view name);

    /// Whether the relationships part that a finding is about is dropped.
    bool isDropped(const Finding& finding);

    /// Drops all items of a part, and its Override.
    Change dropPart(const PartView& part);

    /// The content; nothing if it can't be read, or is larger.
    std::optional<std::string> read(const Items& items, std::size_t most) const;

    /// Whether an item can be read to its end, and holds what the directory says.
    bool isWhole(const ArchiveItem& item) const;

    /// Whether two contents are the same.
    bool areEqual(const Items& left, const Items& right) const;

    /// @}
    /// @name Documents
    /// @{

    /// The relationship that a finding is about; none if it can't be edited.
    EditedEntry entryOf(const Finding& finding);
    EditedRelationships& relationshipsOf(const RelationshipsView& view);
    const RelationshipsView* viewOf(const Finding& finding) const;

    /// The content types stream; null if it can't be edited.
    DocumentEditing* contentTypes();

    /// The entry that a finding is about, and its element.
    struct TypeEntry {
        const ContentTypeEntry* entry = nullptr;
        std::size_t element = 0;
    };
    TypeEntry typeEntryOf(const Finding& finding);

    /// Gives a part a content type.
    /// @return false if the content types can't be edited
    bool setType(const PartView& part, const std::string& type);

    /// Gives all parts of an extension a content type by a Default, which is changed if it is there.
    bool setDefault(std::string_view extension, const std::string& type);

    /// The places of the entries for the name of a part or for an extension, letter case aside.
    const std::vector<std::size_t>& entriesFor(ContentTypeEntry::Kind kind, std::string_view key);

    /// The parts that have their type from an entry.
    std::vector<const PartView*> partsOf(const ContentTypeEntry& entry);

    /// A document of another part that is edited; null if it can't be.
    DocumentEditing* document(const PartView& part);

    /// Writes a document or an item anew.
    void setContent(const Items& items, std::string content);

    /// @}

    /// Whether markup of the source names a relationship by this id, or may do so.
    bool isUsed(const RelationshipsView& view, const std::string& id);

    /// Puts the edited documents into the plan.
    void finish();

private:
    void listItems();
    void prepare(EditedRelationships& edited) const;
    void prepareTypes();

    std::unordered_map<std::string_view, Items, TextHash> itemsByName; ///< also by the names of parts
    std::unordered_map<std::string, Items, TextHash> itemsByPlainName,
        piecesByName; ///< made when they are needed
    std::unordered_map<std::string_view, const RelationshipsView*, TextHash>
        viewsByPart; ///< null for a name that stands twice
    std::map<const RelationshipsView*, EditedRelationships> relationships;
    std::map<const PartView*, std::unique_ptr<DocumentEditing>> documents;
    std::unique_ptr<DocumentEditing> types;
    bool areTypesPrepared = false;
    std::vector<std::size_t> typeElements;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::size_t> typePlaces;
    std::set<std::pair<ContentTypeEntry::Kind, std::string>> addedEntries; ///< their keys
    std::map<std::pair<ContentTypeEntry::Kind, std::string>, std::vector<std::size_t>>
        entries; ///< by their keys
    std::unordered_map<std::string, std::vector<const PartView*>, TextHash>
        partsByExtension; ///< with a type from a Default
    std::map<const RelationshipsView*, std::optional<std::set<std::string>>> usedIds; ///< nothing: all may be
};

} // namespace opc::editing::mending

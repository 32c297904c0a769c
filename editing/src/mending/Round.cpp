#include "mending/Round.hpp"

#include "mending/PlainName.hpp"
#include "mending/UsedIds.hpp"

#include "checks/relationships/RelationshipKinds.hpp"
#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <algorithm>
#include <array>

namespace opc::editing::mending {

using inspection::Archive;
using inspection::keyOfName;

namespace {

constexpr std::size_t LARGEST_EDITED = std::size_t{4} << 20;

std::u16string wide(const std::string& text) {
    return toString(text, true);
}

/// The elements of the entries of a list: those right below the root that have its namespace and one of the names.
std::vector<std::size_t> findEntries(const DocumentEditing& document,
                                     std::initializer_list<std::u16string_view> names) {
    std::vector<std::size_t> found;
    const std::vector<lenient::Element>& elements = document.markup().elements();
    for (std::size_t i = 1; i < elements.size(); ++i)
        if (elements[i].depth == 1 && elements[i].namespaceURI == elements[0].namespaceURI &&
            std::find(names.begin(), names.end(), elements[i].localName) != names.end())
            found.push_back(i);
    return found;
}

std::string keyOfEntry(ContentTypeEntry::Kind kind, std::string_view key) {
    return kind == ContentTypeEntry::Kind::Default ? inspection::toLowerASCII(key)
                                                   : keyOfName(inspection::trimmed(key));
}

std::unique_ptr<DocumentEditing> tryToEdit(const std::optional<std::string>& bytes) {
    if (!bytes)
        return nullptr;
    try {
        return std::make_unique<DocumentEditing>(*bytes);
    } catch (const Exception&) {
        return nullptr; // the finding stays
    }
}

} // namespace

Change::State EditedEntry::state() const {
    return {view().target, view().type, view().isExternal, std::nullopt};
}

EditedEntry EditedEntry::first() const {
    return {relationships, relationships->ids.find(inspection::trimmed(view().id))->second};
}

Change EditedEntry::remove() const {
    relationships->isRemoved[index] = true;
    document().remove(element());
    return {Change::Kind::RelationshipRemoved, relationships->view->source, view().id, state(), {}};
}

Change EditedEntry::set(std::u16string_view attribute, const std::string& value) const {
    document().set(element(), attribute, wide(value));
    Change change{Change::Kind::RelationshipChanged, relationships->view->source, view().id, state(),
                  state()};
    if (attribute == u"Target")
        change.after.text = value;
    else if (attribute == u"TargetMode")
        change.after.isExternal = value == "External";
    return change;
}

Round::Round(const Archive& archive, const Subject& subject, std::string fileName)
    : subject(subject), fileName(std::move(fileName)), plan(archive) {
    listItems();
    for (const RelationshipsView& view : subject.relationships()) {
        const auto [place, isNew] = viewsByPart.emplace(view.part->name, &view);
        if (!isNew)
            place->second = nullptr;
    }
}

void Round::listItems() {
    for (const ArchiveItem& item : archive().items()) {
        itemsByName[item.name].push_back(&item);
        if (!item.partName.empty() && item.partName != item.name)
            itemsByName[item.partName].push_back(&item);
    }
}

/// Of several items of one name, the one at the place of the finding, or else one with a fault.
const ArchiveItem* Round::itemOf(const Finding& finding) const {
    const inspection::Place& place = finding.place;
    const auto found = itemsByName.find(place.part.empty() ? place.item : place.part);
    if (found == itemsByName.end() || found->first.empty())
        return nullptr;
    const ArchiveItem* best = found->second.front();
    for (const ArchiveItem* const item : found->second) {
        if (place.offset && item->headerOffset == place.offset && item->local)
            return item;
        if (item->isFaulty && !best->isFaulty)
            best = item;
    }
    return best;
}

const Round::Items& Round::itemsLike(const ArchiveItem& item) {
    if (itemsByPlainName.empty())
        for (const ArchiveItem& other : archive().items())
            itemsByPlainName[keyOfName(plainName(other.name))].push_back(&other);
    return itemsByPlainName[keyOfName(plainName(item.name))];
}

const Round::Items& Round::piecesOf(std::string_view name) {
    if (piecesByName.empty())
        for (const ArchiveItem& item : archive().items())
            if (item.hasPieceName)
                piecesByName[keyOfName(prefixOfPiece(item.name))].push_back(&item);
    return piecesByName[keyOfName(name)];
}

bool Round::isDropped(const Finding& finding) {
    const RelationshipsView* const view = viewOf(finding);
    return view != nullptr && plan.fateOf(*view->part->items.front()).isDropped;
}

Change Round::dropPart(const PartView& part) {
    for (const ArchiveItem* item : part.items)
        plan.drop(*item);
    if (DocumentEditing* const list = contentTypes())
        for (const std::size_t entry : entriesFor(ContentTypeEntry::Kind::Override, part.name))
            list->remove(typeElements[entry]);
    return {Change::Kind::PartRemoved, part.name, {}, {part.contentType, {}, false, part.size}, {}};
}

std::optional<std::string> Round::read(const Items& items, std::size_t most) const {
    std::string content;
    try {
        const std::unique_ptr<InputStream> stream = inspection::openItems(archive(), items);
        std::array<unsigned char, 16384> block;
        while (!stream->isDone()) {
            const auto got = static_cast<std::size_t>(stream->read(block.data(), block.size()));
            content.append(reinterpret_cast<const char*>(block.data()), got);
            if (content.size() > most)
                return std::nullopt;
        }
    } catch (const Exception&) {
        return std::nullopt;
    }
    return content;
}

bool Round::isWhole(const ArchiveItem& item) const {
    try {
        const std::unique_ptr<InputStream> stream = archive().open(item);
        stream->open();
        std::array<unsigned char, 65536> block;
        while (!stream->isDone())
            stream->read(block.data(), block.size());
        return true;
    } catch (const Exception&) {
        return false;
    }
}

bool Round::areEqual(const Items& left, const Items& right) const {
    try {
        const std::unique_ptr<InputStream> first = inspection::openItems(archive(), left);
        const std::unique_ptr<InputStream> second = inspection::openItems(archive(), right);
        std::array<unsigned char, 32768> firstBlock;
        std::array<unsigned char, 32768> secondBlock;
        const auto fill = [](InputStream& stream, std::array<unsigned char, 32768>& block) {
            std::size_t count = 0;
            while (count < block.size() && !stream.isDone())
                count += static_cast<std::size_t>(stream.read(block.data() + count, block.size() - count));
            return count;
        };
        for (;;) {
            const std::size_t count = fill(*first, firstBlock);
            if (count != fill(*second, secondBlock) ||
                !std::equal(firstBlock.begin(), firstBlock.begin() + static_cast<std::ptrdiff_t>(count),
                            secondBlock.begin()))
                return false;
            if (count == 0)
                return true;
        }
    } catch (const Exception&) {
        return false;
    }
}

const RelationshipsView* Round::viewOf(const Finding& finding) const {
    const auto found = viewsByPart.find(finding.place.part);
    return found == viewsByPart.end() ? nullptr : found->second;
}

EditedEntry Round::entryOf(const Finding& finding) {
    const RelationshipsView* const view = viewOf(finding);
    if (view == nullptr)
        return {};
    EditedRelationships& edited = relationshipsOf(*view);
    const auto place = edited.places.find({finding.place.line, finding.place.column});
    if (!edited.document || place == edited.places.end())
        return {};
    return {&edited, place->second};
}

EditedRelationships& Round::relationshipsOf(const RelationshipsView& view) {
    const auto [place, isNew] = relationships.try_emplace(&view);
    if (isNew) {
        place->second.view = &view;
        prepare(place->second);
    }
    return place->second;
}

void Round::prepare(EditedRelationships& edited) const {
    const RelationshipsView& view = *edited.view;
    if (view.document.usesMarkupCompatibility || view.document.hasDocumentType)
        return;
    edited.document = tryToEdit(read(view.part->items, LARGEST_EDITED));
    if (!edited.document)
        return;
    edited.elements = findEntries(*edited.document, {u"Relationship"});
    if (edited.elements.size() != view.entries.size())
        edited.elements.clear();
    edited.isRemoved.resize(view.entries.size());
    for (std::size_t i = 0; i < edited.elements.size(); ++i) {
        edited.places.emplace(std::pair(view.entries[i].line, view.entries[i].column), i);
        edited.ids.emplace(inspection::trimmed(view.entries[i].id), i);
        if (!edited.core && view.entries[i].part != nullptr && inspection::isCoreProperties(view.entries[i]))
            edited.core = i;
    }
}

DocumentEditing* Round::contentTypes() {
    if (!areTypesPrepared)
        prepareTypes();
    areTypesPrepared = true;
    return types.get();
}

void Round::prepareTypes() {
    const inspection::DocumentState& state = subject.contentTypesDocument();
    if (state.item == nullptr || state.usesMarkupCompatibility || state.hasDocumentType)
        return;
    types = tryToEdit(read(subject.contentTypesItems(), LARGEST_EDITED));
    if (!types)
        return;
    typeElements = findEntries(*types, {u"Default", u"Override"});
    const std::vector<ContentTypeEntry>& found = subject.contentTypes();
    if (typeElements.size() != found.size())
        typeElements.clear();
    for (std::size_t i = 0; i < typeElements.size(); ++i) {
        typePlaces.emplace(std::pair(found[i].line, found[i].column), i);
        entries[{found[i].kind, keyOfEntry(found[i].kind, found[i].key)}].push_back(i);
    }
}

const std::vector<std::size_t>& Round::entriesFor(ContentTypeEntry::Kind kind, std::string_view key) {
    static const std::vector<std::size_t> NONE;
    contentTypes();
    const auto found = entries.find({kind, keyOfEntry(kind, key)});
    return found == entries.end() ? NONE : found->second;
}

std::vector<const PartView*> Round::partsOf(const ContentTypeEntry& entry) {
    if (entry.kind == ContentTypeEntry::Kind::Override) {
        const PartView* const part = subject.findPart(inspection::trimmed(entry.key));
        return part == nullptr ? std::vector<const PartView*>() : std::vector{part};
    }
    if (partsByExtension.empty())
        for (const PartView& part : subject.parts())
            if (part.typeFrom == PartView::TypeFrom::Default)
                partsByExtension[inspection::toLowerASCII(part.extension())].push_back(&part);
    const auto found = partsByExtension.find(inspection::toLowerASCII(entry.key));
    return found == partsByExtension.end() ? std::vector<const PartView*>() : found->second;
}

Round::TypeEntry Round::typeEntryOf(const Finding& finding) {
    if (contentTypes() == nullptr)
        return {};
    const auto place = typePlaces.find({finding.place.line, finding.place.column});
    if (place == typePlaces.end())
        return {};
    return {&subject.contentTypes()[place->second], typeElements[place->second]};
}

bool Round::setType(const PartView& part, const std::string& type) {
    DocumentEditing* const list = contentTypes();
    if (list == nullptr)
        return false;
    using Kind = ContentTypeEntry::Kind;
    const std::vector<std::size_t>& old = entriesFor(Kind::Override, part.name);
    for (const std::size_t entry : old)
        list->set(typeElements[entry], u"ContentType", wide(type));
    if (old.empty() && addedEntries.emplace(Kind::Override, keyOfEntry(Kind::Override, part.name)).second)
        list->append(u"Override", {{u"PartName", wide(part.name)}, {u"ContentType", wide(type)}});
    return true;
}

bool Round::setDefault(std::string_view extension, const std::string& type) {
    DocumentEditing* const list = contentTypes();
    if (list == nullptr)
        return false;
    using Kind = ContentTypeEntry::Kind;
    const std::vector<std::size_t>& old = entriesFor(Kind::Default, extension);
    if (!old.empty())
        list->set(typeElements[old.front()], u"ContentType", wide(type));
    else if (addedEntries.emplace(Kind::Default, keyOfEntry(Kind::Default, extension)).second)
        list->append(u"Default",
                     {{u"Extension", wide(std::string(extension))}, {u"ContentType", wide(type)}});
    return true;
}

DocumentEditing* Round::document(const PartView& part) {
    const auto [place, isNew] = documents.try_emplace(&part);
    if (isNew)
        place->second = tryToEdit(read(part.items, LARGEST_EDITED));
    return place->second.get();
}

void Round::setContent(const Items& items, std::string content) {
    plan.touch(*items.front()).content = std::move(content);
    for (std::size_t i = 1; i < items.size(); ++i) // the pieces behind the first
        plan.touch(*items[i]).content = std::string();
}

bool Round::isUsed(const RelationshipsView& view, const std::string& id) {
    if (view.sourcePart == nullptr) // the package, which has no markup, or a source that is gone
        return false;
    auto [place, isNew] = usedIds.try_emplace(&view);
    if (isNew)
        place->second = findUsedIds(subject, view);
    return !place->second || place->second->count(std::string(inspection::trimmed(id))) != 0;
}

void Round::finish() {
    for (const auto& [view, edited] : relationships)
        if (edited.document && edited.document->isChanged() &&
            !plan.fateOf(*view->part->items.front()).isDropped)
            setContent(view->part->items, edited.document->apply());
    if (types && types->isChanged())
        setContent(subject.contentTypesItems(), types->apply());
    for (const auto& [part, edited] : documents)
        if (edited && edited->isChanged() && !plan.fateOf(*part->items.front()).isDropped)
            setContent(part->items, edited->apply());
}

} // namespace opc::editing::mending

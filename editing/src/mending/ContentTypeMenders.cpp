#include "mending/CertainTypes.hpp"
#include "mending/Menders.hpp"

#include "checks/contenttypes/TypeGrammar.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iterator>

namespace opc::editing::mending {

namespace {

using inspection::equalsCaseless;
using inspection::keyOfName;
using inspection::trimmed;
using Stage = Mender::Stage;
using Kind = ContentTypeEntry::Kind;

const char* const STREAM_NOT_EDITED = "The content types stream can't be edited";
const char* const ONLY_A_PERSON = "What the content is isn't certain";

constexpr char NEW_STREAM[] =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)"
    "\n"
    R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" )"
    R"(ContentType="application/vnd.openxmlformats-package.relationships+xml"/></Types>)";

std::string sentence(const PartView& part, const std::string& type) {
    return "The part " + part.name + " gets the type " + type;
}

Change typeChange(const PartView& part, const std::string& type) {
    Change change{Change::Kind::ContentTypeChanged, part.name, {}, {}, {}};
    change.before.text = part.contentType;
    change.after.text = type;
    return change;
}

Outcome giveType(Round& round, const PartView& part) {
    const std::string type = certainType(round.subject, part, round.fileName);
    if (type.empty())
        return left(ONLY_A_PERSON);
    const bool isDone = part.isRelationships() && part.typeFrom == PartView::TypeFrom::Nothing
                            ? round.setDefault("rels", type)
                            : round.setType(part, type);
    return isDone ? mended(sentence(part, type), {typeChange(part, type)}) : left(STREAM_NOT_EDITED);
}

Outcome giveMissingType(Round& round, const Finding& finding) {
    const PartView* const part = round.subject.findPart(finding.place.part);
    return part == nullptr ? left(STREAM_NOT_EDITED) : giveType(round, *part);
}

Outcome makeStream(Round& round, const Finding& finding) {
    if (round.subject.contentTypesDocument().item == nullptr) {
        if (round.subject.relationshipsOf("/") == nullptr)
            return left("The archive is no package");
        round.plan.first.push_back({"[Content_Types].xml", NEW_STREAM});
        round.plan.isDue = true;
        return mended("A content types stream is made");
    }
    const ArchiveItem* const second = round.itemOf(finding);
    if (second == nullptr || !round.areEqual({second}, round.subject.contentTypesItems()))
        return left("The two differ, and only a person knows which one is meant");
    round.plan.drop(*second);
    return mended("One of the two is taken out: they are the same");
}

/// For entries that give no part a type, because no reader understands them.
Outcome removeEntry(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    round.contentTypes()->remove(entry.element);
    return mended("The entry is taken out");
}

std::u16string toUTF16(std::string_view text) {
    return toString(std::string(text), true);
}

/// Gives an entry another key, or takes it out if there is an entry with that key.
Outcome rekey(Round& round, const Round::TypeEntry& entry, const std::string& key) {
    const bool isDefault = entry.entry->kind == Kind::Default;
    if (!round.entriesFor(entry.entry->kind, key).empty()) {
        round.contentTypes()->remove(entry.element);
        return mended("The entry is taken out: there is one for " + key);
    }
    round.contentTypes()->set(entry.element, isDefault ? u"Extension" : u"PartName", toUTF16(key));
    return mended("The entry is written for " + key);
}

Outcome correctDefault(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    const std::string& key = entry.entry->key;
    const std::string extension = key.substr(std::min(key.find_first_not_of('.'), key.size()));
    if (!entry.entry->hasContentType || extension.empty() || extension == key)
        return removeEntry(round, finding);
    return rekey(round, entry, extension);
}

Outcome correctName(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    const PartView* const part = round.subject.findPart(trimmed(entry.entry->key));
    if (!entry.entry->hasContentType || part == nullptr)
        return removeEntry(round, finding);
    const std::string name = '/' + [&] {
        std::string encoded;
        constexpr char HEX_DIGITS[] = "0123456789ABCDEF";
        for (const char c : trimmed(entry.entry->key).substr(1)) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x80 && inspection::hasOddCharacter(std::string_view(&c, 1)))
                encoded.append({'%', HEX_DIGITS[byte >> 4U], HEX_DIGITS[byte & 15U]});
            else
                encoded += c;
        }
        return encoded;
    }();
    round.contentTypes()->set(entry.element, u"PartName", toUTF16(name));
    return mended("The entry is written for " + name);
}

Outcome addSlash(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    return rekey(round, entry, '/' + std::string(trimmed(entry.entry->key)));
}

/// A type that no reader understands: what it covers tells what it should be.
Outcome replaceType(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    const auto& sameKey = round.entriesFor(entry.entry->kind, entry.entry->key);
    if (&round.subject.contentTypes()[sameKey.front()] != entry.entry)
        return removeEntry(round, finding); // it doesn't count
    std::string type;
    for (const PartView* const part : round.partsOf(*entry.entry)) {
        const std::string own = certainType(round.subject, *part, round.fileName);
        if (own.empty() || (!type.empty() && own != type))
            return left(ONLY_A_PERSON);
        type = own;
    }
    if (type.empty())
        return removeEntry(round, finding);
    round.contentTypes()->set(entry.element, u"ContentType", toUTF16(type));
    return mended("The entry gets the type " + type);
}

/// Without white space where none can stand, and without comments.
std::string withoutBlanks(std::string_view type) {
    std::string plain;
    bool isQuoted = false;
    int depth = 0;
    for (const char c : type) {
        isQuoted ^= c == '"';
        depth += isQuoted ? 0 : c == '(' ? 1 : 0;
        if (depth == 0 && (isQuoted || std::string_view(" \t\r\n").find(c) == std::string_view::npos))
            plain += c;
        depth -= isQuoted ? 0 : c == ')' && depth > 0 ? 1 : 0;
    }
    return plain;
}

Outcome correctType(Round& round, const Finding& finding, const std::string& type) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    if (!inspection::findTypeDefect(type).rule.empty())
        return left(ONLY_A_PERSON);
    round.contentTypes()->set(entry.element, u"ContentType", toUTF16(type));
    return mended("The type is written " + type);
}

Outcome dropBlanks(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    return entry.entry == nullptr ? left(STREAM_NOT_EDITED)
                                  : correctType(round, finding, withoutBlanks(entry.entry->contentType));
}

Outcome dropParameters(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    const std::string& type = entry.entry->contentType;
    return correctType(round, finding,
                       std::string(trimmed(std::string_view(type).substr(0, type.find(';')))));
}

/// The first counts in most readers.
Outcome dropRepeated(Round& round, const Finding& finding) {
    const Round::TypeEntry entry = round.typeEntryOf(finding);
    if (entry.entry == nullptr)
        return left(STREAM_NOT_EDITED);
    const std::size_t first = round.entriesFor(entry.entry->kind, entry.entry->key).front();
    if (!equalsCaseless(round.subject.contentTypes()[first].contentType, entry.entry->contentType))
        return left("The entries give different types, and only a person knows which one is meant");
    return removeEntry(round, finding);
}

Outcome dropLeadToStream(Round& round, const Finding& finding) {
    if (const EditedEntry entry = round.entryOf(finding)) {
        if (round.isUsed(*entry.relationships->view, entry.view().id))
            return left("The markup of the part names the relationship");
        return mended("The relationship is taken out", {entry.remove()});
    }
    return removeEntry(round, finding);
}

Outcome dropLeftover(Round& round, const Finding& finding) {
    const PartView* const part = round.subject.findPart(finding.place.part);
    if (part == nullptr || !isLeftover(part->items.front()->name))
        return left("It may be meant for another program");
    return mended("The item is taken out", {round.dropPart(*part)});
}

Outcome dropHiddenLeftover(Round& round, const Finding& finding) {
    const ArchiveItem* const item = round.itemOf(finding);
    if (item == nullptr || !isLeftover(item->name))
        return left("It may be meant for another program");
    round.plan.drop(*item);
    return mended("The item is taken out");
}

/// Of an entry or of the part itself.
Outcome correctRelationshipsType(Round& round, const Finding& finding) {
    constexpr std::string_view TYPE = inspection::RELATIONSHIPS_TYPE;
    const PartView* const part = round.subject.findPart(finding.place.part);
    DocumentEditing* const list = round.contentTypes();
    if (part == nullptr || list == nullptr)
        return left(STREAM_NOT_EDITED);
    if (part->typeFrom == PartView::TypeFrom::Override)
        return round.setType(*part, std::string(TYPE)) ? mended(sentence(*part, std::string(TYPE)))
                                                       : left(STREAM_NOT_EDITED);
    return round.setDefault(part->extension(), std::string(TYPE))
               ? mended("The Default for rels gets the type " + std::string(TYPE))
               : left(STREAM_NOT_EDITED);
}

constexpr char DROPS_ENTRY[] = "Takes the entry out";

constexpr Mender CONTENT_TYPE_MENDERS[] = {
    {"M3.10", Stage::Whole,
     "Makes a content types stream with the types that are certain, or takes one of two out if they are the "
     "same",
     makeStream},
    {"M2.6", Stage::Entries, "Takes the dot away, or an entry out that nobody can use", correctDefault},
    {"M2.7", Stage::Entries, "Percent-encodes the name of a part, or takes an entry out that nobody can use",
     correctName},
    {"M1.4", Stage::Entries, "Writes the slash", addSlash},
    {"M1.13", Stage::Entries,
     "Writes the type if the content tells it, or takes an entry out that no part has", replaceType},
    {"M1.14", Stage::Entries, "Takes the white space out", dropBlanks},
    {"M1.15", Stage::Entries, "Takes the comment out", dropBlanks},
    {"M1.22", Stage::Entries, "Takes the parameters out", dropParameters},
    {"M2.5", Stage::Entries, "Takes the later entry out if it gives the same type", dropRepeated},
    {"M2.1", Stage::Entries, "Takes the entry out, or a relationship that no markup names", dropLeadToStream},
    {"M1.2", Stage::Within, "Adds an entry with the type if the content tells it", giveMissingType},
    {"M1.30", Stage::Entries, "Gives relationships parts their type", correctRelationshipsType},
    {"SEC-31", Stage::Within, "Takes out what file managers and packing programs leave behind",
     dropHiddenLeftover},
    {"SEC-32", Stage::Within, "Takes out what file managers and packing programs leave behind", dropLeftover},
    {"SEC-35", Stage::Within, DROPS_ENTRY, removeEntry},
};

} // namespace

MenderRows contentTypeMenders() {
    return {CONTENT_TYPE_MENDERS, std::size(CONTENT_TYPE_MENDERS)};
}

} // namespace opc::editing::mending

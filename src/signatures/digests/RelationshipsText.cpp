#include "signatures/digests/RelationshipsText.hpp"

#include "xml/PlainMarkup.hpp"
#include "xml/XmlDocument.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/RelationshipsVocabulary.hpp>

#include <algorithm>
#include <array>
#include <functional>

namespace opc::model {

namespace {

using namespace vocabulary::relationships;

/// The most bytes that a text can take in UTF-8, with characters escaped.
std::uint64_t measureText(std::u16string_view text) {
    std::uint64_t length = 0;
    for (const char16_t c : text)
        length += c > 0x7F ? 3 : c < u' ' || c == u'&' || c == u'<' || c == u'>' || c == u'"' ? 6 : 1;
    return length;
}

} // namespace

RelationshipsText::RelationshipsText(const SignedRelationships& relationships) {
    const std::vector<Entry> entries = collect(relationships);
    text = write(entries);
    findRuns(entries);
    open();
}

std::uint64_t RelationshipsText::measure(const Relationship& relationship) {
    constexpr std::uint64_t MARKUP =
        sizeof R"(<Relationship Id="" Target="" TargetMode="External" Type=""/>)";
    const Relationship::Values& values = *relationship.values;
    return MARKUP + measureText(values.id) + measureText(values.target) + measureText(values.type);
}

/// Compares everything that an element says about a relationship.
std::int32_t RelationshipsText::compare(const Relationship::Values& left, const Relationship::Values& right) {
    if (const std::int32_t byID = compareTexts(left.id, right.id); byID != 0)
        return byID;
    if (const std::int32_t byTarget = compareTexts(left.target, right.target); byTarget != 0)
        return byTarget;
    if (const std::int32_t byType = compareTexts(left.type, right.type); byType != 0)
        return byType;
    return static_cast<std::int32_t>(left.targetMode) - static_cast<std::int32_t>(right.targetMode);
}

/// Relationships of different sources are often alike, and become one entry.
std::vector<RelationshipsText::Entry> RelationshipsText::collect(const SignedRelationships& relationships) {
    std::vector<Entry> entries = gather(relationships);
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return compare(*left.values, *right.values) < 0; });
    std::size_t count = 0;
    for (const Entry& entry : entries)
        if (count > 0 && compare(*entries[count - 1].values, *entry.values) == 0)
            entries[count - 1].count += entry.count;
        else
            entries[count++] = entry;
    entries.resize(count);
    return entries;
}

/// Finds most relationships that are alike at once, by a hash, so that few have to be sorted. It keeps one relationship
/// for a hash, so no choice of texts makes it slow.
std::vector<RelationshipsText::Entry> RelationshipsText::gather(const SignedRelationships& relationships) {
    constexpr std::hash<std::u16string_view> hash;
    std::vector<Entry> entries;
    std::array<std::size_t, 256> latest{}; // by hash: the place in `entries`, plus 1
    for (const auto& [group, times] : relationships.groups())
        for (const Relationship& relationship : group->relationships) {
            const Relationship::Values& values = *relationship.values;
            std::size_t& place = latest[(hash(values.id) ^ hash(values.target)) % latest.size()];
            if (place > 0 && compare(*entries[place - 1].values, values) == 0) {
                entries[place - 1].count += times;
                continue;
            }
            entries.push_back({&values, times});
            place = entries.size();
        }
    return entries;
}

std::string RelationshipsText::write(const std::vector<Entry>& entries) {
    std::string plain;
    return compose(entries, plain) ? plain : serialize(entries);
}

/// @return whether the document is plain: byte for byte what Xerces writes
bool RelationshipsText::compose(const std::vector<Entry>& entries, std::string& document) {
    PlainMarkup xml(document);
    xml << R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)"
        << "<" << RELATIONSHIPS << ">";
    for (const Entry& entry : entries) {
        xml << "<" << RELATIONSHIP;
        xml.addAttribute(ID, entry.values->id);
        xml.addAttribute(TARGET, entry.values->target);
        if (entry.values->targetMode == TargetMode::External)
            xml.addAttribute(TARGET_MODE, EXTERNAL);
        xml.addAttribute(vocabulary::relationships::TYPE, entry.values->type);
        xml << "/>";
    }
    xml << "</" << RELATIONSHIPS << ">";
    return xml.isPlain() && !entries.empty();
}

std::string RelationshipsText::serialize(const std::vector<Entry>& entries) {
    const auto document = makeXmlDocument(XmlDocument::Form::SignedText);
    document->open({}, RELATIONSHIPS);
    for (const Entry& entry : entries) {
        document->open({}, RELATIONSHIP);
        document->setAttribute(ID, entry.values->id);
        document->setAttribute(vocabulary::relationships::TYPE, entry.values->type);
        document->setAttribute(TARGET, entry.values->target);
        if (entry.values->targetMode == TargetMode::External)
            document->setAttribute(TARGET_MODE, EXTERNAL);
        document->close();
    }
    std::vector<unsigned char> bytes;
    ByteArrayOutAdaptor stream(bytes);
    document->write(stream);
    return {bytes.begin(), bytes.end()};
}

/// An element ends where the next tag begins: the serialiser escapes every `<` in a value.
void RelationshipsText::findRuns(const std::vector<Entry>& entries) {
    std::size_t end = std::min(text.find("<Relationship "), text.size());
    runs.push_back({0, end, 1});
    for (const Entry& entry : entries) {
        const std::size_t begin = end;
        end = text.find('<', begin + 1);
        runs.push_back({begin, end, entry.count});
    }
    if (end < text.size())
        runs.push_back({end, text.size(), 1});
}

void RelationshipsText::open() {
    run = 0;
    repetition = 0;
    position = 0;
}

std::uint64_t RelationshipsText::read(unsigned char* buffer, std::uint64_t count) {
    std::uint64_t done = 0;
    while (done < count && !isDone()) {
        const Run& current = runs[run];
        const std::size_t length = current.end - current.begin;
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count - done, length - position));
        std::copy_n(text.data() + current.begin + position, taken, buffer + done);
        done += taken;
        position += taken;
        if (position < length)
            continue;
        position = 0;
        if (++repetition == current.count) {
            repetition = 0;
            ++run;
        }
    }
    return done;
}

bool RelationshipsText::isDone() const {
    return run == runs.size();
}

void RelationshipsText::close() {
}

} // namespace opc::model

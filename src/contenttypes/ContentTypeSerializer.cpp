#include "contenttypes/ContentTypeSerializer.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypesComposer.hpp"
#include "contenttypes/ContentTypesScanner.hpp"
#include "memory/Arena.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/ElementReader.hpp"
#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ScanOrParse.hpp"
#include "xml/XmlDocument.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/ContentTypesVocabulary.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory_resource>
#include <set>
#include <string_view>
#include <utility>

namespace opc::model {

namespace {

using namespace vocabulary::content_types;

/// A larger stream goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED_TYPES = 16 << 20;

/// An entry that waits for the end of the document, because the whole document must be valid. There are few content
/// types.
struct FoundEntry {
    std::u16string key;
    const std::u16string* contentType;
    std::uint64_t line;
};

/// The line in which a piece of a document begins.
std::uint64_t lineOf(std::string_view document, std::string_view piece) {
    return static_cast<std::uint64_t>(1 + std::count(document.data(), piece.data(), '\n'));
}

/// The content types of one stream. It has few different ones, so each is parsed once. They are in a tree, because no
/// choice of texts makes a tree slow.
/// @tparam Unit  of the texts, which must outlive this object
template <typename Unit>
class ContentTypeReader {
public:
    using Text = std::basic_string_view<Unit>;

    const ContentType& read(Text text) {
        if (text.empty())
            throw InvalidPartContent("ContentType is empty");
        const auto found = parsed.lower_bound(text);
        if (found != parsed.end() && found->first == text)
            return found->second;
        return parsed.emplace_hint(found, text, ContentType(std::u16string(text.begin(), text.end())))
            ->second;
    }

private:
    std::array<std::byte, 2048> first; // enough for most streams
    Arena memory{first.data(), first.size()};
    std::pmr::map<Text, ContentType> parsed{&memory};
};

template <typename Types>
void addDefault(ContentTypeMap& map, const std::u16string& extension, typename Types::Text contentType,
                Types& types) {
    if (extension.empty())
        throw InvalidPartContent("Extension is empty");
    map.addDefault(toLowerASCIIString(extension), types.read(contentType));
}

PartName toPartName(std::u16string text) {
    try {
        return PartName(std::move(text));
    } catch (const InvalidPartName& e) {
        InvalidPartContent failure("PartName is not a valid part name");
        failure.addDetails(e.what());
        throw failure;
    }
}

template <typename Types>
void addOverride(ContentTypeMap& map, std::u16string partName, typename Types::Text contentType,
                 Types& types) {
    const PartName name = toPartName(std::move(partName));
    map.addOverride(name, types.read(contentType));
}

std::string narrow(const std::u16string& key) {
    return toUDEString(key);
}
std::string narrow(std::string_view key) {
    return std::string(key);
}

/// Calls `add` to add an entry. If it fails, the failure names the entry.
/// @param line  called for the entry's line if that is needed
template <typename Key, typename Line, typename Add>
void telling(std::string_view element, const Key& key, const Line& line, const Add& add) {
    try {
        add();
    } catch (Exception& e) {
        e.addDetails(std::string(element) + " \"" + narrow(key) + "\" in line " + std::to_string(line()) +
                     " of the content types stream");
        throw;
    }
}

} // namespace

void ContentTypeSerializer::read(ContentTypeMap& map, InputStream& stream) const {
    read(map, stream, LARGEST_SCANNED_TYPES);
}

void ContentTypeSerializer::parse(ContentTypeMap& map, InputStream& stream) const {
    read(map, stream, 0);
}

void ContentTypeSerializer::read(ContentTypeMap& map, InputStream& stream, std::size_t largestScanned) const {
    map.clear();
    ReadAheadBuffer buffer;
    DocumentShare share(budget, &XmlLimits::contentTypes);
    MeteredStream metered(stream, share);
    const auto scan = [&](std::string_view document) {
        ScannedContentTypes scanned;
        if (!scanContentTypes(document, scanned))
            return false;
        share.addElements(scanned.defaults.size() + scanned.overrides.size() + 1);
        takeScanned(map, scanned, document);
        return true;
    };
    scanOrParse(metered, buffer, largestScanned, scan,
                [&](InputStream& document) { parse(map, document, share); });
    map.keepShare(std::move(share));
    map.setDirty(false);
}

void ContentTypeSerializer::takeScanned(ContentTypeMap& map, const ScannedContentTypes& scanned,
                                        std::string_view document) {
    ContentTypeReader<char> types;
    for (const ScannedContentType& entry : scanned.defaults)
        telling(
            DEFAULT, entry.key, [&] { return lineOf(document, entry.element); },
            [&] { addDefault(map, widen(entry.key), entry.contentType, types); });
    for (const ScannedContentType& entry : scanned.overrides)
        telling(
            OVERRIDE, entry.key, [&] { return lineOf(document, entry.element); },
            [&] { addOverride(map, widen(entry.key), entry.contentType, types); });
}

void ContentTypeSerializer::parse(ContentTypeMap& map, InputStream& stream, DocumentShare& share) {
    std::set<std::u16string> contentTypes;
    std::deque<FoundEntry> defaults;
    std::deque<FoundEntry> overrides;
    std::size_t unread = 0;
    const auto keep = [&](std::deque<FoundEntry>& entries, const VisitedElement& element,
                          std::u16string_view key) {
        const auto contentType =
            contentTypes.emplace(element.attribute(vocabulary::content_types::CONTENT_TYPE)).first;
        entries.push_back({std::u16string(element.attribute(key)), &*contentType, element.line()});
    };
    const auto visit = [&](const VisitedElement& element) {
        share.addElements(1);
        if (element.isRoot())
            unread += element.is(vocabulary::content_types::NAMESPACE, TYPES) ? 0 : 1;
        else if (element.isNamed(DEFAULT))
            keep(defaults, element, EXTENSION);
        else if (element.isNamed(OVERRIDE))
            keep(overrides, element, PART_NAME);
        else
            ++unread;
    };
    makeElementReader(ElementReader::Kind::ContentTypes)->read(stream, visit);
    ContentTypeReader<char16_t> types;
    for (; !defaults.empty(); defaults.pop_front()) {
        const FoundEntry& entry = defaults.front();
        telling(
            DEFAULT, entry.key, [&entry] { return entry.line; },
            [&] { addDefault(map, entry.key, *entry.contentType, types); });
    }
    for (; !overrides.empty(); overrides.pop_front()) {
        const FoundEntry& entry = overrides.front();
        telling(
            OVERRIDE, entry.key, [&entry] { return entry.line; },
            [&] { addOverride(map, entry.key, *entry.contentType, types); });
    }
    map.setUnread(unread);
}

bool ContentTypeSerializer::canHold(const ContentType& contentType) const {
    if (!contentType.canBeReadAgain() || !fitsIntoTag(contentType.toString()))
        return false;
    // The pattern in the schema takes a backslash before a quote for an escape wherever it can.
    if (contentType.toString().find(u"\\\"") == std::u16string::npos)
        return true;
    ContentTypeMap written;
    ContentTypeMap read;
    written.addOverride(PartName(u"/a"), contentType);
    try {
        const std::string document = serialize(written);
        const std::vector<unsigned char> bytes(document.begin(), document.end());
        ByteArrayInAdaptor input(bytes);
        parse(read, input);
    } catch (const InvalidPartContent&) {
        return false;
    }
    return read.getOverrides().begin()->second.toString() == contentType.toString();
}

/// Refuses to write what couldn't be read again.
void ContentTypeSerializer::write(const ContentTypeMap& map, OutputStream& stream) const {
    std::string document;
    composeOrSerialize(
        document, [&](std::string& composed) { return composePlainContentTypes(map, composed); },
        [&](OutputStream& serialized) { serialize(map, serialized); });
    throwIfTagIsTooLong(document);
    writeInPlaceOfOld(document, map.getDefaults().size() + map.getOverrides().size() + 1,
                      DocumentShare(budget, &XmlLimits::contentTypes), map, stream);
}

std::string ContentTypeSerializer::serialize(const ContentTypeMap& map) {
    std::string document;
    serializeDocument(document, [&](OutputStream& stream) { serialize(map, stream); });
    return document;
}

void ContentTypeSerializer::serialize(const ContentTypeMap& map, OutputStream& stream) {
    const auto document = makeXmlDocument(XmlDocument::Form::Part);
    const auto append = [&document](std::u16string_view element, std::u16string_view keyName,
                                    const std::u16string& key, const ContentType& contentType) {
        document->open(vocabulary::content_types::NAMESPACE, element);
        document->setAttribute(keyName, key);
        document->setAttribute(vocabulary::content_types::CONTENT_TYPE, contentType.toString());
        document->close();
    };
    document->open(vocabulary::content_types::NAMESPACE, TYPES);
    for (const auto& [extension, entry] : map.getDefaults())
        if (entry.references != 0)
            append(DEFAULT, EXTENSION, extension, entry.contentType);
    for (const auto& [name, contentType] : map.getOverrides())
        append(OVERRIDE, PART_NAME, name.toString(), contentType);
    document->write(stream);
}

} // namespace opc::model

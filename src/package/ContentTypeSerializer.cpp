#include "package/ContentTypeSerializer.hpp"

#include "package/ContentTypeMap.hpp"
#include "package/ContentTypesScanner.hpp"
#include "package/ContentTypesWriter.hpp"
#include "xml/DocumentOutput.hpp"
#include "xml/ElementVisits.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/LongTags.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>
#include <opc/model/XercesString.hpp>

#include <xercesc/dom/DOM.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <map>
#include <memory_resource>
#include <set>
#include <string_view>
#include <utility>

namespace opc::model {

namespace {

/// A stream beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 16 << 20;

/// An entry that waits for the end of the document, which must be valid as a whole. There are few content types.
struct FoundEntry {
    std::u16string key;
    const std::u16string* contentType;
    XMLFileLoc line;
};

/// The line in which a piece of a document begins.
XMLFileLoc lineOf(std::string_view document, std::string_view piece) {
    return static_cast<XMLFileLoc>(1 + std::count(document.data(), piece.data(), '\n'));
}

/// The content types of one stream, which has few different ones: each is parsed once. They stand in a tree,
/// since nobody can choose texts that make it slow.
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
    std::pmr::monotonic_buffer_resource memory{first.data(), first.size()};
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

/// Adds an entry by `add`, whose failure then tells which one it is.
/// @param line  called for the entry's line if that is needed
template <typename Key, typename Line, typename Add>
void telling(const char* element, const Key& key, const Line& line, const Add& add) {
    try {
        add();
    } catch (Exception& e) {
        e.addDetails(std::string(element) + " \"" + narrow(key) + "\" in line " + std::to_string(line()) +
                     " of the content types stream");
        throw;
    }
}

constexpr char16_t NAMESPACE[] = u"http://schemas.openxmlformats.org/package/2006/content-types";

/// The names in the document, as Xerces takes them.
struct Names {
    XercesGuard guard;
    XercesString namespaceURI{NAMESPACE};
    XercesString typesName{u"Types"};
    XercesString defaultName{u"Default"};
    XercesString extensionName{u"Extension"};
    XercesString contentTypeName{u"ContentType"};
    XercesString overrideName{u"Override"};
    XercesString partNameName{u"PartName"};
};

} // namespace

void ContentTypeSerializer::read(ContentTypeMap& map, InputStream& stream) const {
    map.clear();
    ReadAheadBuffer buffer;
    ScannedContentTypes scanned;
    DocumentShare share(budget, &XmlLimits::contentTypes);
    MeteredStream metered(stream, share);
    ReplayedStream replayed(metered);
    const auto document = replayed.readAhead(buffer, LARGEST_SCANNED);
    if (document && scanContentTypes(*document, scanned)) {
        share.addElements(scanned.defaults.size() + scanned.overrides.size() + 1);
        ContentTypeReader<char> types;
        for (const ScannedContentType& entry : scanned.defaults)
            telling(
                "Default", entry.key, [&] { return lineOf(*document, entry.element); },
                [&] { addDefault(map, widen(entry.key), entry.contentType, types); });
        for (const ScannedContentType& entry : scanned.overrides)
            telling(
                "Override", entry.key, [&] { return lineOf(*document, entry.element); },
                [&] { addOverride(map, widen(entry.key), entry.contentType, types); });
    } else {
        parseCounted(map, replayed, share);
    }
    map.keepShare(std::move(share));
    map.setDirty(false);
}

void ContentTypeSerializer::parse(ContentTypeMap& map, InputStream& stream) const {
    DocumentShare share(budget, &XmlLimits::contentTypes);
    MeteredStream metered(stream, share);
    parseCounted(map, metered, share);
    map.keepShare(std::move(share));
}

void ContentTypeSerializer::parseCounted(ContentTypeMap& map, InputStream& stream,
                                         DocumentShare& share) const {
    const XercesGuard guard;
    std::set<std::u16string> contentTypes;
    std::deque<FoundEntry> defaults;
    std::deque<FoundEntry> overrides;
    std::size_t unread = 0;
    const auto keep = [&](std::deque<FoundEntry>& entries, const VisitedElement& element,
                          std::u16string_view key) {
        const auto contentType = contentTypes.emplace(element.attribute(u"ContentType")).first;
        entries.push_back({std::u16string(element.attribute(key)), &*contentType, element.line()});
    };
    try {
        const auto parser = XercesHelper::createParser();
        loadGrammarUnchecked(parser.get(), schemas::CONTENT_TYPES);
        const ElementVisits visits(parser.get(), [&](const VisitedElement& element) {
            share.addElements(1);
            if (element.isRoot())
                unread += element.is(NAMESPACE, u"Types") ? 0 : 1;
            else if (element.isNamed(u"Default"))
                keep(defaults, element, u"Extension");
            else if (element.isNamed(u"Override"))
                keep(overrides, element, u"PartName");
            else
                ++unread;
        });
        XercesHelper::readDocumentFromStream(parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
    ContentTypeReader<char16_t> types;
    for (; !defaults.empty(); defaults.pop_front()) {
        const FoundEntry& entry = defaults.front();
        telling(
            "Default", entry.key, [&entry] { return entry.line; },
            [&] { addDefault(map, entry.key, *entry.contentType, types); });
    }
    for (; !overrides.empty(); overrides.pop_front()) {
        const FoundEntry& entry = overrides.front();
        telling(
            "Override", entry.key, [&entry] { return entry.line; },
            [&] { addOverride(map, entry.key, *entry.contentType, types); });
    }
    map.setUnread(unread);
}

void ContentTypeSerializer::write(const ContentTypeMap& map, OutputStream& stream) const {
    std::string document;
    if (composePlainContentTypes(map, document))
        writeCounted(document, map, stream);
    else
        writeByXerces(map, stream);
}

/// What couldn't be read again isn't written.
void ContentTypeSerializer::writeCounted(const std::string& document, const ContentTypeMap& map,
                                         OutputStream& stream) const {
    if (hasLongTag(document))
        throw InvalidPartContent(TAG_IS_TOO_LONG);
    map.keepShare({}); // the old document goes
    DocumentShare share(budget, &XmlLimits::contentTypes);
    share.addBytes(document.size());
    share.addElements(map.getDefaults().size() + map.getOverrides().size() + 1);
    writeDocument(document, stream);
    map.keepShare(std::move(share));
}

bool ContentTypeSerializer::canHold(const ContentType& contentType) const {
    if (!contentType.canBeReadAgain() || !fitsIntoTag(contentType.toString()))
        return false;
    // The pattern in the schema takes a backslash in front of a quote for an escape, wherever it can.
    if (contentType.toString().find(u"\\\"") == std::u16string::npos)
        return true;
    ContentTypeMap written;
    ContentTypeMap read;
    written.addOverride(PartName(u"/a"), contentType);
    std::vector<unsigned char> document;
    try {
        ByteArrayOutAdaptor output(document);
        writeByXerces(written, output);
        ByteArrayInAdaptor input(document);
        parse(read, input);
    } catch (const InvalidPartContent&) {
        return false;
    }
    return read.getOverrides().begin()->second.toString() == contentType.toString();
}

void ContentTypeSerializer::writeByXerces(const ContentTypeMap& map, OutputStream& stream) const {
    const Names names;
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    xercesc::DOMElement* root =
        XercesHelper::appendElementNS(document.get(), names.namespaceURI, names.typesName);
    for (const auto& [extension, entry] : map.getDefaults()) {
        if (entry.references == 0)
            continue;
        xercesc::DOMElement* element =
            XercesHelper::appendElementNS(root, names.namespaceURI, names.defaultName);
        XercesHelper::setElementAttribute(element, names.extensionName, extension);
        XercesHelper::setElementAttribute(element, names.contentTypeName, entry.contentType.toString());
    }
    for (const auto& [name, contentType] : map.getOverrides()) {
        xercesc::DOMElement* element =
            XercesHelper::appendElementNS(root, names.namespaceURI, names.overrideName);
        XercesHelper::setElementAttribute(element, names.partNameName, name.toString());
        XercesHelper::setElementAttribute(element, names.contentTypeName, contentType.toString());
    }
    std::string written;
    try {
        const auto writer = XercesHelper::createPrettyPrintingWriter();
        StringOutput composed(written);
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), composed);
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
    writeCounted(written, map, stream);
}

} // namespace opc::model

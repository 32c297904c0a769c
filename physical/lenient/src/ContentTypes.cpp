#include "ContentTypes.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/ContentTypeRules.hpp>

#include <algorithm>
#include <utility>

namespace opc::physical::lenient {

namespace {

using Kind = ContentTypeEntry::Kind;
using Standing = ContentTypeEntry::Standing;

constexpr char16_t RELATIONSHIPS_EXTENSION[] = u"rels";
constexpr char16_t RELATIONSHIPS_ENTRY[] =
    uR"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)";

std::string_view textOf(const Bytes& document) {
    return {reinterpret_cast<const char*>(document.data()), document.size()};
}

/// @param keys  sorted, in US-ASCII and in lower case
bool isAmong(const std::vector<std::string>& keys, std::u16string_view text) {
    std::string key;
    key.reserve(text.size());
    for (const char16_t unit : text)
        key.push_back(static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit - u'A' + u'a'
                                                                     : std::min<char16_t>(unit, 0x7F)));
    return std::binary_search(keys.begin(), keys.end(), key);
}

Bytes toBytes(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

std::u16string extensionOf(const std::u16string& name) {
    return toLowerASCIIString(detail::getExtension(name));
}

} // namespace

/// The document during the opening of the package.
struct ContentTypes::Reading {
    explicit Reading(const DocumentText& decoded)
        : text(decoded), markup(text.text()), entries(markup, rules) {}

    model::ContentTypeRules rules;
    const DocumentText text;
    const Markup markup;
    const ContentTypeEntries entries;
};

/// Collects what the model writes, and applies it to the document at `close`.
class ContentTypes::Output : public interfaces::IPhysicalOutputStream {
public:
    Output(ContentTypes& owner, std::function<std::vector<std::u16string>()> parts)
        : owner(owner), parts(std::move(parts)) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        bytes.insert(bytes.end(), buffer, buffer + count);
        return count;
    }
    bool isDone() const override { return false; }
    void flush() override {}
    void close() override {
        owner.wanted = std::move(bytes);
        owner.isDue = true; // until it succeeds, because the model doesn't write it again
        owner.write(parts);
    }

private:
    ContentTypes& owner;
    const std::function<std::vector<std::u16string>()> parts;
    Bytes bytes;
};

ContentTypes::ContentTypes(interfaces::IPhysicalPackage& package)
    : package(package), usesStream(package.usesContentTypeStream()) {
    if (!usesStream)
        return;
    try {
        read();
    } catch (const Exception&) {
        original.reset();
        plain.reset();
        reading.reset();
    }
}

ContentTypes::~ContentTypes() = default;

void ContentTypes::read() {
    interfaces::IPhysicalInputStream* const stream = package.getContentTypeInputStream();
    original = stream != nullptr ? readDocument(*stream) : std::nullopt;
    if (!original || hasTooMuchMarkup(*original)) {
        original.reset();
        return;
    }
    plain = model::ContentTypeRules::readPlain(textOf(*original));
    if (plain)
        return;
    if (hasDocumentType(*original)) {
        original.reset();
        return;
    }
    readEntries();
    // If the model reads the document itself, it checks that it is well-formed.
    if (!reading->entries.areReadAsTheyAre())
        const Document wellFormed(*original);
    found = reading->entries.oddities();
    readOtherwise = reading->entries.countDisputed();
}

void ContentTypes::readEntries() {
    const auto text = DocumentText::decode(*original);
    if (!text)
        throw Exception("The document is neither in UTF-8 nor in UTF-16.");
    reading = std::make_unique<Reading>(*text);
}

bool ContentTypes::covers(interfaces::IPhysicalPart& part, const std::u16string& name) const {
    if (!usesStream)
        return !part.getContentType().empty();
    if (plain)
        return isAmong(plain->extensions, detail::getExtension(name)) || isAmong(plain->partNames, name);
    if (!reading)
        return true;
    return reading->entries.find(Kind::Override, toLowerASCIIString(name)) != nullptr ||
           reading->entries.find(Kind::Default, extensionOf(name)) != nullptr;
}

std::string ContentTypes::hide(const std::u16string& name) {
    std::string reason = NO_CONTENT_TYPE;
    if (!plain && !reading)
        return reason;
    const std::u16string extension = extensionOf(name);
    context.withheld.insert(extension);
    if (plain)
        return reason;
    const ContentTypeEntry* const own = reading->entries.findFirst(Kind::Override, toLowerASCIIString(name));
    const ContentTypeEntry* const entry =
        own != nullptr ? own : reading->entries.findFirst(Kind::Default, extension);
    if (entry == nullptr)
        return reason;
    const std::size_t line = reading->markup.elements()[entry->element].line;
    return reason + ": the " + (own != nullptr ? "Override" : "Default") + " for it in line " +
           std::to_string(line) + " was left out, " + entry->defect;
}

void ContentTypes::coverRelationships() {
    const bool isCovered =
        plain ? isAmong(plain->extensions, RELATIONSHIPS_EXTENSION)
              : !reading || reading->entries.find(Kind::Default, RELATIONSHIPS_EXTENSION) != nullptr;
    if (isCovered)
        return;
    try {
        if (plain)
            readEntries();
        const Document wellFormed(*original); // the model won't check it
        coversRelationships = true;
    } catch (const Exception&) { // the model refuses it
        original.reset();
        reading.reset();
    }
    plain.reset();
}

void ContentTypes::settle() {
    if (reading)
        settleEntries();
    plain.reset();
    reading.reset();
    if (original && wanted.empty())
        view = std::make_unique<BytesStream>(*original);
}

void ContentTypes::settleEntries() {
    const ContentTypeEntries& entries = reading->entries;
    for (const ContentTypeEntry& entry : entries.all()) {
        if (entry.lacksSlash)
            context.withheld.insert(extensionOf(entry.key));
        if (entry.kind == Kind::Override && (entry.lacksSlash || entry.standing != Standing::Counts))
            disputed.insert(entry.key);
    }
    if (coversRelationships || !entries.areReadAsTheyAre()) {
        wanted = toBytes(entries.toDocument(coversRelationships ? RELATIONSHIPS_ENTRY : u""));
        view = std::make_unique<BytesStream>(wanted);
    }
}

std::optional<interfaces::IgnoredItem> ContentTypes::ignoredItem() const {
    if (readOtherwise == 0)
        return std::nullopt;
    return interfaces::IgnoredItem{u"/[Content_Types].xml", "what other programs may read otherwise: " +
                                                                std::to_string(readOtherwise)};
}

interfaces::IPhysicalInputStream* ContentTypes::inputStream() {
    if (!view)
        return package.getContentTypeInputStream();
    view->open();
    return view.get();
}

interfaces::IPhysicalOutputStream*
ContentTypes::outputStream(std::function<std::vector<std::u16string>()> parts) {
    if (!original)
        return package.getContentTypeOutputStream();
    output = std::make_unique<Output>(*this, std::move(parts));
    return output.get();
}

void ContentTypes::renew(const std::u16string& name) {
    if (!original)
        return;
    const std::u16string key = toLowerASCIIString(name);
    const bool isDisputed = disputed.count(key) > 0;
    if (isDisputed)
        context.renewed.insert(key);
    const std::u16string extension = extensionOf(name);
    isDue = isDue || isDisputed || context.withheld.count(extension) > 0 ||
            (coversRelationships && extension == RELATIONSHIPS_EXTENSION);
}

void ContentTypes::save(const std::function<std::vector<std::u16string>()>& parts) {
    if (isDue)
        write(parts);
}

void ContentTypes::write(const std::function<std::vector<std::u16string>()>& parts) {
    const auto changed = carryContentTypes(*original, wanted.empty() ? *original : wanted, context, parts);
    if (changed || isWritten) {
        const Bytes& bytes = changed ? *changed : *original;
        interfaces::IPhysicalOutputStream* const stream = package.getContentTypeOutputStream();
        isWritten = true;
        if (stream->write(bytes.data(), bytes.size()) != bytes.size())
            throw Exception("The content types could not be written.");
        stream->close();
    }
    isDue = false;
}

} // namespace opc::physical::lenient

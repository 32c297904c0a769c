#include "coverage/DataBindings.hpp"

#include "coverage/PaidContent.hpp"
#include "names/PartNames.hpp"
#include "xml/Narrow.hpp"
#include "xml/PackageDocument.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <string_view>

namespace opc::standard_signatures {

namespace {

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isNameStart(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c >= 0x80;
}

bool isNameCharacter(char16_t c) {
    return isNameStart(c) || isDigit(c) || c == u'-' || c == u'.';
}

/// The name of the root element with which a path begins that has nothing but children and attributes by their names, with
/// prefixes and numbers (`/a:root[1]/b[2]/@c`). Empty for other paths (XPath 1.0), which can find something below any root.
std::u16string_view rootNameIn(std::u16string_view path) {
    std::size_t at = 0;
    const auto skip = [path, &at](const auto& isWanted) {
        const std::size_t begin = at;
        while (at < path.size() && isWanted(path[at]))
            ++at;
        return path.substr(begin, at - begin);
    };
    const auto take = [path, &at](char16_t c) { return at < path.size() && path[at] == c && ++at != 0; };
    std::u16string_view root;
    while (take(u'/')) {
        const bool isAttribute = take(u'@');
        std::u16string_view name = skip(isNameCharacter);
        if (name.empty() || !isNameStart(name[0]))
            return {};
        if (take(u':'))
            name = skip(isNameCharacter);
        if (name.empty() || !isNameStart(name[0]) || (root.empty() && isAttribute))
            return {};
        if (take(u'[') && (skip(isDigit).empty() || !take(u']')))
            return {};
        if (root.empty())
            root = name;
    }
    return at == path.size() ? root : std::u16string_view();
}

/// The stores by what a content control can look for.
class StoreIndex {
public:
    explicit StoreIndex(const std::vector<DataStore>& stores) {
        for (const DataStore& one : stores) {
            all.add(one);
            (one.root.empty() ? ofAnyRoot : byRoot[one.root]).add(one);
            if (!one.id.empty())
                byId.emplace(one.id, &one);
        }
    }

    /// @return null if there is none
    const DataStore* find(const std::string& id) const {
        const auto found = byId.find(id);
        return found == byId.end() ? nullptr : found->second;
    }

    /// Whether it depends on the order of the stores what a path finds.
    /// @param named  the store that is looked into first, or null
    bool isChoice(std::u16string_view path, const DataStore* named) const {
        const std::u16string_view root = rootNameIn(path);
        Stores fitting = root.empty() ? all : ofAnyRoot;
        const auto found = byRoot.find(root);
        if (!root.empty() && found != byRoot.end()) {
            fitting.count += found->second.count;
            fitting.areFound = fitting.areFound && found->second.areFound;
        }
        const bool isNamedAmong =
            named != nullptr && (root.empty() || named->root.empty() || named->root == root);
        return !fitting.areFound || fitting.count > (isNamedAmong ? 2U : 1U);
    }

private:
    struct Stores {
        std::size_t count = 0;
        bool areFound = true; ///< by an ID, each of them

        void add(const DataStore& one) {
            ++count;
            areFound = areFound && !one.id.empty();
        }
    };

    Stores all, ofAnyRoot;
    std::map<std::u16string, Stores, std::less<>> byRoot;
    std::map<std::string, const DataStore*> byId;
};

class BindingReader final : public PackageDocument {
public:
    explicit BindingReader(const StoreIndex& stores) : stores(stores) {}

    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        if (element.localName() != u"dataBinding")
            return;
        const DataStore* const named = findNamed(element);
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            if (const model::XmlAttribute one = element.attribute(i); one.localName == u"xpath")
                isLoose = isLoose || stores.isChoice(one.value, named);
    }

    bool isLoose = false;

private:
    /// The store with the ID that the element has as its only one, in a namespace of texts; null if programs may find none.
    const DataStore* findNamed(const model::XmlElement& element) const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            count += element.attribute(i).localName == u"storeItemID" ? 1U : 0U;
        std::u16string_view id;
        for (const std::u16string_view one : {u"http://schemas.openxmlformats.org/wordprocessingml/2006/main",
                                              u"http://purl.oclc.org/ooxml/wordprocessingml/main"})
            if (id.empty())
                id = element.valueOf(one, u"storeItemID");
        return count == 1 && !id.empty() ? stores.find(narrow(id)) : nullptr;
    }

    const StoreIndex& stores;
};

bool isWordProcessing(const StoredPart& part) {
    return part.contentType && keyOf(*part.contentType).find("word") != std::string::npos;
}

/// Whether some program may read a content as XML, whatever its content type and encoding are.
bool canBeXML(const PackageContents& contents, const StoredPart& part) {
    constexpr std::size_t ENOUGH = 4096;
    constexpr std::string_view PASSED_OVER("\0 \t\r\n\xEF\xBB\xBF\xFE\xFF", 10); // marks of encodings, too
    constexpr std::string_view IN_EBCDIC = "\x4C\x6F\xA7\x94";
    std::string first(ENOUGH, '\0');
    try {
        const auto stream = contents.open(part);
        std::size_t size = 0;
        while (size < ENOUGH && !stream->isDone())
            size += static_cast<std::size_t>(
                stream->read(reinterpret_cast<unsigned char*>(first.data()) + size, ENOUGH - size));
        const std::size_t begin = first.find_first_not_of(PASSED_OVER);
        return begin == std::string::npos
                   ? size == ENOUGH
                   : first[begin] == '<' || first.compare(begin, IN_EBCDIC.size(), IN_EBCDIC) == 0;
    } catch (const Exception&) {
        return true;
    }
}

/// @param left  how many bytes may still be read; becomes less
bool hasLooseBinding(const PackageContents& contents, const StoredPart& part, const StoreIndex& stores,
                     std::uint64_t& left) {
    if (left == 0)
        return canBeXML(contents, part);
    BindingReader reader(stores);
    bool isRead = true;
    try {
        PaidContent content(contents.open(part), left);
        reader.read(content, left);
    } catch (const Exception&) {
        isRead = false;
    }
    return reader.isLoose || (!isRead && canBeXML(contents, part));
}

} // namespace

const std::vector<const StoredPart*>& DataBindings::loose() {
    if (found)
        return *found;
    found.emplace();
    const StoreIndex index(stores);
    std::uint64_t left = 96U << 20;
    const auto& parts = contents.parts();
    if (std::any_of(parts.begin(), parts.end(), isWordProcessing)) // others have no content controls
        for (const StoredPart& part : parts)
            if (!part.source && !contents.isWithoutControls(part) &&
                hasLooseBinding(contents, part, index, left))
                found->push_back(&part);
    return *found;
}

} // namespace opc::standard_signatures

#include "StraightListing.hpp"

#include "RawArchive.hpp"

#include <expat.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

namespace {

using Bytes = std::vector<unsigned char>;
using Items = std::map<std::string, RawArchive::Item>;

struct ContentTypes {
    std::map<std::string, std::string> defaults;
    std::map<std::string, std::string> overrides;
};

struct Relationship {
    std::string id;
    std::string type;
    std::string target;
    bool isExternal;
};

Bytes readItem(RawArchive& archive, const RawArchive::Item& item) {
    const std::string_view stored = archive.compressedContent(item);
    Bytes content(item.size);
    if (item.method == 0)
        std::copy_n(stored.begin(), item.size, content.begin());
    else
        RawInflater().inflate(stored, content);
    if (crc32(0, content.data(), static_cast<unsigned>(content.size())) != item.checksum)
        throw std::runtime_error(item.name + ": wrong checksum");
    return content;
}

void parse(const Bytes& document, XML_StartElementHandler handler, void* target) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS(nullptr, '|'), XML_ParserFree);
    XML_SetUserData(parser.get(), target);
    XML_SetStartElementHandler(parser.get(), handler);
    if (XML_Parse(parser.get(), reinterpret_cast<const char*>(document.data()),
                  static_cast<int>(document.size()), 1) != XML_STATUS_OK)
        throw std::runtime_error("not well-formed");
}

bool isNamed(const XML_Char* element, std::string_view name) {
    const char* const separator = std::strchr(element, '|');
    return separator != nullptr && separator + 1 == name;
}

/// The value of that attribute; empty if there is none.
std::string valueOf(const XML_Char** attributes, std::string_view name) {
    for (; *attributes != nullptr; attributes += 2)
        if (attributes[0] == name)
            return attributes[1];
    return {};
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

ContentTypes readContentTypes(const Bytes& document) {
    ContentTypes types;
    const auto add = [](void* target, const XML_Char* element, const XML_Char** attributes) {
        auto& found = *static_cast<ContentTypes*>(target);
        if (isNamed(element, "Default"))
            found.defaults[lowerCase(valueOf(attributes, "Extension"))] = valueOf(attributes, "ContentType");
        else if (isNamed(element, "Override"))
            found.overrides[lowerCase(valueOf(attributes, "PartName"))] = valueOf(attributes, "ContentType");
    };
    parse(document, add, &types);
    return types;
}

std::vector<Relationship> readRelationships(const Bytes& document) {
    std::vector<Relationship> relationships;
    const auto add = [](void* target, const XML_Char* element, const XML_Char** attributes) {
        if (isNamed(element, "Relationship"))
            static_cast<std::vector<Relationship>*>(target)->push_back(
                {valueOf(attributes, "Id"), valueOf(attributes, "Type"), valueOf(attributes, "Target"),
                 valueOf(attributes, "TargetMode") == "External"});
    };
    parse(document, add, &relationships);
    return relationships;
}

std::string contentTypeOf(const std::string& item, const ContentTypes& types) {
    const auto override = types.overrides.find(lowerCase('/' + item));
    if (override != types.overrides.end())
        return override->second;
    const auto byExtension = types.defaults.find(lowerCase(item.substr(item.rfind('.') + 1)));
    return byExtension != types.defaults.end() ? byExtension->second : std::string();
}

bool isRelationshipsPart(std::string_view name) {
    constexpr std::string_view END = ".rels";
    return name.size() > END.size() && name.substr(name.size() - END.size()) == END;
}

} // namespace

std::size_t listStraightforwardly(const std::filesystem::path& path) {
    RawArchive archive(path);
    Items items;
    for (const RawArchive::Item& item : archive.directory())
        items.emplace(item.name, item);
    const ContentTypes types = readContentTypes(readItem(archive, items.at("[Content_Types].xml")));
    std::map<std::string, std::vector<Relationship>> relationships;
    std::map<std::string, std::string> parts;
    for (const auto& [name, item] : items)
        if (isRelationshipsPart(name))
            relationships[name] = readRelationships(readItem(archive, item));
        else
            parts[name] = contentTypeOf(name, types);
    std::size_t size = 0;
    for (const auto& [name, type] : parts)
        size += name.size() + type.size();
    for (const auto& [source, list] : relationships)
        for (const Relationship& relationship : list)
            size += relationship.id.size() + relationship.type.size() + relationship.target.size();
    return size;
}

} // namespace bench

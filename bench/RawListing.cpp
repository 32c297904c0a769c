#include "RawListing.hpp"

#include "RawArchive.hpp"

#include <expat.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace bench {

namespace {

/// The content of the documents: the content types by extension or part name, and all other values.
struct Found {
    std::unordered_map<std::string, std::string> contentTypes;
    std::vector<std::string> others;
};

void XMLCALL collect(void* target, const XML_Char* /*name*/, const XML_Char** attributes) {
    auto& found = *static_cast<Found*>(target);
    const char* key = nullptr;
    const char* contentType = nullptr;
    for (; *attributes != nullptr; attributes += 2) {
        const std::string_view name = attributes[0];
        if (name == "ContentType")
            contentType = attributes[1];
        else if (name == "Extension" || name == "PartName")
            key = attributes[1];
        else
            found.others.emplace_back(attributes[1]);
    }
    if (key != nullptr && contentType != nullptr)
        found.contentTypes.emplace(key, contentType);
}

/// The size of an item's content type; 0 if it has none.
std::size_t contentTypeSize(const Found& found, const std::string& item) {
    auto type = found.contentTypes.find('/' + item);
    if (type == found.contentTypes.end())
        type = found.contentTypes.find(item.substr(item.rfind('.') + 1));
    return type == found.contentTypes.end() ? 0 : type->second.size();
}

bool isListed(std::string_view name) {
    constexpr std::string_view END = ".rels";
    return name == "[Content_Types].xml" ||
           (name.size() > END.size() && name.substr(name.size() - END.size()) == END);
}

} // namespace

std::size_t listRawPackage(const std::filesystem::path& path) {
    RawArchive archive(path);
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                              XML_ParserFree);
    Found found;
    for (const auto& item : archive.directory()) {
        if (!isListed(item.name))
            continue;
        const std::string_view text = archive.content(item);
        XML_ParserReset(parser.get(), nullptr);
        XML_SetUserData(parser.get(), &found);
        XML_SetStartElementHandler(parser.get(), collect);
        if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
            throw std::runtime_error("not well-formed");
    }
    std::size_t size = 0;
    for (const auto& item : archive.directory())
        size += item.name.size() + contentTypeSize(found, item.name);
    for (const std::string& text : found.others)
        size += text.size();
    return size;
}

} // namespace bench

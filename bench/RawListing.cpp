#include "RawListing.hpp"

#include "RawArchive.hpp"

#include <expat.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

namespace {

using Texts = std::vector<std::string>;

void XMLCALL collect(void* texts, const XML_Char* /*name*/, const XML_Char** attributes) {
    for (; *attributes != nullptr; attributes += 2)
        static_cast<Texts*>(texts)->emplace_back(attributes[1]);
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
    Texts texts;
    for (const auto& item : archive.directory()) {
        if (!isListed(item.name))
            continue;
        const std::string_view text = archive.content(item);
        XML_ParserReset(parser.get(), nullptr);
        XML_SetUserData(parser.get(), &texts);
        XML_SetStartElementHandler(parser.get(), collect);
        if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
            throw std::runtime_error("not well-formed");
    }
    std::size_t size = 0;
    for (const auto& item : archive.directory())
        size += item.name.size();
    for (const std::string& text : texts)
        size += text.size();
    return size;
}

} // namespace bench

#include "SamplePackages.hpp"

#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <random>

namespace bench {

using namespace opc::model;

PartName partName(int number) {
    const std::string name =
        "/content/folder" + std::to_string(number / 100) + "/part" + std::to_string(number) + ".xml";
    return PartName(std::u16string(name.begin(), name.end()));
}

std::string partContent(int number) {
    static const char* const WORDS[] = {"first", "the", "part", "of", "content", "number", "and", "other"};
    std::minstd_rand random(static_cast<unsigned>(number) + 1);
    std::string content = "<content>";
    while (content.size() < 1000)
        content += "<p style='s" + std::to_string(random() % 10) + "'>" + WORDS[random() % 8] + ' ' +
                   WORDS[random() % 8] + ' ' + std::to_string(random() % 1000) + "</p>";
    return content + "</content>";
}

std::vector<std::string> partContents(int parts) {
    std::vector<std::string> contents;
    for (int i = 0; i < parts; ++i)
        contents.push_back(partContent(i));
    return contents;
}

void createPackage(opc::interfaces::IPhysicalPackage& store, const std::vector<std::string>& contents,
                   int contentTypes) {
    Package package(store);
    package.open(opc::interfaces::OpenMode::CreateOnly);
    int number = 0;
    for (const std::string& content : contents) {
        const std::string type =
            "application/vnd.example.document.part" + std::to_string(number % contentTypes) + "+xml";
        const std::string link = "http://example.com/documents?id=" + std::to_string(number);
        Part part = package.createPart(
            partName(number++), ContentType(std::u16string(type.begin(), type.end())), StandardPartInfo());
        part.getOutputStream().write(reinterpret_cast<const unsigned char*>(content.data()), content.size());
        part.createInternalRelationship(u"http://example.com/relationships/next", URI(u"next.xml"));
        part.createInternalRelationship(u"http://example.com/relationships/top", URI(u"/top.xml"));
        part.createExternalRelationship(u"http://example.com/relationships/link",
                                        std::u16string(link.begin(), link.end()));
    }
    package.close(false);
}

} // namespace bench

// Makes a package with two parts and the relationships that lead to them.

#include <opc/core/Exception.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>
#include <string>

using namespace opc::model;

static void write(const Part& part, const std::string& text) {
    part.getOutputStream().write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: create FILE\n";
        return 2;
    }
    try {
        opc::physical::ZipPackage archive{std::filesystem::path(argv[1])};
        Package package(archive);
        package.open(opc::interfaces::OpenMode::CreateOnly);

        Part story =
            package.createPart(PartName(u"/story.xml"), ContentType(u"application/xml"), StandardPartInfo());
        write(story, "<story>Once upon a time</story>\n");
        const Part notes =
            package.createPart(PartName(u"/notes/first.txt"), ContentType(u"text/plain"), StandardPartInfo());
        write(notes, "Ask for the ending.\n");

        package.createInternalRelationship(u"urn:example:story", story.getName().getURI());
        story.createInternalRelationship(u"urn:example:note", notes.getName().getURI());
        story.createExternalRelationship(u"urn:example:author", u"https://example.com/author");

        package.close(false); // false: write it
        return 0;
    } catch (const opc::Exception& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}

// Replaces the content of one part of a package and deletes another. Everything else stays unchanged.

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>
#include <string>

using namespace opc::model;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: change FILE\n";
        return 2;
    }
    opc::physical::ZipPackage archive{std::filesystem::path(argv[1])};
    Package package(archive);
    try {
        package.open(opc::interfaces::OpenMode::ReadWrite);
        Part story = package.getPart(PartName(u"/story.xml"));
        const std::string text = "<story>Once upon a time, and they lived happily.</story>\n";
        story.getOutputStream().write(reinterpret_cast<const unsigned char*>(text.data()), text.size());

        package.deletePart(PartName(u"/notes/first.txt"));
        for (const Relationship& relationship : story.getRelationshipsByType(u"urn:example:note"))
            story.deleteRelationship(relationship.getID()); // deleting a part leaves those to it
        package.close(false);
        return 0;
    } catch (const PartNotFound& e) {
        std::cerr << e.what() << ": is this what the first example made?\n";
    } catch (const opc::Exception& e) {
        std::cerr << e.what() << '\n';
    }
    return 1; // the package's destructor drops the changes
}

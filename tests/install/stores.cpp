// Keeps a package in a ZIP archive, reads it, checks it and packs it anew, and catches what the library throws by its class.

#include <opc/editing/Repacking.hpp>
#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Inspection.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/model/XmlRules.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>

using namespace opc::model;
using opc::interfaces::OpenMode;

int main(int, char** argv) {
    {
        opc::physical::ZipPackage archive{std::filesystem::path(argv[1])};
        Package package(archive);
        package.open(OpenMode::CreateOnly);
        Part part =
            package.createPart(PartName(u"/a.xml"), ContentType(u"application/xml"), StandardPartInfo());
        part.getOutputStream().write(reinterpret_cast<const unsigned char*>("<a/>"), 4);
        package.close(false);
    }
    opc::physical::ZipPackage archive{std::filesystem::path(argv[1])};
    Package package(archive);
    package.open(OpenMode::ReadOnly);
    if (package.getParts().size() != 1)
        return 1;
    try {
        package.getPart(PartName(u"/b.xml"));
        return 2;
    } catch (const PartNotFound& e) {
        std::cout << e.what() << '\n';
    }
    try {
        const std::string document =
            "<?xml version='1.0' encoding='UTF-16'?><a>"; // only Xerces says what is wrong
        XmlRules::check(std::vector<unsigned char>(document.begin(), document.end()));
        return 3;
    } catch (const InvalidXMLDocument& e) {
        std::cout << e.what() << '\n';
    }
    const opc::inspection::Archive plain{std::filesystem::path(argv[1])};
    const bool whole =
        opc::inspection::inspect(plain).findings.empty() && opc::editing::repack(plain).items == 2;
    return whole ? 0 : 4;
}

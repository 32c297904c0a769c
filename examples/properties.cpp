// Sets title, creator and keywords of a document. Its other properties don't change.

#include <opc/core/Exception.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>

using opc::model::CoreProperties;
using opc::model::Package;
using opc::model::PackageHelper;

static void describe(const std::filesystem::path& path) {
    opc::physical::ZipPackage archive(path);
    Package package(archive);
    package.open(opc::interfaces::OpenMode::ReadWrite);

    CoreProperties properties = PackageHelper::getCoreProperties(package);
    properties.setTitle(u"On the art of binding books");
    properties.setCreator(u"Ada Binder");
    properties.setKeywords({{u"books", u"en"}, {u"Bücher", u"de"}});
    PackageHelper::createOrUpdateCoreProperties(package, properties);
    package.close(false);
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: properties FILE\n";
        return 2;
    }
    try {
        describe(argv[1]);
        return 0;
    } catch (const opc::Exception& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}

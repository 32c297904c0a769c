// Walks through a package from its root along the internal relationships, and prints what it finds.

#include <opc/core/Exception.hpp>
#include <opc/core/StreamHelper.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Package.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <iostream>
#include <set>

using namespace opc::model;

static void walk(const Package& package, const RelationshipSource& source, std::set<PartName>& seen) {
    for (const Relationship& relationship : source.getRelationships()) {
        std::cout << opc::toUDEString(relationship.getSourceURI().toString()) << " -> "
                  << opc::toUDEString(relationship.getTarget()) << " ("
                  << opc::toUDEString(relationship.getType()) << ")\n";
        if (relationship.getTargetMode() == TargetMode::External)
            continue;
        const PartName target(relationship.getTargetURI());
        if (!package.hasPart(target) || !seen.insert(target).second)
            continue;
        const Part part = package.getPart(target);
        std::cout << "  " << opc::toUDEString(part.getContentType().toString()) << ": ";
        opc::StreamHelper::copyStreamToStream(part.getInputStream(), std::cout);
        walk(package, part, seen);
    }
}

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: read FILE\n";
        return 2;
    }
    try {
        opc::physical::ZipPackage archive{std::filesystem::path(argv[1])};
        Package package(archive);
        package.open(opc::interfaces::OpenMode::ReadOnly);
        std::set<PartName> seen;
        walk(package, package, seen);
        return seen.empty() ? 1 : 0;
    } catch (const opc::Exception& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}

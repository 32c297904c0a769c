#include "FuzzTarget.hpp"

#include "listing/PackageListing.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <algorithm>
#include <functional>
#include <memory_resource>
#include <string>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;
using interfaces::OpenMode;

namespace {

using Pieces = std::vector<Bytes>;

/// The pieces are the content types stream, the relationships of the package, those of `/a.xml`, core properties, and
/// the names of further parts.
void fill(physical::MemoryPackage& store, Pieces pieces) {
    constexpr std::size_t DOCUMENTS = 4;
    pieces.resize(std::max(pieces.size(), DOCUMENTS));
    store.setContentTypes(pieces[0]);
    store.setPart(u"/a.xml", {});
    for (const auto& [name, document] :
         {std::pair(u"/_rels/.rels", pieces[1]), std::pair(u"/_rels/a.xml.rels", pieces[2])})
        if (!document.empty())
            store.setPart(name, document);
    store.setPart(u"/c.xml", pieces[3]);
    for (std::size_t next = DOCUMENTS; next < pieces.size(); ++next)
        store.setPart(u"/" + toText(pieces[next]), {});
}

std::string tellPart(std::string_view name, std::string_view contentType, std::size_t relationships) {
    return std::string(name) + " " + std::string(contentType) + " " + std::to_string(relationships) + "\n";
}

std::string tellRelationship(std::string_view source, std::string_view id, std::string_view type,
                             std::string_view target, bool isExternal) {
    std::string line;
    for (const std::string_view text : {source, id, type, target})
        line.append(text).append(" ");
    return line + (isExternal ? "External\n" : "\n");
}

void tellRelationships(std::string& told, const std::string& source, const RelationshipSource& of) {
    for (const Relationship& one : of.getRelationships())
        told += tellRelationship(source, toUDEString(one.getID()), toUDEString(one.getType()),
                                 toUDEString(one.getTarget()), one.getTargetMode() == TargetMode::External);
}

std::string tell(const Package& package) {
    std::string told;
    for (const Part& part : package.getParts()) {
        require(!part.hasUnreadRelationships(), "nothing is unread");
        told += tellPart(toUDEString(part.getName().toString()),
                         toUDEString(part.getContentType().toString()), part.getRelationships().size());
    }
    tellRelationships(told, "/", package);
    for (const Part& part : package.getParts())
        tellRelationships(told, toUDEString(part.getName().toString()), part);
    return told;
}

std::string tell(const PackageListing& listing) {
    std::string told;
    for (const PackageListing::ListedPart& part : listing.parts())
        told += tellPart(part.name, part.contentType, part.relationships);
    for (const auto& [source, id, type, target, isExternal] : listing.relationships())
        told += tellRelationship(source, id, type, target, isExternal);
    return told;
}

/// The fields that are there, or the failure.
std::string tellProperties(const std::function<CoreProperties()>& read) {
    try {
        const CoreProperties properties = read();
        std::string told;
        for (const CorePropertyField& field : CorePropertyField::all())
            if (field.visit(properties, [](const auto& value) { return bool(value); }))
                told += std::string(field.name()) + " ";
        return told + (properties.getTitle() ? toUDEString(*properties.getTitle()) : "");
    } catch (const Exception& e) {
        return e.what();
    }
}

} // namespace

/// What is listed, the model reads in the same way.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XercesGuard guard; // starting Xerces takes longer than reading
    const Pieces pieces = split(data, size, 1);
    physical::MemoryPackage store;
    fill(store, pieces);
    store.open(OpenMode::ReadOnly);
    std::pmr::monotonic_buffer_resource memory;
    const std::optional<PackageListing> listing = PackageListing::read(store, memory);
    if (!listing)
        return 0;
    physical::MemoryPackage other;
    fill(other, pieces);
    Package package(other);
    package.open(OpenMode::ReadOnly);
    require(!package.hasUnreadContentTypes() && !package.hasUnreadRelationships(), "nothing is unread");
    require(tell(*listing) == tell(package), "both tell the same");
    bool isRead = true;
    const std::string properties = tellProperties([&] {
        CoreProperties found;
        isRead = listing->readCoreProperties(found);
        return found;
    });
    if (isRead)
        require(properties == tellProperties([&] { return PackageHelper::getCoreProperties(package); }),
                "both read the same properties");
    return 0;
}

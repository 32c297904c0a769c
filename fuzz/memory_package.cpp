#include "FuzzTarget.hpp"

#include "contenttypes/ContentTypeMap.hpp"
#include "contenttypes/ContentTypeSerializer.hpp"
#include "relationships/RelationshipManager.hpp"
#include "relationships/RelationshipSerializer.hpp"
#include "support/PackageContent.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/DigitalSignatureManager.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/SignatureCoverage.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::model;
using interfaces::OpenMode;

namespace {

constexpr std::size_t MOST_PARTS = 32;
constexpr char16_t NEW_PART[] = u"/fuzzed/part.xml";
constexpr std::string_view ORIGIN_RELATIONSHIP = "digital-signature/origin";

bool isNamed(std::string_view name, const std::uint8_t* data, std::size_t size) {
    return std::search(data, data + size, name.begin(), name.end()) != data + size;
}

/// The pieces of the input between zero bytes: the content types stream, and then the parts, each with its name in
/// the first line. Leaves out names with a query or a fragment, because parts whose names differ only in these share
/// one relationships part.
void fill(physical::MemoryPackage& store, const std::vector<Bytes>& pieces) {
    store.setContentTypes(pieces.front());
    for (std::size_t i = 1; i < std::min(pieces.size(), MOST_PARTS); ++i) {
        const auto line = std::find(pieces[i].begin(), pieces[i].end(), '\n');
        const std::u16string name = toText(Bytes(pieces[i].begin(), line));
        if (name.find_first_of(u"?#") == std::u16string::npos)
            store.setPart(name, line == pieces[i].end() ? Bytes() : Bytes(line + 1, pieces[i].end()));
    }
}

bool open(Package& package, OpenMode mode) {
    return attempt<InvalidContentTypeStream, InvalidContentType, ContentTypeNotFound, InvalidPartName,
                   InvalidURI, InvalidRelationshipContent, InconsistentPackage, PackageOpenFailed,
                   InvalidCorePropertiesRelationships>([&] { package.open(mode); });
}

std::string readFromStart(const Part& part) {
    part.getInputStream().close();
    part.getInputStream().open();
    return opc::test::readAll(part);
}

using Lines = std::vector<std::u16string>;

void addRelationships(const RelationshipSource& source, Lines& lines) {
    for (const Relationship& relationship : source.getRelationships()) {
        const bool external = relationship.getTargetMode() == TargetMode::External;
        lines.push_back(relationship.getID() + u" " + relationship.getType() + u" " +
                        relationship.getTarget() + (external ? u" External" : u""));
        require(source.hasRelationship(relationship.getID()), "a relationship is found by its ID");
        if (!attempt<InvalidURI>([&] { relationship.getTargetURI(); }))
            require(external, "an internal target can be resolved");
    }
}

/// Everything that the model says about a package.
Lines contentOf(const Package& package) {
    Lines lines;
    addRelationships(package, lines);
    for (const Part& part : package.getParts()) {
        require(package.hasPart(part.getName()), "a part is found by its name");
        lines.push_back(part.getName().toString());
        lines.push_back(part.getContentType().toString());
        lines.push_back(opc::toString(readFromStart(part), false));
        addRelationships(part, lines);
    }
    return lines;
}

using Documents = std::map<std::u16string, Bytes>;

/// The documents of the model with elements that it ignores. The content types stream has no name.
Documents unreadDocuments(const physical::MemoryPackage& store) {
    static RelationshipSerializer serializer;
    Documents documents;
    ContentTypeMap types;
    const Bytes stream = store.contentTypes();
    ByteArrayInAdaptor typesStream(stream);
    ContentTypeSerializer().read(types, typesStream);
    if (types.countUnread() > 0)
        documents.emplace(u"", stream);
    for (const std::u16string& name : store.partNames()) {
        if (!PartName(name).isRelationshipName())
            continue;
        const Bytes bytes = store.partBytes(name);
        ByteArrayInAdaptor part(bytes);
        RelationshipManager relationships(URI(u"/source"));
        relationships.read(part, serializer);
        if (relationships.countUnread() > 0)
            documents.emplace(name, bytes);
    }
    return documents;
}

/// They haven't changed, or were deleted with their sources.
void checkUnread(const physical::MemoryPackage& store, const Documents& documents) {
    for (const auto& [name, bytes] : documents)
        require(name.empty() ? store.contentTypes() == bytes
                             : !store.hasPart(name) || store.partBytes(name) == bytes,
                "what wasn't read isn't written over");
}

/// What a lenient package hides. It is closed by now.
Documents hiddenDocuments(const physical::MemoryPackage& store, const physical::LenientPackage& lenient) {
    Documents documents;
    for (const auto& item : lenient.hiddenItems())
        documents.emplace(item.name, store.partBytes(item.name));
    return documents;
}

void checkHidden(const physical::MemoryPackage& store, const Documents& documents) {
    for (const auto& [name, bytes] : documents)
        require(store.hasPart(name) && store.partBytes(name) == bytes, "what is hidden stays");
}

void lookAtSignatures(Package& package, DigitalSignatureManager& signatures) {
    attempt<InvalidSignature, std::invalid_argument, std::out_of_range>([&] {
        for (const DigitalSignature& signature : signatures.getSignatures()) {
            const SignatureCoverage coverage(signatures, signature);
            for (const Part& part : package.getParts(ExcludeMode::ExcludeManaged))
                coverage.covers(part.getName());
        }
    });
}

void change(Package& package, RelationshipSource& source) {
    attempt<RelationshipAlreadyExists, PartAlreadyExists, PartCreateFailed, InvalidRelationshipContent,
            InvalidContentTypeStream>(
        [&] { source.createExternalRelationship(u"urn:fuzz", u"http://example.com/a b", u"fuzzed"); });
    attempt<InvalidRelationshipTarget, UnsupportedRelativize, PartAlreadyExists, PartCreateFailed,
            InvalidRelationshipContent, InvalidContentTypeStream>(
        [&] { source.createInternalRelationship(u"urn:fuzz", URI(NEW_PART)); });
    const auto relationships = source.getRelationships();
    if (relationships.size() > 2 && package.getParts().size() % 2 == 0)
        attempt<InvalidRelationshipContent, InvalidContentTypeStream>(
            [&] { source.deleteRelationship(relationships.begin()->getID()); });
}

/// Compiling the schemas takes longer than everything else, so this needs core properties, or few parts.
void changeCoreProperties(Package& package) {
    const auto relationships =
        package.getRelationshipsByType(PackageHelper::getCorePropertiesRelationshipType());
    if (relationships.empty() && package.getParts().size() > 2)
        return;
    CoreProperties properties;
    attempt<InvalidPartContent, PartNotFound, InvalidPartName, InvalidURI>(
        [&] { properties = PackageHelper::getCoreProperties(package); });
    properties.setTitle(u"title");
    attempt<PartAlreadyExists, PartIsDerivedFromExistingPartName, PartCreateFailed, PartNotFound,
            InvalidPartName, InvalidURI, InvalidRelationshipContent, InvalidContentTypeStream>(
        [&] { PackageHelper::createOrUpdateCoreProperties(package, properties); });
}

void change(Package& package) {
    attempt<PartAlreadyExists, PartIsDerivedFromExistingPartName, PartCreateFailed, InvalidContentTypeStream>(
        [&] {
            const Part part =
                package.createPart(PartName(NEW_PART), ContentType(u"a/b;c=d"), StandardPartInfo());
            opc::test::writeAll(part, "content");
        });
    change(package, package);
    for (Part part : package.getParts())
        change(package, part);
    changeCoreProperties(package);
    const auto parts = package.getParts();
    if (parts.size() > 3)
        attempt<InvalidContentTypeStream>([&] { package.deletePart(parts.begin()->getName()); });
}

void compare(const Lines& again, const Lines& expected) {
    for (std::size_t i = 0; i < std::min(again.size(), expected.size()); ++i)
        requireEqual(again[i], expected[i], "what was written is read again");
    require(again.size() == expected.size(), "all that was written is read again");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const XercesGuard guard; // starting Xerces takes longer than reading
    physical::MemoryPackage store;
    fill(store, split(data, size, '\0'));
    const bool isLenient = size % 2 == 1;
    physical::LenientPackage lenient(store);
    Package package(isLenient ? static_cast<interfaces::IPhysicalPackage&>(lenient) : store);
    std::optional<DigitalSignatureManager> signatures; // compiles its schemas only if needed
    if (isNamed(ORIGIN_RELATIONSHIP, data, size))
        signatures.emplace(package);
    if (!open(package, OpenMode::ReadWrite)) {
        require(!package.isOpen(), "a package that couldn't be opened is closed");
        require(!open(package, OpenMode::ReadWrite), "what couldn't be opened can't be opened");
        return 0;
    }
    const Lines found = contentOf(package);
    if (signatures)
        lookAtSignatures(package, *signatures);
    const bool isWhole = package.getIgnoredItems().empty();
    package.close(true);
    const Documents hidden = hiddenDocuments(store, lenient);
    const Documents unread =
        !isLenient && isNamed("xmlns:", data, size) ? unreadDocuments(store) : Documents();
    require(open(package, OpenMode::ReadWrite), "what was opened can be opened again");
    change(package);
    const Lines changed = contentOf(package);
    const bool abandoned = size % 4 == 0;
    package.close(abandoned);
    checkUnread(store, unread);
    checkHidden(store, hidden);
    require(open(package, OpenMode::ReadOnly), "what was written can be opened");
    if (isWhole) // otherwise another one may be read now that an earlier one is gone
        compare(contentOf(package), abandoned ? found : changed);
    package.close(false);
    require(hiddenDocuments(store, lenient) == hidden, "what was hidden is hidden again, and nothing else");
    return 0;
}

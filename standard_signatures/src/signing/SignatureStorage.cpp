#include "signing/SignatureStorage.hpp"

#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "signing/OtherSignatures.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/StandardPartInfo.hpp>

namespace opc::standard_signatures {

namespace {

using model::Package;
using model::Part;
using model::PartName;
using model::URI;

std::u16string wide(std::string_view text) {
    return toString(std::string(text), true);
}

PartName nameOf(const StoredPart& part) {
    return PartName(part.physical->getName());
}

const StoredPart* relationshipsOf(const std::string& source, const PackageContents& contents) {
    return contents.find(relationshipsNameOf(source));
}

/// The first name that no part has and no part is derived from: BASE1.END, BASE2.END …
PartName findFreeName(const Package& package, const std::string& base, const std::string& end) {
    for (unsigned number = 1;; ++number) {
        PartName name(wide(std::string(base).append(std::to_string(number)).append(end)));
        std::u16string existing;
        if (!package.hasPart(name) && !package.isPartDerivedFromExistingPartName(name, existing))
            return name;
    }
}

/// In what folder the signatures of an origin lie, with a slash at its end.
std::string folderOf(const PartName& origin) {
    const std::string name = toUDEString(origin.toString());
    return name.substr(0, name.rfind('/') + 1);
}

PartName addOrigin(Package& package) {
    PartName name(u"/_xmlsignatures/origin.sigs");
    std::u16string existing;
    if (package.hasPart(name) || package.isPartDerivedFromExistingPartName(name, existing))
        name = findFreeName(package, "/_xmlsignatures/origin", ".sigs");
    package.createInternalRelationship(wide(ORIGIN_RELATIONSHIP), URI(name.toString()));
    package.createPart(name, model::ContentType(wide(ORIGIN_CONTENT_TYPE)), model::StandardPartInfo())
        .getOutputStream()
        .close();
    return name;
}

/// A package has one origin at most [M6.1]: the new one takes the place of one that is missing.
void removeRelationshipsToNoOrigin(Package& package, const PackageMap& map) {
    for (const MappedRelationship& one : map.relationships())
        if (one.role == RelationshipRole::OfSignatures && one.values->type == ORIGIN_RELATIONSHIP &&
            one.target == nullptr)
            package.deleteRelationship(wide(one.values->id));
}

void write(const Part& part, const std::string& document) {
    OutputStream& stream = part.getOutputStream();
    const auto* bytes = reinterpret_cast<const unsigned char*>(document.data());
    for (std::uint64_t left = document.size(); left > 0;) {
        const std::uint64_t count = stream.isDone() ? 0 : stream.write(bytes, left);
        if (count == 0)
            throw Exception("The signature can't be written");
        bytes += count;
        left -= count;
    }
    stream.close();
}

} // namespace

std::string addSignature(Package& package, const std::string& document, PackageContents& contents,
                         const PackageMap& map) {
    const StoredPart* const known = map.origin();
    throwIfBroken(
        {known == nullptr ? relationshipsOf("/", contents) : relationshipsOf(known->name, contents)}, {},
        contents, map);
    if (known == nullptr)
        removeRelationshipsToNoOrigin(package, map);
    const PartName origin = known == nullptr ? addOrigin(package) : nameOf(*known);
    const PartName name = findFreeName(package, folderOf(origin) + "sig", ".xml");
    package.getPart(origin).createInternalRelationship(wide(SIGNATURE_RELATIONSHIP), URI(name.toString()));
    write(
        package.createPart(name, model::ContentType(wide(SIGNATURE_CONTENT_TYPE)), model::StandardPartInfo()),
        document);
    return toUDEString(name.toString());
}

} // namespace opc::standard_signatures

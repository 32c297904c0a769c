#include "signing/SignatureStorage.hpp"

#include "crypto/Digest.hpp"
#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "signing/OtherSignatures.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/ContentType.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <set>

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

/// Tells which names a new part can have.
class FreeNames {
public:
    FreeNames(const Package& package, const PackageMap& map) : package(package) {
        for (const MappedRelationship& one : map.relationships())
            if (one.target == nullptr && one.role != RelationshipRole::OfSignatures)
                awaited.insert(partKeyOf(resolveTarget(*one.document->source, one.values->target)));
    }

    /// Whether no part has it, no part is derived from it, and no relationship waits for it: then it would be content.
    bool isFree(const PartName& name) const {
        std::u16string existing;
        return !package.hasPart(name) && !package.isPartDerivedFromExistingPartName(name, existing) &&
               awaited.count(partKeyOf(toUDEString(name.toString()))) == 0;
    }

    /// The first one that is free: BASE1.END, BASE2.END …
    PartName find(const std::string& base, const std::string& end) const {
        for (unsigned number = 1;; ++number) {
            PartName name(wide(std::string(base).append(std::to_string(number)).append(end)));
            if (isFree(name))
                return name;
        }
    }

private:
    const Package& package;
    std::set<std::string> awaited; ///< keys
};

/// Makes a name one that can't stand in the package. Documents of other formats than those of office programs find parts by their
/// path, so that a program could show a signature whose name stands in them.
std::string unforeseenDigits(const std::string& document) {
    constexpr std::size_t BYTES = 8; // more of a name isn't looked for
    std::vector<unsigned char> digest =
        digestOf(document, digestMethodOf(bedrock::crypto::DigestAlgorithm::SHA256));
    digest.resize(BYTES);
    std::string digits;
    for (const unsigned char byte : digest)
        digits += {"0123456789abcdef"[byte >> 4U], "0123456789abcdef"[byte & 15U]};
    return digits;
}

constexpr std::string_view SIGNATURE_FOLDER = "/_xmlsignatures/";

/// The folder of a part, with a slash at its end.
std::string folderOf(const PartName& part) {
    const std::string name = toUDEString(part.toString());
    return name.substr(0, name.rfind('/') + 1);
}

PartName addOrigin(Package& package, const PackageMap& map) {
    const FreeNames names(package, map);
    PartName name(wide(SIGNATURE_FOLDER) + u"origin.sigs");
    if (!names.isFree(name))
        name = names.find(std::string(SIGNATURE_FOLDER) + "origin", ".sigs");
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
    const PartName origin = known == nullptr ? addOrigin(package, map) : nameOf(*known);
    const std::string base =
        folderOf(origin) + "sig" + (map.isOfOfficeProgram() ? std::string() : unforeseenDigits(document));
    const PartName name = FreeNames(package, map).find(base, ".xml");
    package.getPart(origin).createInternalRelationship(wide(SIGNATURE_RELATIONSHIP), URI(name.toString()));
    write(
        package.createPart(name, model::ContentType(wide(SIGNATURE_CONTENT_TYPE)), model::StandardPartInfo()),
        document);
    return toUDEString(name.toString());
}

} // namespace opc::standard_signatures

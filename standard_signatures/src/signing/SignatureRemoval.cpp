#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "signing/OtherSignatures.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PartName.hpp>
#include <opc/standard_signatures/Signing.hpp>

#include <unordered_set>

namespace opc::standard_signatures {

namespace {

using model::Package;
using model::PartName;

PartName removedName(const StoredPart& part) {
    return PartName(part.physical->getName());
}

/// What goes with some of the signatures.
class Removal {
public:
    /// @throws SigningRefused  a name is none of a signature
    Removal(const std::vector<std::string>& names, PackageContents& contents, const PackageMap& map)
        : contents(contents), map(map) {
        const std::unordered_set<const StoredPart*> known(map.signatures().begin(), map.signatures().end());
        for (const std::string& name : names) {
            const StoredPart* const signature = contents.find(decodePercent(name));
            if (known.count(signature) == 0)
                throw SigningRefused("There is no signature " + name);
            leaving.insert(signature);
        }
        areAll = leaving.size() == known.size();
        for (const MappedRelationship& one : map.relationships())
            if (leaves(one))
                relationships.push_back(&one);
            else if (leaving.count(map.sourceOf(one)) == 0)
                stillUsed.insert(one.target);
    }

    void throwIfOthersBreak() const {
        std::set<const StoredPart*> changed;
        for (const MappedRelationship* const one : relationships)
            changed.insert(one->document);
        throwIfBroken(changed, leaving, contents, map);
    }

    void apply(Package& package) const {
        for (const MappedRelationship* const one : relationships) {
            const std::u16string id = toString(one->values->id, true);
            if (const StoredPart* const source = map.sourceOf(*one); source == nullptr)
                package.deleteRelationship(id);
            else if (package.hasPart(removedName(*source)))
                package.getPart(removedName(*source)).deleteRelationship(id);
        }
        for (const MappedRelationship& one : map.relationships())
            if (isCertificateThatGoes(one) && package.hasPart(removedName(*one.target)))
                package.deletePart(removedName(*one.target));
        for (const StoredPart* const signature : leaving)
            if (map.isExempt(*signature)) // a relationship can also say of content that it were a signature
                package.deletePart(removedName(*signature));
        if (areAll && map.origin() != nullptr && map.isExempt(*map.origin()))
            package.deletePart(removedName(*map.origin()));
    }

private:
    bool leaves(const MappedRelationship& one) const {
        return one.values->type == SIGNATURE_RELATIONSHIP
                   ? leaving.count(one.target) != 0
                   : areAll && one.values->type == ORIGIN_RELATIONSHIP &&
                         one.role == RelationshipRole::OfSignatures;
    }

    bool isCertificateThatGoes(const MappedRelationship& one) const {
        return one.values->type == CERTIFICATE_RELATIONSHIP && one.target != nullptr &&
               leaving.count(map.sourceOf(one)) != 0 && map.isExempt(*one.target) &&
               leaving.count(one.target) == 0 && stillUsed.count(one.target) == 0;
    }

    PackageContents& contents;
    const PackageMap& map;
    std::set<const StoredPart*> leaving;
    bool areAll = false;
    std::vector<const MappedRelationship*> relationships; ///< which lead to what goes
    std::unordered_set<const StoredPart*> stillUsed;      ///< what the others lead to
};

} // namespace

void removeSignatures(Package& package, interfaces::IPhysicalPackage& store,
                      const std::vector<std::string>& parts) {
    PackageContents contents(store);
    const PackageMap map(contents);
    const Removal removal(parts, contents, map);
    removal.throwIfOthersBreak();
    removal.apply(package);
}

void removeSignature(Package& package, interfaces::IPhysicalPackage& store, const std::string& part) {
    removeSignatures(package, store, {part});
}

} // namespace opc::standard_signatures

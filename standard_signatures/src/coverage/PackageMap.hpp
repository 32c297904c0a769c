#pragma once

#include "content/ContentForm.hpp"
#include "content/PackageContents.hpp"
#include "hash/TextHash.hpp"

#include <opc/standard_signatures/Reason.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::standard_signatures {

class DataBindings;

/// What a relationship is there for.
enum class RelationshipRole {
    Content,
    LeftOutByCustom, ///< properties and the thumbnail, which signing programs don't sign
    OfSignatures,    ///< leads to the origin, to a signature, or to a certificate of one
};

struct MappedRelationship {
    const StoredPart* document; ///< the relationships part in which it stands
    const RelationshipValues* values;
    const StoredPart* target; ///< null: external, or there is no such part
    RelationshipRole role;
    bool isMain; ///< leads from the package to the main document of an office program
};

/// A part because of which programs choose by what nothing signs: the order of relationships or parts, or the form of the content
/// types.
struct UnsignedChoice {
    std::string_view part; ///< its name
    const char* reason;
};

/// How the relationships of a package connect its parts.
class PackageMap {
public:
    /// @param contents  must outlive this object
    explicit PackageMap(PackageContents& contents);
    ~PackageMap();

    const std::vector<MappedRelationship>& relationships() const { return all; }

    /// The types of the relationships of the package that custom leaves out.
    static std::vector<std::string_view> typesLeftOutByCustom();

    /// The relationships parts that can't be read, with the reasons.
    const std::vector<Reason>& unreadable() const { return failures; }

    /// The parts that relationships of signatures lead to, from wherever, each once.
    const std::vector<const StoredPart*>& signatures() const { return signatureParts; }
    bool hasOrigin() const { return !origins.empty(); }

    bool hasMainDocument() const;

    /// Whether programs find its parts by relationships alone. Documents of other formats can name any part by its path.
    bool isOfOfficeProgram() const;

    /// What other programs may take for something else. Only fixed pages may have pieces, at most ten of a part.
    std::vector<interfaces::MisnamedItem> misnamedItems() const;

    /// The first origin of signatures; null if there is none.
    const StoredPart* origin() const;

    /// A further relationship to an origin, of which a package has one [M6.1]; null if there is none.
    const MappedRelationship* secondOrigin() const;

    /// The part in which the relationship stands; null for the package.
    const StoredPart* sourceOf(const MappedRelationship& relationship) const {
        return sources[static_cast<std::size_t>(&relationship - all.data())];
    }

    /// The certificates that the relationships of a signature part lead to.
    std::vector<const StoredPart*> certificatesOf(const StoredPart& signature) const;

    /// Further relationships of a type and a source where programs take one by their order.
    const std::vector<const MappedRelationship*>& repeatedImplicit() const { return repeated; }

    /// Other things of which programs take one: data stores, and parts with a content type.
    /// The first call reads what can have content controls and wasn't digested so far.
    std::vector<UnsignedChoice> unsignedChoices() const;

    /// The form that the content of a part must have to need no signature. A package has at most one part of each kind that
    /// custom leaves out, with one relationship.
    /// In formats whose documents find parts by their names, none of these names may stand in the contents that were digested so far.
    /// @return null if it must be signed: something else leads to it, or its name or content type isn't that of such a part
    const ContentForm* exemptFormOf(const StoredPart& part) const;
    bool isExempt(const StoredPart& part) const { return exemptFormOf(part) != nullptr; }

    /// Whether the content has a part in one of the folders in which this one lies, so that programs that read all of a folder,
    /// with what is below, take it for a part of the content.
    bool isAmongContent(const StoredPart& part) const;

    bool isOfSignatures(const StoredPart& part) const { return ofSignatures.count(&part) != 0; }

private:
    void collect(PackageContents& contents);
    void giveRoles();
    template <std::size_t Size>
    bool hasNothingBut(const std::string_view (&types)[Size]) const;
    bool isOfFixedPages() const;
    void findRepeated();
    void findOddTargets();
    void searchForExempt(PackageContents& contents) const;
    void findContentFolders();

    const PackageContents& contents;
    std::vector<MappedRelationship> all;
    std::vector<const MappedRelationship*> repeated;
    std::vector<UnsignedChoice> choices;
    std::unique_ptr<DataBindings> bindings; ///< if there are several data stores
    std::vector<Reason> failures;
    std::vector<const StoredPart*> signatureParts;
    std::unordered_map<const StoredPart*, const ContentForm*> exempt;
    std::unordered_set<const StoredPart*> origins, signaturesOfOrigins, ofSignatures, contentTargets;
    /// By key, without the root and those for signatures.
    std::unordered_set<std::string_view, TextHash> contentFolders;
    std::vector<const StoredPart*> sources; ///< of `all`; null for the package
};

} // namespace opc::standard_signatures

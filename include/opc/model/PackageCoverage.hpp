#pragma once

#include <opc/interfaces/IgnoredItem.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace opc::model {

class CoverageIndex;
class DigitalSignature;
class DigitalSignatureManager;
class Package;
class Part;
class RelationshipSource;

/// A part whose content type differs from the one that a signature names.
struct ChangedContentType {
    PartName part;
    std::u16string now;
    std::u16string whenSigned; ///< empty if the signature names no content type
};

/// What several signatures together cover of a package, and what they don't cover. A value type: later changes of the
/// package don't change it.
///
/// Like `SignatureCoverage`, it doesn't say whether the signatures hold. The parts and relationships of the signatures
/// themselves don't count: an empty origin part, the signature parts, and the relationships that lead to them.
class OPC_MODEL_EXPORT PackageCoverage {
public:
    /// How many parts and relationships the package has, without those of the signatures.
    /// @{
    std::size_t countParts() const { return partCount; }
    std::size_t countRelationships() const { return relationshipCount; }
    /// @}

    /// The parts and relationships that none of the signatures covers, in the order of the package.
    /// @{
    const std::vector<PartName>& getUncoveredParts() const { return uncoveredParts; }
    const std::vector<Relationship>& getUncoveredRelationships() const { return uncoveredRelationships; }
    /// @}

    /// @return the indices of the signatures that cover the part or relationship (see `SignatureCoverage`), ascending.
    ///         The index counts in the list that the coverage was computed for. The time doesn't depend on the number of
    ///         the other signatures
    /// @{
    std::vector<std::size_t> findSignatures(const PartName& name) const;
    std::vector<std::size_t> findSignatures(const Relationship& relationship) const;
    /// @}

    /// The covered parts whose content type differs from the one in a signature.
    const std::vector<ChangedContentType>& getChangedContentTypes() const { return changedContentTypes; }

    /// What the model ignores and another program may read: items of the store that aren't parts or may be taken for
    /// something else than the part that they are here, parts whose names begin with that of another part [M1.11], and
    /// documents with elements that weren't read.
    const std::vector<interfaces::IgnoredItem>& getIgnoredItems() const { return ignoredItems; }

    /// The bytes of the covered core properties part that no signature covers, because they are the keywords: how many
    /// they are, and where they begin.
    /// @{
    std::size_t getKeywordsSize() const { return keywordsSize; }
    std::size_t getKeywordsBegin() const { return keywordsBegin; }
    /// @}

    /// Whether the signatures cover everything, no content type has changed, and nothing is ignored.
    bool isFull() const;

private:
    friend class DigitalSignatureManager;
    friend class SignatureVerdict;

    PackageCoverage() = default;
    PackageCoverage(const Package& package, const std::vector<DigitalSignature>& signatures,
                    std::optional<URI> originURI);

    void addOuterPart(const Package& package, const PartName& name);
    void addPart(const Part& part);
    void addRelationships(const RelationshipSource& source, const URI& uri,
                          const std::u16string& typeOfSignatures);
    void findKeywordsIn(const Part& part);

    std::shared_ptr<const CoverageIndex> index; ///< null if no signature was judged
    std::size_t partCount = 0;
    std::size_t relationshipCount = 0;
    std::vector<PartName> uncoveredParts;
    std::vector<Relationship> uncoveredRelationships;
    std::vector<ChangedContentType> changedContentTypes;
    std::vector<interfaces::IgnoredItem> ignoredItems;
    std::set<std::u16string>
        unreadWhereSigned; ///< relationships parts among the ignored from which some are signed
    std::size_t keywordsBegin = 0;
    std::size_t keywordsSize = 0;
};

} // namespace opc::model

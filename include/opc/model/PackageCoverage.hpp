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

/// A part whose content type isn't the one that its signature names.
struct ChangedContentType {
    PartName part;
    std::u16string now;
    std::u16string whenSigned; ///< empty if the signature names none
};

/// What some signatures cover of a package, taken together, and above all what they don't. A value, which
/// doesn't follow later changes of the package.
///
/// As with `SignatureCoverage`, whether the signatures hold isn't asked here. What belongs to the signatures
/// themselves doesn't count: the origin part if it is empty, the signature parts, and the relationships that
/// lead to them.
class OPC_MODEL_EXPORT PackageCoverage {
public:
    /// How many parts and relationships the package has, but for those of the signatures.
    /// @{
    std::size_t countParts() const { return partCount; }
    std::size_t countRelationships() const { return relationshipCount; }
    /// @}

    /// What none of the signatures covers, in the order of the package.
    /// @{
    const std::vector<PartName>& getUncoveredParts() const { return uncoveredParts; }
    const std::vector<Relationship>& getUncoveredRelationships() const { return uncoveredRelationships; }
    /// @}

    /// Which of the signatures cover the part or the relationship, in the sense of `SignatureCoverage`: their
    /// places in the list that was asked about, ascending. Takes no longer for those that don't.
    /// @{
    std::vector<std::size_t> findSignatures(const PartName& name) const;
    std::vector<std::size_t> findSignatures(const Relationship& relationship) const;
    /// @}

    /// The covered parts whose content type differs from one that a signature names for them.
    const std::vector<ChangedContentType>& getChangedContentTypes() const { return changedContentTypes; }

    /// What the store holds beside the parts, and the documents that hold elements which weren't read: the
    /// model ignores it, another program may not.
    const std::vector<interfaces::IgnoredItem>& getIgnoredItems() const { return ignoredItems; }

    /// How many bytes of the covered core properties part lie outside every signature, since they are
    /// keywords, and where they begin.
    /// @{
    std::size_t getKeywordsSize() const { return keywordsSize; }
    std::size_t getKeywordsBegin() const { return keywordsBegin; }
    /// @}

    /// Whether nothing is uncovered, changed in content type or ignored.
    bool isFull() const;

private:
    friend class DigitalSignatureManager;
    friend class SignatureVerdict;

    PackageCoverage() = default;
    PackageCoverage(const Package& package, const std::vector<DigitalSignature>& signatures,
                    std::optional<URI> originURI);

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

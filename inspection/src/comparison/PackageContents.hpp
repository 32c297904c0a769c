#pragma once

#include "subject/ContentTypesView.hpp"
#include "subject/PartTable.hpp"
#include "subject/RelationshipsTable.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace opc::inspection {

/// A part, and what its name is compared by.
struct KeyedPart {
    std::string key;
    PartView* part;
};

/// What a package holds, for those that compare it. A relationships part is read when it is asked for, because most are the
/// same in both packages.
class PackageContents {
public:
    /// @param archive  must outlive this object
    /// @throws opc::Exception  nothing is in it
    explicit PackageContents(const Archive& archive);
    PackageContents(const PackageContents&) = delete;
    PackageContents& operator=(const PackageContents&) = delete;

    const Archive& archive() const { return source; }

    /// Sorted by key; of those with the same key, in the order of the archive.
    const std::vector<KeyedPart>& parts() const { return sorted; }

    /// The items that count but are no parts, sorted by name: ignored and hidden ones, and a content types stream that can't
    /// be read in full.
    const std::vector<const ArchiveItem*>& otherItems() const { return others; }

    /// The relationships in a relationships part. Of all that are asked for, as many are read as of a whole package.
    RelationshipsView readRelationships(PartView& part);

    /// The part that a relationship of the package with that last segment of its type leads to; null if there is none.
    const PartView* partOfPackage(std::string_view lastSegment);

private:
    void sortParts();
    void findOtherItems();

    const Archive& source;
    PartTable table;
    ContentTypesView contentTypes;
    std::vector<KeyedPart> sorted;
    std::vector<const ArchiveItem*> others;
    std::uint64_t restOfEntries;
};

/// Whether a relationships part is nothing but its relationships: they can be read in full, and its content type is the
/// standard one.
bool isNothingElse(const RelationshipsView& relationships);

/// What a content type is compared by: type and subtype in lower case, parameters as they stand.
std::string keyOfType(const std::string& contentType);

/// Where an internal relationship leads: the name of a part, with the query and the fragment as they stand. Empty for others,
/// and for what leads to no part name.
std::string resolvedTarget(const RelationshipView& relationship);

/// What a relationship is compared by beside its id.
struct RelationshipKey {
    std::string type, mode, target;

    bool operator==(const RelationshipKey& other) const {
        return type == other.type && mode == other.mode && target == other.target;
    }
};

/// An internal target is compared by the part that it leads to, however it is written.
RelationshipKey keyOf(const RelationshipView& relationship);

} // namespace opc::inspection

#pragma once

#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace opc::model {

class DigitalSignature;

/// What some signatures cover, by part and by source of relationships. A package can have as many signatures as
/// parts, so the index saves asking each signature about each part. It doesn't follow later changes.
class CoverageIndex {
public:
    /// Signatures by their places in the order in which they were added, from 0, each once and ascending.
    using Places = std::vector<std::size_t>;

    struct CoveredPart {
        std::set<std::u16string> queries; ///< of its references
        Places by;
    };

    /// Which relationships of one source are covered.
    struct Selected {
        std::map<std::u16string, Places> ids;
        std::map<std::u16string, Places> types;
    };

    /// @param originURI  the name of the signature origin part, if there are signatures
    explicit CoverageIndex(std::optional<URI> originURI) : originURI(std::move(originURI)) {}

    void add(const DigitalSignature& signature);

    /// @return null if none covers it: never for a relationships part
    const CoveredPart* find(const PartName& name) const;
    /// @return null if none covers a relationship of that source
    const Selected* findSelected(const URI& source) const;

    Places findCovering(const PartName& name) const;
    Places findCovering(const Relationship& relationship) const;

    /// @param selected  of its source
    bool covers(const Relationship& relationship, const Selected* selected) const;

private:
    bool isExcepted(const Relationship& relationship) const;

    std::size_t count = 0; ///< of signatures
    std::map<PartName, CoveredPart> parts;
    std::map<PartName, Selected> relationships; ///< by relationships part
    std::optional<URI> originURI;               ///< its relationship to the countersignature isn't covered
};

} // namespace opc::model

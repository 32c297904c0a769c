#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/CoreProperties.hpp>
#include <opc/model/Export.hpp>

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <optional>
#include <string_view>
#include <vector>

namespace opc::model {

/// What a package holds, as texts in UTF-8. For whoever looks into very many packages: it makes none of the objects of
/// `Package`, which takes half the time.
///
/// Only packages of the plain form are listed, which nearly all have: part names of usual characters, documents that are
/// scanned, no two entries for the same, no relationships part without a source. A `Package` would read exactly what is listed,
/// with nothing unread. Every other form, every doubt and every error is left to `Package`.
class PackageListing {
public:
    struct ListedPart {
        std::string_view name;
        std::string_view contentType;
        interfaces::IPhysicalPart* content; ///< owned by the store
        std::size_t relationships;          ///< how many it has
    };

    struct ListedRelationship {
        std::string_view source; ///< a part name, or "/" for the package
        std::string_view id, type, target;
        bool isExternal;
    };

    /// @param store   open to read; must stay open while the listing is used
    /// @param memory  takes the texts
    /// @return nothing if the package isn't of the plain form, or can't be read
    OPC_MODEL_EXPORT static std::optional<PackageListing> read(interfaces::IPhysicalPackage& store,
                                                               std::pmr::memory_resource& memory);

    /// Without relationships parts, sorted by name, ignoring letter case.
    const std::vector<ListedPart>& parts() const { return listedParts; }

    /// Those of the package, then those of each part. Those of one source are sorted by ID.
    const std::vector<ListedRelationship>& relationships() const { return listedRelationships; }

    /// Reads what `PackageHelper::getCoreProperties` reads.
    /// @return false if their relationship isn't of the usual form, or the part can't be opened: then it is left to `Package`
    /// @throws as that
    OPC_MODEL_EXPORT bool readCoreProperties(CoreProperties& properties) const;

private:
    class Reader;
    struct Documents;

    PackageListing();

    std::vector<ListedPart> listedParts;
    std::vector<ListedRelationship> listedRelationships;
    std::size_t coreProperties = NONE;    ///< the index of the part
    std::shared_ptr<Documents> documents; ///< that were read, for the limits

    static constexpr std::size_t NONE = static_cast<std::size_t>(-1);
    static constexpr std::size_t LEFT =
        NONE - 1; ///< there is a relationship, whose target is left to `Package`
};

} // namespace opc::model

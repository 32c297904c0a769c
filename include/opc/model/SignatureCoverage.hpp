#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>

#include <memory>

namespace opc::model {

class CoverageIndex;
class DigitalSignature;
class DigitalSignatureManager;

/// What one signature covers, all of it protected by its signature value. A value, which doesn't follow later
/// changes of the package.
///
/// Whether the signature holds isn't asked here: only if it does, what is covered is as it was signed. Of
/// what is covered, the content types aren't protected, nor the first `<cp:keywords>` element of the core
/// properties part, nor which of the covered sources a relationship belongs to.
class OPC_MODEL_EXPORT SignatureCoverage {
public:
    /// @param manager    the one that gave `signature`
    /// @throws PackageNotOpen, InvalidSignature
    SignatureCoverage(const DigitalSignatureManager& manager, const DigitalSignature& signature);

    /// Whether the content of the part is covered. Relationships parts never are: ask about relationships.
    bool covers(const PartName& name) const;

    /// Whether the relationship is covered: its ID, its type, its target and its mode. Never so for the one
    /// that leads to the countersignature.
    bool covers(const Relationship& relationship) const;

private:
    std::shared_ptr<const CoverageIndex> index;
};

} // namespace opc::model

#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/PartName.hpp>
#include <opc/model/Relationship.hpp>

#include <memory>

namespace opc::model {

class CoverageIndex;
class DigitalSignature;
class DigitalSignatureManager;

/// What one signature covers: the parts and relationships that its signature value protects. A value type: later changes
/// of the package don't change it.
///
/// It doesn't say whether the signature holds. Only if it holds, the covered parts and relationships are as they were
/// signed. The signature doesn't protect their content types, the first `<cp:keywords>` element of the core properties
/// part, and which of the covered sources a relationship belongs to.
class OPC_MODEL_EXPORT SignatureCoverage {
public:
    /// @param manager    the manager that returned `signature`
    /// @throws PackageNotOpen, InvalidSignature
    SignatureCoverage(const DigitalSignatureManager& manager, const DigitalSignature& signature);

    /// Whether the content of the part is covered. Always false for relationships parts: ask for their relationships.
    bool covers(const PartName& name) const;

    /// Whether the ID, type, target and mode of the relationship are covered. Always false for the relationship to the
    /// countersignature.
    bool covers(const Relationship& relationship) const;

private:
    std::shared_ptr<const CoverageIndex> index;
};

} // namespace opc::model

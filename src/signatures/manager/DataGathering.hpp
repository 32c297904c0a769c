#pragma once

#include "signatures/signature/DataToSign.hpp"

#include <opc/model/DigitalSignature.hpp>

#include <vector>

namespace opc::model {

class Package;

/// What a new signature will cover.
struct Selection {
    std::vector<PartName> parts;
    std::vector<RelationshipSelector> selectors;
    bool isForCountersignature = false;
};

/// Digests the selected parts and finds the selected relationships.
/// @param existing  the signatures of the package, which count towards the limit of the work
/// @throws CouldNotGenerateSignature
DataToSign gatherDataToSign(const Package& package, const Selection& selection, DigestMethod method,
                            const std::vector<DigitalSignature>& existing);

} // namespace opc::model

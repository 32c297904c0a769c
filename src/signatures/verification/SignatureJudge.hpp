#pragma once

#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/digests/PartDigester.hpp"

#include <opc/model/SignaturePolicy.hpp>
#include <opc/model/SignatureVerdict.hpp>

#include <cstdint>

namespace opc::model {

class Package;

/// Judges signatures of a package one by one, each as if there were no other. Reads each part of the package once, for
/// all of them.
class SignatureJudge {
public:
    /// @param package    doesn't change as long as this object lives, and outlives it as the policy does
    /// @param workOfAll  what `measureWork` gives for all signatures of the package
    SignatureJudge(const Package& package, const SignaturePolicy& policy, std::uint64_t workOfAll);

    /// Whatever stands in the way of a check is told in the answer.
    JudgedSignature judge(const DigitalSignature& signature);

private:
    void check(JudgedSignature& judged);

    const Package& package;
    const SignaturePolicy& policy;
    std::uint64_t work;
    PartDigesters digesters;
    SelectableRelationships selectable;
};

} // namespace opc::model

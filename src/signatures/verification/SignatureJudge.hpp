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
    /// @param package  must outlive this object and not change meanwhile; the same holds for the policy
    /// @param work     what `measureWork` gives for all signatures of the package
    SignatureJudge(const Package& package, const SignaturePolicy& policy, std::uint64_t work);

    /// If the signature can't be checked, the answer says why.
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

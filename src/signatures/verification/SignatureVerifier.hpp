#pragma once

#include "signatures/digests/PartDigester.hpp"

#include <opc/model/DigitalSignatureVerificationStatus.hpp>

#include <cstdint>
#include <functional>

namespace opc::model {

class DigitalSignature;
class DigitalSignatureData;
class Package;

/// Verifies signatures of a package: the signature value first, then every digest that the signature references. Reads
/// each part of the package once, for all of them.
class SignatureVerifier {
public:
    /// The first half of a verification: whether the signature value holds.
    using ValueCheck = std::function<DigitalSignatureVerificationStatus(const DigitalSignatureData&)>;

    /// @param package  must outlive this object and not change until then
    /// @param work     what `measureWork` gives for all signatures of the package
    SignatureVerifier(const Package& package, std::uint64_t work) : digesters(package), work(work) {}

    /// @throws InvalidSignature  with code 102 and its reason, if there is too much work; with the code alone, if the
    ///                           signature can't be checked
    DigitalSignatureVerificationStatus verify(const DigitalSignature& signature,
                                              const ValueCheck& checkValue);

private:
    DigitalSignatureVerificationStatus verify(const DigitalSignatureData& data,
                                              const DigitalSignatureVerificationStatus& value);

    PartDigesters digesters;
    std::uint64_t work;
};

} // namespace opc::model

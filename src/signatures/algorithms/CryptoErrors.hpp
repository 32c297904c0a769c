#pragma once

#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/Errors.hpp>

#include <utility>

/// @file
/// The translations of failures of the cryptographic services. Each runs an action and returns its result.

namespace opc::model {

/// A failure of the services becomes an `opc::Exception` with the same text.
template <typename Action>
auto translateCryptoFailures(Action&& action) {
    try {
        return std::forward<Action>(action)();
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw Exception(e.what());
    }
}

/// Failures in signing, here or in the services, become `CouldNotGenerateSignature` with the same text.
template <typename Action>
auto translateSigningFailures(Action&& action) {
    try {
        return std::forward<Action>(action)();
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw CouldNotGenerateSignature(e.what());
    } catch (const Exception& e) {
        throw translated<CouldNotGenerateSignature>(e, e.what());
    }
}

/// A failure of the services in verifying becomes `InvalidSignature` with the same text, and with a code for its
/// class.
template <typename Action>
auto translateVerificationFailures(Action&& action) {
    using bedrock::codesigning_verifier::ErrorMap;
    try {
        return std::forward<Action>(action)();
    } catch (const bedrock::crypto::utils::InvalidKey& e) {
        throw InvalidSignature(e.what(), ErrorMap<17>());
    } catch (const bedrock::crypto::utils::CouldNotComputeDigest& e) {
        throw InvalidSignature(e.what(), ErrorMap<18>());
    } catch (const bedrock::crypto::utils::Exception& e) {
        throw InvalidSignature(e.what(), ErrorMap<12>());
    }
}

} // namespace opc::model

#pragma once

#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>

#include <utility>

namespace opc::model {

/// Runs `operation`; a failure of the cryptographic services in it leaves as `opc::Exception` with the same
/// text.
template <typename Operation>
auto translateCryptoFailures(Operation&& operation) {
    try {
        return std::forward<Operation>(operation)();
    } catch (const bedrock::crypto::utils::Exception& failure) {
        throw Exception(failure.what());
    }
}

} // namespace opc::model

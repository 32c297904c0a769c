#pragma once

#include <bedrock/network/Export.hpp>

#include <stdexcept>

namespace bedrock::network {

/// A text isn't a reference by the grammar of `IRI`.
class BEDROCK_NETWORK_EXPORT IRIException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    IRIException(const IRIException&) = default;
    ~IRIException() override;
};

} // namespace bedrock::network

#pragma once

#include <bedrock/network/Export.hpp>

#include <cstdint>
#include <string>

namespace bedrock::network {

namespace iri {

/// How a component of a reference is given.
enum class Encoding : std::uint32_t {
    Decoded = 0,   ///< percent escapes replaced by what they stand for, read as UTF-8
    AsWritten = 1, ///< as it stands in the text
};

} // namespace iri

} // namespace bedrock::network

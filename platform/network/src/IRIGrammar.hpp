#pragma once

#include <bedrock/network/IRI.hpp>

namespace bedrock::network::iri {

/// Checks `text` by the grammar that `IRI` tells and finds its components, in one pass over it.
/// @throws IRIException  with what is wrong
Components parse(const std::u16string& text);

} // namespace bedrock::network::iri

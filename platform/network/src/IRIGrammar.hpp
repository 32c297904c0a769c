#pragma once

#include <bedrock/network/IRI.hpp>

namespace bedrock::network::iri {

/// Checks `text` by the grammar that `IRI` describes and finds its components, in one pass.
/// @throws IRIException  the text has another form; the message says what is wrong
Components parse(const std::u16string& text);

} // namespace bedrock::network::iri

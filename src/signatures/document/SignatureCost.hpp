#pragma once

#include <cstdint>

/// @file
/// What signature parts count among the elements of a package. The numbers follow what was measured: what counts
/// as one takes some 200 bytes at most, where an element of relationships takes 165.

namespace opc::model::cost {

/// So many bytes count as one: of their text, what is read from it and the text of the package object stay.
inline constexpr std::uint64_t BYTES_PER_ELEMENT = 50;

/// As many tags of a scanned document: a reference has five.
inline constexpr std::uint64_t TAGS_PER_ELEMENT = 2;

/// An element or an attribute in a tree.
inline constexpr std::uint64_t NODE = 2;

/// A certificate, for the time that it takes to read.
inline constexpr std::uint64_t CERTIFICATE = 500;

} // namespace opc::model::cost

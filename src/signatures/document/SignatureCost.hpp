#pragma once

#include <cstdint>

/// @file
/// How signature parts count towards the elements of a package (`XmlLimits`). The numbers come from measurements:
/// whatever counts as one element takes at most about 200 bytes of memory; a relationship takes 165.

namespace opc::model::cost {

/// This many bytes of a document count as one element: the values and the text of the package object stay in memory.
inline constexpr std::uint64_t BYTES_PER_ELEMENT = 50;

/// This many tags of a scanned document count as one element: a reference has five.
inline constexpr std::uint64_t TAGS_PER_ELEMENT = 2;

/// An element or an attribute of a parsed document.
inline constexpr std::uint64_t NODE = 2;

/// A certificate, because of the time that it takes to read.
inline constexpr std::uint64_t CERTIFICATE = 500;

} // namespace opc::model::cost

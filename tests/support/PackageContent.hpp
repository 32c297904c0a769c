#pragma once

#include <opc/model/Part.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <string>
#include <vector>

/// @file
/// Makes the content of packages in memory, and examines it.

namespace opc::test {

using Bytes = std::vector<unsigned char>;

Bytes toBytes(const std::string& text);
std::string toText(const Bytes& bytes);

/// A content types stream with these entries between its root tags.
Bytes contentTypes(const std::string& entries);

/// A relationships part with these elements between its root tags.
Bytes relationships(const std::string& elements);

/// `Default` entries for rels and xml.
extern const std::string USUAL_CONTENT_TYPES;

/// A store with the usual content types and empty parts of these names.
void fill(physical::MemoryPackage& store, const std::vector<std::u16string>& names);

/// Reads the rest of a part's stream, and converts text to bytes and back.
std::string readAll(const model::Part& part);
void writeAll(const model::Part& part, const std::string& content);

} // namespace opc::test

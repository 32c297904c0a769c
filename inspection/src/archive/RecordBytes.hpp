#pragma once

#include "zip/src/ByteSource.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection::archive {

/// Shows records of an archive wherever they lie, as far as the archive reaches.
class RecordBytes {
public:
    /// @param place  the archive's name for messages
    RecordBytes(physical::zip::ByteSource& source, const std::string& place) : source(source), place(place) {}

    std::uint64_t size() const { return source.size(); }

    /// @return `count` bytes, good until the next call; null if the archive has fewer there
    /// @throws opc::Exception  they can't be read
    const unsigned char* look(std::uint64_t offset, std::size_t count);

    /// How many of `count` bytes there are at `offset`.
    std::size_t available(std::uint64_t offset, std::uint64_t count) const;

private:
    physical::zip::ByteSource& source;
    const std::string& place;
    std::vector<unsigned char> buffer;
};

/// The name of an item in UTF-8: one that isn't UTF-8 is in code page 437.
std::string decodeName(std::string_view stored);

} // namespace opc::inspection::archive

#pragma once

#include <cstdint>

namespace opc::physical {

/// What a file was at some time. Two states are equal if they are of the same file and nobody has written to it between. A
/// state of no file is equal to no other.
struct FileState {
    bool isOfFile() const { return number != 0; }
    bool operator==(const FileState& other) const {
        return isOfFile() && device == other.device && number == other.number && size == other.size &&
               seconds == other.seconds && nanoseconds == other.nanoseconds;
    }

    std::uint64_t device = 0;
    std::uint64_t number = 0; ///< of the file on its device; 0: no file
    std::uint64_t size = 0;
    std::int64_t seconds = 0, nanoseconds = 0; ///< since 1970, when it was last written to
};

} // namespace opc::physical

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace opc::model {

/// Detects IDs that were chosen to collide in the hash table of Xerces, which searches all IDs of a bucket. Simulates
/// that table: its hash values, its first size, its growth.
class CollidingIDs {
public:
    static constexpr std::size_t FIRST_SIZE = 109; ///< of the table
    static constexpr std::uint16_t MAXIMUM = 1000;
    static constexpr char TOO_MANY[] = "XML content can not have more than 1000 colliding IDs";

    /// @param id  in UTF-16 or in ASCII
    /// @return whether more than MAXIMUM collide now
    template <typename Text>
    bool add(const Text& id) {
        std::size_t hash = 0;
        for (const auto unit : id)
            hash = hash * 38 + (hash >> 24) + static_cast<std::size_t>(unit);
        return addHash(hash);
    }

private:
    bool addHash(std::size_t hash);
    void grow();

    std::vector<std::size_t> hashes;
    std::vector<std::uint16_t> buckets; ///< how many IDs each has
};

} // namespace opc::model

#include "hash/TextHash.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

// Against a multiplication bit by bit.
TEST(Modulo61, multiplies) {
    using opc::modulo61::PRIME;
    const auto slowly = [](std::uint64_t left, std::uint64_t right, std::uint64_t more) {
        std::uint64_t result = 0;
        for (int bit = 60; bit >= 0; --bit)
            result = (2 * result + (right >> bit & 1U) * left) % PRIME;
        return (result + more) % PRIME;
    };
    std::mt19937_64 random(20261126);
    std::vector<std::uint64_t> numbers{0, 1, 2, (1ULL << 31) - 1, 1ULL << 31, 1ULL << 60, PRIME - 1, PRIME};
    for (int i = 0; i < 40; ++i)
        numbers.push_back(random() >> 3 >> (random() % 40));
    for (const std::uint64_t left : numbers)
        for (const std::uint64_t right : numbers) {
            const std::uint64_t more = (right ^ left) % PRIME;
            ASSERT_EQ(opc::modulo61::multiply(left, right, more), slowly(left, right, more))
                << left << ' ' << right;
            ASSERT_EQ(opc::modulo61::multiplyInHalves(left, right, more), slowly(left, right, more))
                << left << ' ' << right;
        }
}

/// Whichever piece of each pair a text takes, the hash of libstdc++ for 64 bits is the same.
constexpr const char* PIECES[][2] = {
    {"N0NuhBgOdbz8zoZI", "Q1GnESl5MZiWieif"}, {"ugGJW0olhjpa6oxf", "uXssMDDYoysQ7cu3"},
    {"E5OFHJpCYM3HjCZR", "o2eNLKLlR6XWlWfn"}, {"Ub25XzCinut0Y0Pw", "1r8YAJAvbQFiaEuQ"},
    {"ACDQMB6444Tennhd", "3Ddv5G3GM0Vqfb9t"}, {"6iD5QpETGTUnwYvR", "oDgb451685xApeHH"},
    {"o1aOscO1vZxyKVhQ", "HZr4g8kcpWsnd6yj"}, {"LjmKDPJSqz3ZR9PW", "ig8V7gssKVMjG3Ho"},
    {"IWPfOahUEWuBCadd", "uT1uRvZJb7m2YQMT"}, {"xRYDnxO3BO1p7Yfb", "xUaVnysznWTcugBt"},
    {"MJVNRC5fS9ySsH9Y", "DY1JyPLHrVS41Ebr"}, {"bJY8VHFcxkQInyOl", "0yCPBiRIXBLZ4suc"},
};

TEST(TextHash, tellsTextsApartThatWereMadeToCollide) {
    constexpr unsigned COUNT = 1U << std::size(PIECES);
    std::set<std::size_t> hashes, wideHashes;
    for (unsigned number = 0; number < COUNT; ++number) {
        std::string text;
        for (std::size_t i = 0; i < std::size(PIECES); ++i)
            text += PIECES[i][number >> i & 1U];
        hashes.insert(opc::TextHash()(text));
        wideHashes.insert(opc::TextHash()(std::u16string(text.begin(), text.end())));
    }
    EXPECT_GT(hashes.size(), COUNT - 10); // of 32 bits, two can be equal
    EXPECT_GT(wideHashes.size(), COUNT - 10);
}

} // namespace

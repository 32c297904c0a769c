#include "signatures/digests/SignedText.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using opc::model::SignedText;
using Bytes = std::vector<unsigned char>;

Bytes readInBlocks(SignedText text, std::uint64_t blockSize) {
    Bytes result;
    Bytes block(static_cast<std::size_t>(blockSize));
    while (!text.isDone()) {
        const auto got = static_cast<std::ptrdiff_t>(text.read(block.data(), blockSize));
        result.insert(result.end(), block.begin(), block.begin() + got);
    }
    return result;
}

TEST(SignedText, GivesTheSameBytesInBlocksOfAnySize) {
    const Bytes expected{0x61, 0x00, 0xE9, 0x00, 0x34, 0x12, 0x3D, 0xD8, 0x00, 0xDE};
    const std::u16string_view whole = u"aé\u1234\U0001F600";
    EXPECT_EQ(opc::model::toSignedBytes(whole), expected);
    for (std::size_t split = 0; split <= whole.size(); ++split)
        for (std::uint64_t blockSize = 1; blockSize <= expected.size() + 1; ++blockSize)
            EXPECT_EQ(readInBlocks(SignedText(whole.substr(0, split), whole.substr(split)), blockSize),
                      expected)
                << split << ", " << blockSize;
    EXPECT_EQ(readInBlocks(SignedText({}), 1), Bytes());
}

} // namespace

#include "PhysicalSupport.hpp"

#include "zip/src/Inflater.hpp"
#include "zip/src/SmallInflater.hpp"

#include <zlib.h>

#include <algorithm>
#include <optional>

namespace {

using namespace opc::test;
using opc::physical::zip::expandSmall;
using opc::physical::zip::Inflater;

std::string deflate(const std::string& content, int level, int strategy, int flush) {
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, strategy), Z_OK);
    std::string output(deflateBound(&stream, content.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));
    stream.next_out = reinterpret_cast<unsigned char*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    stream.avail_in = static_cast<uInt>(content.size() / 2);
    EXPECT_EQ(::deflate(&stream, flush), Z_OK);
    stream.avail_in = static_cast<uInt>(content.size() - content.size() / 2);
    EXPECT_EQ(::deflate(&stream, Z_FINISH), Z_STREAM_END);
    output.resize(stream.total_out);
    deflateEnd(&stream);
    return output;
}

using Expanded = std::optional<std::string>;

Expanded byInflater(const std::string& data, std::size_t size) {
    Inflater inflater;
    inflater.setInput(reinterpret_cast<const unsigned char*>(data.data()), data.size());
    std::string output(size + 1, '\0');
    std::size_t got = 0;
    const auto result = inflater.expand(reinterpret_cast<unsigned char*>(output.data()), size + 1, got);
    if (result != Inflater::Result::End || got != size || !inflater.needsInput())
        return std::nullopt;
    output.resize(size);
    return output;
}

Expanded bySmallInflater(const std::string& data, std::size_t size) {
    std::string output(size, '\0');
    const bool isRight = expandSmall(reinterpret_cast<const unsigned char*>(data.data()), data.size(),
                                     reinterpret_cast<unsigned char*>(output.data()), size);
    return isRight ? Expanded(output) : std::nullopt;
}

TEST(SmallInflater, takesWhatTheUsualOneTakesAndNothingElse) {
    const std::string relationship =
        "<Relationship Id='rId17' Type='http://a.example/type' Target='b/c17.xml'/>";
    std::string many;
    for (int i = 0; i < 12; ++i)
        many += relationship.substr(0, 60) + noise(static_cast<std::size_t>(i) + 1);
    std::string skewed;
    for (unsigned i = 0; i < 14; ++i)
        skewed.append(i == 0 ? 1 : 1U << (i - 1), static_cast<char>('a' + i));
    const struct {
        const char* what;
        std::string content;
        int level;
        int strategy;
        int flush;
    } cases[] = {
        {"stored", noise(90), 0, Z_DEFAULT_STRATEGY, Z_NO_FLUSH},
        {"the fixed codes", relationship + relationship, 6, Z_FIXED, Z_NO_FLUSH},
        {"codes of its own", many, 9, Z_DEFAULT_STRATEGY, Z_NO_FLUSH},
        {"no distances", noise(200) + many, 6, Z_HUFFMAN_ONLY, Z_NO_FLUSH},
        {"one distance", std::string(400, 'a'), 6, Z_RLE, Z_NO_FLUSH},
        {"several blocks", many, 6, Z_DEFAULT_STRATEGY, Z_FULL_FLUSH},
        {"codes of up to 13 bits", skewed, 6, Z_HUFFMAN_ONLY, Z_NO_FLUSH},
    };
    for (const auto& c : cases) {
        const std::size_t size = c.content.size();
        std::string data = deflate(c.content, c.level, c.strategy, c.flush);
        EXPECT_EQ(bySmallInflater(data, size), c.content) << c.what;
        for (const std::size_t other : {size - 1, size + 1})
            EXPECT_EQ(bySmallInflater(data, other), std::nullopt) << c.what;
        EXPECT_EQ(bySmallInflater(data + '\0', size), std::nullopt) << c.what;
        for (std::size_t i = 0; i < std::min<std::size_t>(data.size(), 500); ++i) {
            EXPECT_EQ(bySmallInflater(data.substr(0, i), size), std::nullopt) << c.what;
            for (const int change : {1, 2, 4, 8, 16, 32, 64, 128}) {
                data[i] = static_cast<char>(data[i] ^ change);
                for (const std::size_t aim : {size, size / 2})
                    ASSERT_EQ(bySmallInflater(data, aim), byInflater(data, aim))
                        << c.what << ", byte " << i << " changed by " << change << ", size " << aim;
                data[i] = static_cast<char>(data[i] ^ change);
            }
        }
    }
}

} // namespace

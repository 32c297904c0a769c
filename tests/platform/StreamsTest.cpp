#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/InputStreamSource.hpp>
#include <opc/core/StreamHelper.hpp>

#include <boost/iostreams/stream.hpp>
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

namespace {

std::vector<unsigned char> makeBytes(std::size_t count) {
    std::vector<unsigned char> bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
    return bytes;
}

TEST(ByteArrayInAdaptor, readsInPiecesAndAgainAfterOpen) {
    const auto bytes = makeBytes(10);
    opc::ByteArrayInAdaptor stream(bytes);
    unsigned char buffer[8] = {};
    EXPECT_EQ(stream.read(buffer, 8), 8U);
    EXPECT_FALSE(stream.isDone());
    EXPECT_EQ(stream.read(buffer, 8), 2U);
    EXPECT_TRUE(stream.isDone());
    EXPECT_EQ(stream.read(buffer, 8), 0U);
    stream.close();
    stream.open();
    EXPECT_EQ(stream.read(buffer, 1), 1U);
    EXPECT_EQ(buffer[0], bytes[0]);
}

TEST(InputStreamSource, feedsAStreamOfBoostIostreams) {
    const auto bytes = makeBytes(100000);
    opc::ByteArrayInAdaptor input(bytes);
    boost::iostreams::stream<opc::InputStreamSource> stream{opc::InputStreamSource(input)};
    const std::vector<unsigned char> got{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(got, bytes);
}

TEST(InputStreamSource, takesNoBytesForNoEnd) {
    class Hesitating : public opc::InputStream {
    public:
        void open() override {}
        std::uint64_t read(unsigned char* buffer, std::uint64_t) override {
            if (++calls % 2 == 0)
                return 0;
            *buffer = 'x';
            return 1;
        }
        bool isDone() const override { return calls > 5; }
        void close() override {}
        int calls = 0;
    } input;
    boost::iostreams::stream<opc::InputStreamSource> stream{opc::InputStreamSource(input)};
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "xxx");
}

TEST(StreamHelper, copiesAllBytesOrSaysThatItDidNot) {
    const auto bytes = makeBytes(200000);
    opc::ByteArrayInAdaptor input(bytes);
    std::ostringstream target;
    EXPECT_TRUE(opc::StreamHelper::copyStreamToStream(input, target));
    EXPECT_EQ(target.str(), std::string(bytes.begin(), bytes.end()));

    input.open();
    std::ostringstream broken;
    broken.setstate(std::ios::badbit);
    EXPECT_FALSE(opc::StreamHelper::copyStreamToStream(input, broken));
}

} // namespace

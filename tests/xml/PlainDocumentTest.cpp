#include "xml/PlainDocument.hpp"
#include "support/Cases.hpp"
#include "support/MutatedDocument.hpp"
#include "support/ScannerComparison.hpp"
#include "support/Texts.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/PlainCharacters.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

const std::string PLAIN_RELATIONSHIPS = readCase("relationships/plain.txt");
const std::string CONTENT_TYPES = readCase("content-types/plain-stream.txt");

TEST(PlainDocument, theUsualFormIsRecognised) {
    for (const auto& [schema, document] : {std::pair(&schemas::RELATIONSHIPS, PLAIN_RELATIONSHIPS),
                                           std::pair(&schemas::CONTENT_TYPES, CONTENT_TYPES)}) {
        const ScannerComparison comparison(*schema);
        EXPECT_TRUE(comparison.isRecognised(toBytes(document))) << document;
        EXPECT_EQ(comparison.findDifference(toBytes(document)), "");
    }
}

TEST(PlainDocument, everyDoubtIsLeftToTheParser) {
    const ScannerComparison comparison(schemas::RELATIONSHIPS);
    forEachCase("relationships/not-plain.txt", [&](const std::string& from, const std::string& to) {
        EXPECT_FALSE(comparison.isRecognised(toBytes(replaced(PLAIN_RELATIONSHIPS, from, to))));
    });
    EXPECT_FALSE(comparison.isRecognised({}));
    const std::string comments = repeated("<!---->", 100);
    EXPECT_FALSE(comparison.isRecognised(toBytes(replaced(PLAIN_RELATIONSHIPS, "<!---->", comments))));
}

TEST(PlainDocument, whatIsRecognisedTheParserFindsToo) {
    std::mt19937 random(20240229);
    for (const auto& [schema, original] : {std::pair(&schemas::RELATIONSHIPS, PLAIN_RELATIONSHIPS),
                                           std::pair(&schemas::CONTENT_TYPES, CONTENT_TYPES)}) {
        const ScannerComparison comparison(*schema);
        int recognised = 0;
        for (int i = 0; i < 20000; ++i) {
            const Bytes document = mutate(toBytes(original), random);
            recognised += comparison.isRecognised(document) ? 1 : 0;
            ASSERT_EQ(comparison.findDifference(document), "") << toText(document);
        }
        EXPECT_GT(recognised, 500);
    }
}

TEST(PlainCharacters, eightInAValueAreTakenAsEachAlone) {
    for (int byte = 0; byte < 256; ++byte)
        for (const char filler : {' ', 'a', '~', '\0', '&', '\x7F', '\x80', '\xFF'})
            for (std::size_t place = 0; place < 8; ++place) {
                std::string text(8, filler);
                text[place] = static_cast<char>(byte);
                const bool expected =
                    plain::areAll(text, plain::DoubleQuoted) && plain::areAll(text, plain::SingleQuoted);
                ASSERT_EQ(plain::areEightInValue(text.data()), expected) << byte << " at " << place;
            }
}

TEST(ReplayedStream, givesWhatWasReadAheadAndThenTheRest) {
    const Bytes document = toBytes(std::string(10000, 'x') + "end");
    opc::ByteArrayInAdaptor source(document);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 5000));
    Bytes all;
    unsigned char block[777];
    while (!stream.isDone()) {
        const auto got = stream.read(block, sizeof block);
        all.insert(all.end(), block, block + got);
    }
    EXPECT_EQ(all, document);
}

/// Every second read gives nothing. One read fails; after it the stream says that it is done.
class Stuttering : public opc::InputStream {
public:
    explicit Stuttering(int most) : goodReads(most) {}
    void open() override {}
    std::uint64_t read(unsigned char* buffer, std::uint64_t) override {
        if (++reads > goodReads)
            throw opc::Exception("broken");
        *buffer = 'x';
        return reads % 2 == 0 ? 0 : 1;
    }
    bool isDone() const override { return reads > goodReads; }
    void close() override {}

    int reads = 0;

private:
    int goodReads;
};

TEST(ReplayedStream, givesNothingWhereTheStreamGaveNothing) {
    Stuttering source(100);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 100));
    unsigned char block[10];
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(stream.read(block, 10), i % 2 == 0 ? 1U : 0U) << i;
}

TEST(ReplayedStream, keepsAFailureForWhoeverReadsThatFar) {
    Stuttering source(1);
    ReplayedStream stream(source);
    ReadAheadBuffer buffer;
    EXPECT_FALSE(stream.readAhead(buffer, 100));
    unsigned char block[10];
    EXPECT_EQ(stream.read(block, 10), 1U);
    EXPECT_FALSE(stream.isDone());
    EXPECT_THROW(stream.read(block, 10), opc::Exception);
    EXPECT_EQ(source.reads, 2) << "what has failed isn't asked again";
}

} // namespace

#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <opc/physical/ReadingMemory.hpp>

#include <zlib.h>

#include <algorithm>
#include <map>
#include <random>
#include <utility>

namespace {

using namespace opc::test;
using opc::interfaces::IPhysicalInputStream;
using opc::physical::ReadingMemory;

/// Text of few words, which compresses like XML.
std::string prose(std::size_t size) {
    static const char* const WORDS[] = {"<part ", "name='", "first",   "second",
                                        "42",     "' />\n", "</list>", "<list>"};
    std::minstd_rand random(static_cast<unsigned>(size) + 1);
    std::string text;
    while (text.size() < size)
        text += WORDS[random() / 8 % 8] + std::to_string(random() % 100);
    text.resize(size);
    return text;
}

/// Around the sizes from which a content is compressed in another way.
const std::size_t WRITTEN_SIZES[] = {0, 1, 10, 1536, 1537, 20000, 250000, 262144, 1048576, 1048577};

TEST(ZipContents, ofEverySizeAreReadAsTheyWereWritten) {
    const TemporaryFolder folder;
    std::map<std::u16string, std::string> contents;
    const auto write = [&](ZipPackage& package) {
        package.open(OpenMode::CreateOnly);
        for (const auto type : {CompressionType::None, CompressionType::Normal, CompressionType::Maximum,
                                CompressionType::Fast, CompressionType::SuperFast}) {
            for (const std::size_t size : WRITTEN_SIZES) {
                for (const std::string& text : {prose(size), noise(size)}) {
                    const std::string name = "/" + std::to_string(contents.size());
                    create(package, {name.begin(), name.end()}, text, PartInfo(type));
                    contents[{name.begin(), name.end()}] = text;
                }
            }
        }
        package.close(false);
    };
    ZipOptions options;
    options.deterministic = true;
    options.memoryForWrittenParts = 64ULL << 20;
    ZipPackage inMemory(Bytes{}, options);
    write(inMemory);
    const auto expected = std::exchange(contents, {});
    options.memoryForWrittenParts = 0;
    ZipPackage inFile(folder / "a.zip", options);
    write(inFile);
    EXPECT_TRUE(contents == expected);
    EXPECT_TRUE(readFile(folder / "a.zip") == inMemory.bytes())
        << "it doesn't matter where parts lay meanwhile";
    EXPECT_TRUE(othersAccept(folder / "a.zip"));
    for (ZipPackage* package : {&inMemory, &inFile}) {
        package->open(OpenMode::ReadOnly);
        for (auto* part : package->getParts())
            EXPECT_TRUE(content(*part) == expected.at(part->getName()))
                << std::string(part->getName().begin(), part->getName().end());
        package->close(true);
    }
}

/// A content deflated by zlib.
RawItem deflated(const std::string& content, int level = Z_DEFAULT_COMPRESSION,
                 int strategy = Z_DEFAULT_STRATEGY) {
    RawItem item = stored("a", content);
    item.method = 8;
    z_stream stream{};
    EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, -MAX_WBITS, 8, strategy), Z_OK);
    std::vector<unsigned char> output(deflateBound(&stream, static_cast<uLong>(content.size())) + 64);
    stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));
    stream.next_out = output.data();
    stream.avail_out = static_cast<uInt>(output.size());
    // With a flush in the middle, so that there are several blocks.
    stream.avail_in = static_cast<uInt>(content.size() / 2);
    EXPECT_EQ(::deflate(&stream, Z_FULL_FLUSH), Z_OK);
    stream.avail_in = static_cast<uInt>(content.size() - content.size() / 2);
    EXPECT_EQ(::deflate(&stream, Z_FINISH), Z_STREAM_END);
    item.data.assign(output.data(), output.data() + stream.total_out);
    deflateEnd(&stream);
    return item;
}

/// Reads an archive of this item.
/// @return the memory for readings that has seen it
std::shared_ptr<ReadingMemory> readBefore(const RawItem& item) {
    ZipOptions options;
    options.memory = std::make_shared<ReadingMemory>();
    ZipPackage package(makeZip({item}), options);
    package.open(OpenMode::ReadOnly);
    content(*package.getParts()[0]);
    return options.memory;
}

/// Calls `action(package, pieceSize)` with packages in memory and in a file that have only this item and are open for
/// reading, and with one that is read after another item. The pieces are smaller than a content of `size` bytes, just as
/// large, and larger.
template <typename Action>
void inEveryWay(const RawItem& item, const RawItem& before, std::size_t size, Action&& action) {
    const Bytes archive = makeZip({item});
    const TemporaryFolder folder;
    writeFile(folder / "a.zip", archive);
    ZipOptions options;
    options.memory = readBefore(before);
    ZipPackage inMemory(archive);
    ZipPackage inFile(folder / "a.zip");
    ZipPackage later(folder / "a.zip", options);
    for (ZipPackage* package : {&inMemory, &inFile, &later}) {
        for (const std::size_t pieceSize : {size / 300 + 1, std::size_t{4096}, size - 1, size, size + 1}) {
            package->open(OpenMode::ReadOnly);
            action(*package, pieceSize);
            package->close(true);
        }
    }
}

/// Around the sizes from which, and up to which, a content is expanded as a whole.
const std::size_t READ_SIZES[] = {2, 699, 700, 3000, 262143, 262144, 262145, 600000};

TEST(ZipContents, fromAnyCompressorAreReadInPiecesOfAnySize) {
    for (const std::size_t size : READ_SIZES) {
        for (const std::string& text : {prose(size), noise(size)}) {
            for (const auto& way : {std::pair{0, Z_DEFAULT_STRATEGY}, std::pair{1, Z_FIXED},
                                    std::pair{6, Z_HUFFMAN_ONLY}, std::pair{9, Z_DEFAULT_STRATEGY}}) {
                const RawItem item = deflated(text, way.first, way.second);
                inEveryWay(item, item, size, [&](ZipPackage& package, std::size_t piece) {
                    IPhysicalInputStream& stream = *package.getParts()[0]->getInputStream();
                    unsigned char byte = 0;
                    EXPECT_EQ(stream.read(&byte, 1), 1U);
                    stream.close();
                    stream.open(); // again from the start
                    std::string got;
                    readInPieces(stream, piece, got);
                    EXPECT_TRUE(got == text) << size << " in pieces of " << piece << ", level " << way.first;
                    EXPECT_EQ(stream.read(&byte, 1), 0U);
                    stream.close();
                    EXPECT_FAILS(EBADF, "has been closed", stream.read(&byte, 1));
                });
            }
        }
    }
}

TEST(ZipContents, areDamagedAlikeInPiecesOfAnySize) {
    struct Case {
        const char* defect;
        void (*make)(RawItem&);
        const char* message;
    };
    const char* const DAMAGED = "a: can't read: its compressed data is damaged";
    const Case cases[] = {
        {"bytes behind the data", [](RawItem& i) { i.data += "behind"; },
         "a: can't read: something stands behind its compressed data"},
        {"wrong checksum", [](RawItem& i) { ++i.crc; }, "a: can't read: its checksum is wrong"},
        {"longer than said", [](RawItem& i) { --i.size; }, "a: can't read: longer than the directory says"},
        {"shorter than said", [](RawItem& i) { ++i.size; }, "a: can't read: shorter than the directory says"},
        {"cut off in the last byte", [](RawItem& i) { i.data.pop_back(); }, DAMAGED},
        {"cut off in the middle", [](RawItem& i) { i.data.resize(i.data.size() / 2); }, DAMAGED},
        {"no data", [](RawItem& i) { i.data.clear(); }, DAMAGED},
        {"no such kind of block", [](RawItem& i) { i.data[0] = '\7'; }, DAMAGED},
        {"cut off where a block ends",
         [](RawItem& i) {
             i.data.resize(i.data.find(std::string("\0\0\xFF\xFF", 4)) + 4);
             i.crc = stored("", prose(i.size).substr(0, i.size / 2)).crc;
             i.size /= 2;
         },
         DAMAGED},
    };
    for (const std::size_t size : READ_SIZES) {
        const std::string text = prose(size);
        for (const Case& c : cases) {
            RawItem item = deflated(text);
            c.make(item);
            inEveryWay(item, deflated(text), size, [&](ZipPackage& package, std::size_t piece) {
                IPhysicalInputStream& stream = *package.getParts()[0]->getInputStream();
                std::string got;
                const auto read = [&] { readInPieces(stream, piece, got); };
                const std::string where =
                    c.defect + (", " + std::to_string(size)) + " in pieces of " + std::to_string(piece);
                EXPECT_FAILS(EBADMSG, c.message, read()) << where;
                EXPECT_FALSE(stream.isDone()) << where;
                EXPECT_FAILS(EBADMSG, "behind a damaged place", read()) << where;
                EXPECT_TRUE(got == text.substr(0, got.size())) << where << ": what comes first is right";
                EXPECT_TRUE(got.empty() || got.size() < item.size || item.size > size) << where;
                stream.close();
                stream.open(); // again from the start
                got.clear();
                EXPECT_FAILS(EBADMSG, c.message, read()) << where;
            });
        }
    }
}

TEST(ZipContents, areRecalledIfTheyAreSmallAndWereRight) {
    for (const std::size_t size : READ_SIZES) {
        const std::string text = prose(size);
        const RawItem item = deflated(text);
        ZipOptions options;
        options.memory = readBefore(item);
        const std::string* const kept = options.memory->find(item.crc, item.data);
        EXPECT_EQ(kept != nullptr, item.data.size() < 512) << size;
        EXPECT_TRUE(kept == nullptr || *kept == text) << size;
        EXPECT_EQ(options.memory->find(item.crc + 256, item.data), nullptr) << size;
        if (kept == nullptr)
            continue;
        options.memory->keep(item.crc, item.data, std::string(size, '!'));
        ZipPackage package(makeZip({item}), options);
        package.open(OpenMode::ReadOnly);
        EXPECT_EQ(content(*package.getParts()[0]), std::string(size, '!')) << "it isn't expanded again";
    }
    ReadingMemory memory;
    memory.keep(7, "aa", "old");
    memory.keep(7 + 256, "bb", "new");
    EXPECT_EQ(memory.find(7, "aa"), nullptr) << "another one has taken its place";
    memory.keep(7, std::string(513, 'a'), "x");
    memory.keep(7, "a", std::string(4097, 'x'));
    ASSERT_NE(memory.find(7 + 256, "bb"), nullptr) << "what is too large takes no place";
    EXPECT_EQ(*memory.find(7 + 256, "bb"), "new");
}

TEST(ZipContents, mayBeEmptyAndDeflated) {
    RawItem nothing = stored("a", "");
    nothing.method = 8;
    for (const RawItem& item : {nothing, deflated("", 0), deflated("")})
        inEveryWay(item, item, 1, [](ZipPackage& package, std::size_t) {
            EXPECT_TRUE(package.getParts()[0]->getInputStream()->isDone());
        });
}

} // namespace

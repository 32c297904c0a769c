#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <algorithm>
#include <istream>
#include <ostream>
#include <random>
#include <sstream>
#include <streambuf>

namespace {

using namespace opc::test;

class ZipStreams : public FileTest {};

/// Like a pipe: it gives a few bytes at a time, can't seek, and may break.
class Pipe : public std::streambuf {
public:
    explicit Pipe(const Bytes& content, std::size_t breaksAt = SIZE_MAX)
        : text(content.begin(), content.end()), breaksAt(breaksAt) {}

protected:
    int_type underflow() override {
        place += static_cast<std::size_t>(egptr() - eback());
        if (place >= breaksAt)
            throw std::runtime_error("broken pipe");
        const std::size_t count = std::min<std::size_t>(text.size() - place, 777);
        setg(text.data() + place, text.data() + place, text.data() + place + count);
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(text[place]);
    }

private:
    std::string text;
    std::size_t place = 0;
    std::size_t breaksAt;
};

/// Accepts bytes until it is full; can't seek.
class Drain : public std::streambuf {
public:
    explicit Drain(std::size_t room = SIZE_MAX) : room(room) {}
    Bytes bytes;

protected:
    int_type overflow(int_type c) override {
        if (bytes.size() == room || c == traits_type::eof())
            return traits_type::eof();
        bytes.push_back(static_cast<unsigned char>(c));
        return c;
    }

private:
    std::size_t room;
};

TEST_F(ZipStreams, passThroughWithoutSeeking) {
    // In memory, and in the temporary file.
    for (const std::size_t size : {100U, 3000000U}) {
        ZipOptions options;
        options.temporaryFolder = folder / "";
        options.memoryForWrittenParts = 200000;
        Pipe pipe(
            makeZip({stored("[Content_Types].xml", "types"), stored("a", noise(size)), stored("b", "beta")}));
        std::istream input(&pipe);
        ZipPackage package(input, options);
        package.open(OpenMode::ReadWrite);
        EXPECT_TRUE(content(*find(package, u"/a")) == noise(size));
        create(package, u"/b", "changed");
        create(package, u"/c", noise(size / 2));
        package.close(false);

        Drain drain;
        std::ostream output(&drain);
        package.writeTo(output);
        writeFile(folder / "out.zip", drain.bytes);
        EXPECT_TRUE(othersAccept(folder / "out.zip"));
        EXPECT_GE(folder.count(), 1U);
        EXPECT_LE(folder.count(), 1U + TEMPORARY_NAMES) << "nothing else is left";
        for (int round = 0; round < 2; ++round) {
            package.open(OpenMode::ReadWrite);
            EXPECT_EQ(names(package), u"/a /b /c ");
            EXPECT_EQ(content(*find(package, u"/b")), "changed");
            EXPECT_TRUE(content(*find(package, u"/c")) == noise(size / 2));
            package.close(true);
        }
    }
}

TEST_F(ZipStreams, areWrittenFromEveryKindOfPackage) {
    const Bytes archive = makeZip({stored("a", "alpha")});
    writeFile(path, archive);
    std::istringstream empty;
    ZipPackage inFile(path);
    ZipPackage inMemory(archive);
    ZipPackage fromNothing(empty);
    EXPECT_FAILS(ENOENT, "archive from a stream: can't open", fromNothing.open(OpenMode::ReadOnly));
    fromNothing.open(OpenMode::CreateOnly);
    create(fromNothing, u"/a", "alpha");
    fromNothing.close(false);
    for (ZipPackage* package : {&inFile, &inMemory, &fromNothing}) {
        Drain drain;
        std::ostream output(&drain);
        package->writeTo(output);
        EXPECT_EQ(itemOf(readZip(drain.bytes), "a").size, 5U);
    }
}

TEST_F(ZipStreams, failuresAreExceptions) {
    const Bytes archive = makeZip({stored("a", noise(5000))});
    Pipe broken(archive, 3000);
    std::istream brokenInput(&broken);
    ZipPackage cut(brokenInput);
    EXPECT_FAILS(EIO, "can't read the stream", cut.open(OpenMode::ReadOnly));

    ZipOptions options;
    options.maxTotalSize = 4000;
    Pipe longPipe(archive);
    std::istream longInput(&longPipe);
    ZipPackage tooLong(longInput, options);
    EXPECT_FAILS(EFBIG, "longer than the limit of 4000 bytes", tooLong.open(OpenMode::ReadOnly));

    ZipPackage package(archive);
    for (const std::size_t room : {std::size_t{0}, archive.size() - 1}) {
        Drain drain(room);
        std::ostream output(&drain);
        EXPECT_FAILS(EIO, "can't write to the stream", package.writeTo(output));
    }
}

} // namespace

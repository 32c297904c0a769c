#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <opc/core/Text.hpp>
#include <opc/physical/RandomAccessSource.hpp>

#include <cerrno>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace {

using namespace opc::test;

/// Bytes that can be given in small pieces, counted, refused and changed.
class Source : public opc::physical::RandomAccessSource {
public:
    explicit Source(Bytes bytes) : bytes(std::move(bytes)) {}

    std::uint64_t size() override { return bytes.size(); }
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) override {
        EXPECT_GE(count, 1U);
        EXPECT_LE(offset + count, sizeAtFirst);
        if (calls++ == failing)
            throw std::length_error("the server is gone");
        if (offset >= bytes.size())
            return 0;
        const std::size_t got =
            std::min({count, mostAtOnce, bytes.size() - static_cast<std::size_t>(offset)});
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), got, buffer);
        total += got;
        return got + surplus;
    }

    Bytes bytes;
    const std::size_t sizeAtFirst = bytes.size();
    std::size_t mostAtOnce = SIZE_MAX;
    std::size_t surplus = 0;
    std::optional<std::size_t> failing; ///< the number of the call
    std::size_t calls = 0;
    std::size_t total = 0;
};

std::vector<RawItem> someItems() {
    return {stored("[Content_Types].xml", "types"), oddlyDeflated("a.xml", "some text"),
            stored("b/c.bin", noise(3000))};
}

/// All that the package shows.
std::u16string read(ZipPackage& package) {
    package.open(OpenMode::ReadOnly);
    std::u16string text = names(package);
    for (auto* part : package.getParts())
        for (const char c : content(*part))
            text += static_cast<unsigned char>(c);
    package.close(true);
    return text;
}

std::u16string read(Source& source) {
    ZipPackage package(source);
    return read(package);
}

TEST(ZipSource, isReadAsItsBytes) {
    const Bytes archive = makeZip(someItems());
    ZipPackage inMemory(archive);
    const std::u16string expected = read(inMemory);
    for (const std::size_t most : {std::size_t{1}, std::size_t{7}, std::size_t{1000}, SIZE_MAX}) {
        Source source(archive);
        source.mostAtOnce = most;
        EXPECT_EQ(read(source), expected) << most;
    }
}

TEST(ZipSource, isAskedForWhatIsNeededOnly) {
    std::vector<RawItem> items = someItems();
    for (int i = 0; i < 30; ++i)
        items.push_back(stored("large" + std::to_string(i), std::string(std::size_t{1} << 20, 'x')));
    Source source(makeZip(items));
    ZipPackage package(source);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(package.getParts().size(), 32U);
    EXPECT_EQ(rest(*package.getContentTypeInputStream()), "types");
    EXPECT_LT(source.total, 100'000U);
    EXPECT_LT(source.calls, 6U);
    EXPECT_EQ(content(*find(package, u"/b/c.bin")), noise(3000));
    EXPECT_LT(source.total, 130'000U);
}

TEST(ZipSource, letsItsExceptionsThrough) {
    const Bytes archive = makeZip(someItems());
    Source counted(archive);
    const std::u16string expected = read(counted);
    for (std::size_t i = 0; i < counted.calls; ++i) {
        Source source(archive);
        ZipPackage package(source);
        source.failing = i;
        EXPECT_THROW(read(package), std::length_error) << i;
        source.failing.reset();
        try {
            package.close(true);
        } catch (const opc::Exception&) { // it failed to open
        }
        EXPECT_EQ(read(package), expected) << i;
    }
}

TEST(ZipSource, thatChangesUnderneathNeverGivesWrongContent) {
    const Bytes archive = makeZip(someItems());
    Source untouched(archive);
    const std::u16string expected = read(untouched);
    const auto readAfter = [&](const std::function<void(Bytes&)>& change) {
        Source source(archive);
        ZipPackage package(source);
        package.open(OpenMode::ReadOnly);
        change(source.bytes);
        std::u16string text = names(package);
        try {
            for (auto* part : package.getParts())
                for (const char c : content(*part))
                    text += static_cast<unsigned char>(c);
        } catch (const opc::Exception&) {
            return;
        }
        EXPECT_EQ(text, expected);
    };
    for (std::size_t i = 0; i < archive.size(); ++i) {
        readAfter([i](Bytes& bytes) { bytes[i] ^= 0x41; });
        readAfter([i](Bytes& bytes) { bytes.resize(i); });
    }
}

TEST(ZipSource, isRefusedWhereItLies) {
    Source empty{Bytes()};
    EXPECT_FAILS(ENOENT, "archive of the application: can't open", read(empty));
    Source liar(makeZip(someItems()));
    liar.surplus = 100'000;
    EXPECT_FAILS(EIO, "archive of the application: can't read the directory", read(liar));
    std::vector<RawItem> items = someItems();
    items[1].changeLocal = [](RawItem& local) { local.name = "A.xml"; };
    Source differing(makeZip(items));
    EXPECT_FAILS(EBADMSG, "a.xml: can't read: its local header has another name", read(differing));
    items = someItems();
    items[2].offset = 0;
    Source overlapping(makeZip(items));
    EXPECT_FAILS(EBADMSG, "overlaps with", read(overlapping));
}

TEST(ZipSource, isReadForWhatOtherProgramsMayTakeForSomethingElse) {
    std::vector<RawItem> items = someItems();
    items[1].inFront = "{\\rtf1}";
    Source source(makeZip(items));
    ZipPackage package(source);
    package.open(OpenMode::ReadOnly);
    for (int i = 0; i < 2; ++i) { // once is enough
        const auto misnamed = package.getMisnamedItems();
        ASSERT_EQ(misnamed.size(), 1U);
        EXPECT_EQ(opc::toUDEString(misnamed[0].name), "7 bytes in front of a.xml that belong to no item");
    }
    EXPECT_EQ(content(*find(package, u"/a.xml")), "some text");
    items[1].listed = false;
    Source hiding(makeZip(items));
    ZipPackage other(hiding);
    other.open(OpenMode::ReadOnly);
    EXPECT_FAILS(EBADMSG, "an item that the directory doesn't list", other.getMisnamedItems());
}

TEST(ZipSource, isChangedInACopy) {
    Source source(makeZip(someItems()));
    ZipPackage package(source);
    package.open(OpenMode::ReadWrite);
    create(package, u"/new", "content");
    package.close(false);
    std::ostringstream saved;
    package.writeTo(saved);
    const std::string text = saved.str();
    ZipPackage copy(Bytes(text.begin(), text.end()));
    EXPECT_EQ(read(copy), read(package));
    copy.open(OpenMode::ReadOnly);
    EXPECT_EQ(names(copy), u"/a.xml /b/c.bin /new ");

    std::vector<RawItem> items = someItems();
    items[2].listed = false;
    Source hiding(makeZip(items));
    ZipPackage changed(hiding);
    EXPECT_FAILS(EBADMSG, "an item that the directory doesn't list", changed.open(OpenMode::ReadWrite));
}

} // namespace

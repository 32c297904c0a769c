#include "PhysicalSupport.hpp"
#include "support/RawZip.hpp"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <random>

/// @file
/// Deflate data whose codes break RFC 1951 in ways that decoders treat differently. After `getMisnamedItems` an archive must
/// give what zlib gives.

namespace {

using namespace opc::test;

using Lengths = std::vector<unsigned>; ///< of the codes of symbols; 0 for a symbol without code

class DeflateWriter {
public:
    void put(unsigned value, unsigned count) {
        for (unsigned i = 0; i < count; ++i)
            bits.push_back((value >> i & 1U) != 0);
    }

    /// Puts the canonical codes of symbols.
    void putSymbols(const Lengths& lengths, const Lengths& symbols) {
        Lengths codes(lengths.size());
        unsigned code = 0;
        for (unsigned length = 1; length < 16; ++length, code <<= 1U)
            for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol)
                if (lengths[symbol] == length)
                    codes[symbol] = code++;
        for (const unsigned symbol : symbols)
            for (unsigned i = lengths[symbol]; i-- > 0;)
                bits.push_back((codes[symbol] >> i & 1U) != 0);
    }

    void fillByte() { bits.resize((bits.size() + 7) / 8 * 8); }

    void flip(std::size_t fromEnd) { bits[bits.size() - 1 - fromEnd].flip(); }

    std::string bytes() const {
        std::string all((bits.size() + 7) / 8, '\0');
        for (std::size_t i = 0; i < bits.size(); ++i)
            all[i / 8] = static_cast<char>(all[i / 8] | (bits[i] ? 1 << (i % 8) : 0));
        return all;
    }

private:
    std::vector<bool> bits;
};

struct Codes {
    Lengths literals;  ///< 257 to 288
    Lengths distances; ///< 1 to 32
    Lengths ofLengths; ///< 19
    bool runsOver;     ///< the last length is written as a run of three
};

/// Where the format has the length codes.
constexpr std::array<unsigned, 19> LENGTH_ORDER = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                   11, 4,  12, 3, 13, 2, 14, 1, 15};

/// Writes a block that gives these letters, and the last one three times more by a reference to it.
void writeBlock(DeflateWriter& out, const Codes& codes, const std::string& text, bool isLast) {
    out.put(isLast ? 5 : 4, 3);
    out.put(static_cast<unsigned>(codes.literals.size()) - 257, 5);
    out.put(static_cast<unsigned>(codes.distances.size()) - 1, 5);
    out.put(15, 4);
    for (const unsigned symbol : LENGTH_ORDER)
        out.put(codes.ofLengths[symbol], 3);
    Lengths all = codes.literals;
    all.insert(all.end(), codes.distances.begin(), codes.distances.end());
    if (codes.runsOver)
        all.back() = 16;
    out.putSymbols(codes.ofLengths, all);
    if (codes.runsOver)
        out.put(0, 2);
    if (!text.empty()) {
        Lengths symbols(text.begin(), text.end());
        symbols.push_back(257);
        out.putSymbols(codes.literals, symbols);
        if (codes.distances[1] != 0)
            out.putSymbols(codes.distances, {0});
        else
            out.put(1, 1); // which is no code, if there is only one
    }
    out.putSymbols(codes.literals, {256});
}

void writeEmptyStored(DeflateWriter& out, bool isLast) {
    out.put(isLast ? 1 : 0, 3);
    out.fillByte();
    out.put(0, 16), out.put(0xFFFF, 16);
}

class RandomCodes {
public:
    explicit RandomCodes(unsigned seed) : random(seed) {}

    bool oneOf(unsigned count) { return random() % count == 0; }
    std::size_t upTo(unsigned most) { return random() % (most + 1); }

    /// Half of them have a defect.
    Codes make() {
        const std::size_t defect = upTo(11);
        Codes codes{Lengths(257 + upTo(defect == 0 ? 31 : 29)), Lengths(2 + upTo(defect == 1 ? 30 : 28)),
                    Lengths(19), defect == 2};
        Lengths literals = {256, 257};
        for (unsigned letter = 'a'; letter <= 'z'; ++letter)
            literals.push_back(letter);
        codes.literals.resize(std::max<std::size_t>(codes.literals.size(), 258));
        assign(codes.literals, literals, upTo(20), 15, defect == 3);
        assign(codes.distances, defect == 4 ? Lengths() : Lengths{0, 1}, upTo(defect == 4 ? 1 : 5), 15,
               defect == 5);
        Lengths used;
        for (unsigned length = 0; length < 16; ++length)
            if (count(codes.literals, length) + count(codes.distances, length) > 0)
                used.push_back(length);
        if (codes.runsOver)
            used.push_back(16);
        assign(codes.ofLengths, used, upTo(2), 7, defect == 6);
        return codes;
    }

private:
    static std::size_t count(const Lengths& all, unsigned length) {
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), length));
    }

    /// Gives codes to these symbols and to some others.
    void assign(Lengths& lengths, Lengths symbols, std::size_t others, unsigned longest, bool isIncomplete) {
        while (others-- > 0)
            symbols.push_back(static_cast<unsigned>(random() % lengths.size()));
        std::sort(symbols.begin(), symbols.end());
        symbols.erase(std::unique(symbols.begin(), symbols.end()), symbols.end());
        std::shuffle(symbols.begin(), symbols.end(), random);
        Lengths given = {symbols.size() == 1 ? 1U : 0U};
        while (given.size() < symbols.size()) {
            unsigned& split = given[random() % given.size()];
            if (split < longest) {
                ++split;
                given.push_back(split);
            }
        }
        if (isIncomplete && given.back() < longest)
            ++given.back();
        for (std::size_t i = 0; i < symbols.size(); ++i)
            lengths[symbols[i]] = given[i];
    }

    std::mt19937 random;
};

bool zlibReads(const RawItem& item, const std::string& text) {
    std::string expanded(text.size() + 1, '\0');
    z_stream stream{};
    inflateInit2(&stream, -MAX_WBITS);
    Bytes data(item.data.begin(), item.data.end());
    stream.next_in = data.data();
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(expanded.data());
    stream.avail_out = static_cast<uInt>(expanded.size());
    const int result = inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    expanded.resize(stream.total_out);
    return result == Z_STREAM_END && stream.avail_in == 0 && expanded == text;
}

TEST(ZipCodes, areReadAsZlibDoesOnceThatIsAskedFor) {
    std::string letters;
    for (int i = 0; i < 1500; ++i)
        letters += static_cast<char>('a' + i * i % 26);
    const std::string text = letters + std::string(3, letters.back());
    RandomCodes random(20261127);
    int read = 0, refused = 0, readOtherwise = 0;
    for (int i = 0; i < 6000; ++i) {
        DeflateWriter out;
        const bool isLast = random.oneOf(3);
        writeBlock(out, random.make(), letters, isLast);
        if (!isLast && random.oneOf(3)) {
            writeBlock(out, random.make(), {}, true);
        } else if (!isLast) { // as programs end data that they have flushed
            if (random.oneOf(3))
                out.put(static_cast<unsigned>(random.upTo(127)), static_cast<unsigned>(random.upTo(7)));
            const bool isLastStored = random.oneOf(2);
            writeEmptyStored(out, isLastStored);
            if (!isLastStored)
                out.put(3, 10);
        }
        if (random.oneOf(4))
            out.flip(random.upTo(70));
        RawItem item = stored("a", text);
        item.method = 8;
        item.data = out.bytes();
        ZipPackage package(makeZip({item}));
        package.open(OpenMode::ReadOnly);
        const bool isRight = zlibReads(item, text);
        ++(isRight ? read : refused);
        try {
            readOtherwise += content(*package.getParts()[0]) == text && !isRight ? 1 : 0;
        } catch (const opc::Exception&) { // as zlib does
        }
        EXPECT_EQ(package.getMisnamedItems().size(), 0U);
        if (isRight)
            ASSERT_EQ(content(*package.getParts()[0]), text) << i;
        else
            ASSERT_THROW(content(*package.getParts()[0]), opc::Exception) << i;
    }
    EXPECT_GT(read, 1000);
    EXPECT_GT(refused, 1000);
    EXPECT_GT(readOtherwise, 100) << "the decoder that isn't zlib takes what it refuses";
}

} // namespace

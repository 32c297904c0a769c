// A package, and what becomes of it by some other bytes: an offset of two bytes and a new byte each.

#include "FuzzTarget.hpp"

#include <opc/core/Exception.hpp>
#include <opc/inspection/Comparison.hpp>
#include <opc/inspection/ContentHash.hpp>
#include <opc/inspection/FlatText.hpp>

#include <algorithm>
#include <sstream>

using namespace opc;
using namespace opc::fuzz;
using namespace opc::inspection;

namespace {

constexpr std::size_t MOST_CHANGES = 8;

physical::ZipOptions makeLimits() {
    physical::ZipOptions limits;
    limits.maxItems = 64;
    limits.maxItemSize = 1 << 18;
    limits.maxTotalSize = 1 << 20;
    return limits;
}

/// The first byte says how many changes there are behind it; the rest is the package.
struct Input {
    Bytes before, now;

    Input(const std::uint8_t* data, std::size_t size) {
        const std::size_t changes = size == 0 ? 0 : std::min(data[0] % MOST_CHANGES, (size - 1) / 3);
        const std::uint8_t* const package = data + (size == 0 ? 0 : 1) + 3 * changes;
        before.assign(package, data + size);
        now = before;
        for (std::size_t i = 0; i < changes && !now.empty(); ++i)
            now[(data[1 + 3 * i] * 256U + data[2 + 3 * i]) % now.size()] = data[3 + 3 * i];
    }
};

void requireWhole(const ContentDifference& one) {
    using Kind = ContentDifference::Kind;
    require(one.before.has_value() == (one.kind != Kind::Added) &&
                one.now.has_value() == (one.kind != Kind::Removed),
            "a difference has the versions of its kind");
    if (one.kind != Kind::Changed)
        return;
    require(one.hasOtherContent || one.hasOtherType, "something has changed");
    if (!one.hasOtherContent || !one.unreadable.empty())
        return;
    attempt<Exception>([&] {
        const TextDifference text = compareText(one, 1);
        require((text.outcome == TextDifference::Outcome::Lines) == !text.hunks.empty(), "lines have hunks");
        for (const Hunk& hunk : text.hunks)
            require(std::count_if(hunk.lines.begin(), hunk.lines.end(),
                                  [](const HunkLine& line) { return line.mark != '+'; }) ==
                            static_cast<std::ptrdiff_t>(hunk.beforeCount) &&
                        std::count_if(hunk.lines.begin(), hunk.lines.end(),
                                      [](const HunkLine& line) { return line.mark != '-'; }) ==
                            static_cast<std::ptrdiff_t>(hunk.nowCount),
                    "a hunk has as many lines as it says");
    });
}

std::string hashOf(const Archive& archive) {
    std::string hash;
    attempt<Exception>([&] { hash = hashContent(archive).sha256; });
    return hash;
}

std::string flatTextOf(const Archive& archive) {
    std::ostringstream text;
    writeFlatText(archive, text);
    return text.str();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Input input(data, size);
    const Archive before(input.before, makeLimits());
    const Archive now(input.now, makeLimits());
    const std::string text = flatTextOf(before);
    require(std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c & 0xE0) != 0; }),
            "the text controls no terminal");
    attempt<Exception>([&] {
        require(compare(before, before).isEmpty(), "a package doesn't differ from itself");
        const Comparison comparison = compare(before, now);
        for (const auto* list : {&comparison.parts, &comparison.items})
            std::for_each(list->begin(), list->end(), requireWhole);
        require(compare(now, before).isEmpty() == comparison.isEmpty(), "both ways are alike");
        const std::string hash = hashOf(before);
        const std::string hashNow = hashOf(now);
        const bool haveHashes = !hash.empty() && !hashNow.empty(); // an archive that is cut off has none
        if (haveHashes && comparison.parts.empty() && comparison.relationships.empty())
            require(hash == hashNow, "what is the same has the same hash");
    });
    return 0;
}

#include <opc/inspection/Comparison.hpp>

#include "comparison/CanonicalXml.hpp"
#include "comparison/LineDifference.hpp"
#include "comparison/TextLines.hpp"
#include "comparison/XmlContent.hpp"
#include "subject/ItemsStream.hpp"

#include <opc/model/Errors.hpp>

#include <algorithm>

namespace opc::inspection {

namespace {

using Outcome = TextDifference::Outcome;

/// A run of lines that differ: those from `before` are replaced with those from `now`.
struct Run {
    std::size_t before, beforeEnd, now, nowEnd;
};

std::vector<Run> runsOf(const LineDifference& difference) {
    std::vector<Run> runs;
    std::size_t x = 0;
    std::size_t y = 0;
    while (x < difference.before.size() || y < difference.now.size()) {
        Run run{x, x, y, y};
        while (run.beforeEnd < difference.before.size() && difference.before[run.beforeEnd])
            ++run.beforeEnd;
        while (run.nowEnd < difference.now.size() && difference.now[run.nowEnd])
            ++run.nowEnd;
        if (run.beforeEnd != x || run.nowEnd != y)
            runs.push_back(run);
        x = run.beforeEnd + 1; // a line that is in both
        y = run.nowEnd + 1;
    }
    return runs;
}

class HunkMaker {
public:
    HunkMaker(const TextLines& before, const TextLines& now, std::size_t context, TextDifference& result)
        : before(before), now(now), context(context), result(result) {}

    /// Runs that share lines of their contexts make one hunk.
    void make(const std::vector<Run>& runs) {
        for (std::size_t first = 0; first < runs.size();) {
            std::size_t last = first;
            while (last + 1 < runs.size() && runs[last + 1].before - runs[last].beforeEnd <= 2 * context)
                ++last;
            makeOne(&runs[first], &runs[last]);
            first = last + 1;
        }
    }

private:
    void makeOne(const Run* first, const Run* last) {
        const std::size_t lead = std::min(context, first->before);
        const std::size_t tail = std::min(context, before.count() - last->beforeEnd);
        const std::size_t begin = first->before - lead;
        const std::size_t nowBegin = first->now - lead;
        Hunk& hunk = result.hunks.emplace_back();
        hunk.beforeCount = last->beforeEnd + tail - begin;
        hunk.nowCount = last->nowEnd + tail - nowBegin;
        hunk.beforeLine = begin + (hunk.beforeCount == 0 ? 0 : 1);
        hunk.nowLine = nowBegin + (hunk.nowCount == 0 ? 0 : 1);
        std::size_t place = begin;
        for (const Run* run = first; run <= last; ++run) {
            add(hunk, ' ', before, place, run->before);
            add(hunk, '-', before, run->before, run->beforeEnd);
            add(hunk, '+', now, run->now, run->nowEnd);
            result.removedLines += run->beforeEnd - run->before;
            result.addedLines += run->nowEnd - run->now;
            place = run->beforeEnd;
        }
        add(hunk, ' ', before, place, place + tail);
    }

    static void add(Hunk& hunk, char mark, const TextLines& lines, std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i)
            hunk.lines.push_back({mark, std::string(lines.line(i))});
    }

    const TextLines& before;
    const TextLines& now;
    const std::size_t context;
    TextDifference& result;
};

/// @return whether the content could be read as XML of a size that can be compared; if not, `outcome` says why
bool readLines(const ContentVersion& content, XmlPrefixes& prefixes, TextLines& lines, Outcome& outcome) {
    CanonicalXml events(prefixes, lines);
    outcome = Outcome::NotXml;
    if (!beginsLikeXml(*content.archive, content.items))
        return false;
    try {
        model::readXmlDocument(*openItems(*content.archive, content.items), events);
        events.end();
        return true;
    } catch (const model::InvalidXMLDocument&) {
        // A picture, a program … that only looks like it, or damaged XML.
    } catch (const TextLines::Full&) {
        outcome = Outcome::TooLarge;
    }
    return false;
}

} // namespace

TextDifference compareText(const ContentDifference& difference, std::size_t context) {
    XmlPrefixes prefixes;
    TextLines before;
    TextLines now;
    TextDifference result;
    if (!readLines(*difference.before, prefixes, before, result.outcome) ||
        !readLines(*difference.now, prefixes, now, result.outcome))
        return result;
    HunkMaker(before, now, context, result).make(runsOf(compareTexts(before, now)));
    result.outcome = result.hunks.empty() ? Outcome::SameText : Outcome::Lines;
    return result;
}

} // namespace opc::inspection

#include "comparison/LineDifference.hpp"

#include <algorithm>
#include <limits>

namespace opc::inspection {

namespace {

using Index = std::ptrdiff_t;

/// So many insertions and deletions are looked for in a box before it is cut where most of it is passed.
constexpr Index MOST_STEPS = 256;

/// A place between two lines of either text.
struct LinePair {
    Index x, y;
};

/// Lines of either text: from `begin` up to `end`.
struct Box {
    LinePair begin, end;

    bool isEmpty() const { return begin.x == end.x && begin.y == end.y; }
};

/// How far one can come on each diagonal (x - y) with the insertions and deletions so far, from one corner of a box.
class Front {
public:
    /// @param direction  1 from the beginning, -1 from the end
    Front(Index direction, std::vector<Index>& storage, Index zero)
        : direction(direction), storage(storage), zero(zero) {}

    void begin(const Box& box) {
        const LinePair corner = direction > 0 ? box.begin : box.end;
        least = box.begin.x - box.end.y;
        greatest = box.end.x - box.begin.y;
        low = high = corner.x - corner.y;
        at(low) = corner.x;
    }

    Index lowest() const { return low; }
    Index highest() const { return high; }
    Index& at(Index diagonal) { return storage[static_cast<std::size_t>(zero + diagonal)]; }
    bool has(Index diagonal) const { return low <= diagonal && diagonal <= high; }

    /// Takes in a diagonal on each side, within the box.
    void widen() {
        const Index nowhere = direction > 0 ? -1 : std::numeric_limits<Index>::max();
        if (low > least)
            at(--low - 1) = nowhere;
        else
            ++low;
        if (high < greatest)
            at(++high + 1) = nowhere;
        else
            --high;
    }

    /// Where one more insertion or deletion leads on a diagonal.
    Index step(Index diagonal) {
        const Index below = at(diagonal - 1);
        const Index above = at(diagonal + 1);
        return direction > 0 ? std::max(below + 1, above) : std::min(below, above - 1);
    }

private:
    const Index direction;
    std::vector<Index>& storage;
    const Index zero;
    Index least = 0, greatest = 0, low = 0, high = 0;
};

class LineComparer {
public:
    LineComparer(const LineNumbers& before, const LineNumbers& now)
        : before(before), now(now), forwardPlaces(before.size() + now.size() + 3),
          backwardPlaces(before.size() + now.size() + 3),
          forward(1, forwardPlaces, static_cast<Index>(now.size()) + 1),
          backward(-1, backwardPlaces, static_cast<Index>(now.size()) + 1) {
        result.before.resize(before.size());
        result.now.resize(now.size());
    }

    LineDifference run() {
        boxes.push_back({{0, 0}, {static_cast<Index>(before.size()), static_cast<Index>(now.size())}});
        while (!boxes.empty()) {
            Box box = boxes.back();
            boxes.pop_back();
            trim(box);
            if (box.begin.x == box.end.x || box.begin.y == box.end.y)
                mark(box);
            else
                cut(box);
        }
        return std::move(result);
    }

private:
    bool areSame(Index x, Index y) const {
        return before[static_cast<std::size_t>(x)] == now[static_cast<std::size_t>(y)];
    }

    void trim(Box& box) const {
        while (box.begin.x < box.end.x && box.begin.y < box.end.y && areSame(box.begin.x, box.begin.y)) {
            ++box.begin.x;
            ++box.begin.y;
        }
        while (box.begin.x < box.end.x && box.begin.y < box.end.y && areSame(box.end.x - 1, box.end.y - 1)) {
            --box.end.x;
            --box.end.y;
        }
    }

    void mark(const Box& box) {
        std::fill(result.before.begin() + box.begin.x, result.before.begin() + box.end.x, true);
        std::fill(result.now.begin() + box.begin.y, result.now.begin() + box.end.y, true);
    }

    void cut(const Box& box) {
        const LinePair place = findCut(box);
        const Box first{box.begin, place};
        const Box second{place, box.end};
        if (first.isEmpty() || second.isEmpty()) {
            mark(box);
            return;
        }
        boxes.push_back(second);
        boxes.push_back(first);
    }

    /// A point on a way through the box with the fewest insertions and deletions or, if they are too many, one that is far
    /// from its corner.
    LinePair findCut(const Box& box) {
        forward.begin(box);
        backward.begin(box);
        const bool isOdd = ((forward.lowest() - backward.lowest()) & 1) != 0;
        for (Index steps = 1;; ++steps) {
            LinePair meeting{};
            if (advance(box, isOdd, meeting) || retreat(box, !isOdd, meeting))
                return meeting;
            if (steps >= MOST_STEPS)
                return findFarthest(box);
        }
    }

    /// @param canMeet  whether the two fronts can meet at this step
    /// @return whether they do
    bool advance(const Box& box, bool canMeet, LinePair& meeting) {
        forward.widen();
        for (Index d = forward.highest(); d >= forward.lowest(); d -= 2) {
            Index x = forward.step(d);
            while (x < box.end.x && x - d < box.end.y && areSame(x, x - d))
                ++x;
            forward.at(d) = x;
            if (canMeet && backward.has(d) && backward.at(d) <= x) {
                meeting = {x, x - d};
                return true;
            }
        }
        return false;
    }

    bool retreat(const Box& box, bool canMeet, LinePair& meeting) {
        backward.widen();
        for (Index d = backward.highest(); d >= backward.lowest(); d -= 2) {
            Index x = backward.step(d);
            while (x > box.begin.x && x - d > box.begin.y && areSame(x - 1, x - d - 1))
                --x;
            backward.at(d) = x;
            if (canMeet && forward.has(d) && x <= forward.at(d)) {
                meeting = {x, x - d};
                return true;
            }
        }
        return false;
    }

    /// Of the points that both fronts have reached, the one with the most lines between it and its corner.
    LinePair findFarthest(const Box& box) {
        LinePair fromBegin = box.begin;
        for (Index d = forward.highest(); d >= forward.lowest(); d -= 2) {
            const Index x = std::min({forward.at(d), box.end.x, box.end.y + d});
            if (x - d >= box.begin.y && x + x - d > fromBegin.x + fromBegin.y)
                fromBegin = {x, x - d};
        }
        LinePair fromEnd = box.end;
        for (Index d = backward.highest(); d >= backward.lowest(); d -= 2) {
            const Index x = std::max({backward.at(d), box.begin.x, box.begin.y + d});
            if (x - d <= box.end.y && x + x - d < fromEnd.x + fromEnd.y)
                fromEnd = {x, x - d};
        }
        const Index passed = fromBegin.x + fromBegin.y - box.begin.x - box.begin.y;
        const Index passedBack = box.end.x + box.end.y - fromEnd.x - fromEnd.y;
        return passed >= passedBack ? fromBegin : fromEnd;
    }

    const LineNumbers& before;
    const LineNumbers& now;
    std::vector<Index> forwardPlaces, backwardPlaces;
    Front forward, backward;
    LineDifference result;
    std::vector<Box> boxes;
};

} // namespace

LineDifference compareLines(const LineNumbers& before, const LineNumbers& now) {
    return LineComparer(before, now).run();
}

} // namespace opc::inspection

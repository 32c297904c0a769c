#pragma once

#include <chrono>
#include <ctime>

namespace bench {

using Seconds = std::chrono::duration<double>;

/// The CPU time of this thread for `action`, so other load on the machine hardly affects it.
template <typename Action>
Seconds workTime(Action&& action) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    const auto start = now();
    action();
    return now() - start;
}

/// The shortest of several times for the same work: the least disturbed one.
class BestTime {
public:
    /// @return the time of this call
    template <typename Action>
    Seconds take(Action&& action) {
        const Seconds time = workTime(action);
        if (time < best)
            best = time;
        return time;
    }

    double operator/(const BestTime& other) const { return best / other.best; }
    double milliseconds() const { return best.count() * 1000; }

private:
    Seconds best = Seconds::max();
};

} // namespace bench

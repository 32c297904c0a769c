#include "Lock.hpp"

#include <chrono>
#include <thread>

namespace opcpython {

void waitForThreadsInLibrary() noexcept {
    constexpr auto STEP = std::chrono::milliseconds(1);
    constexpr int STEPS = 5000;
    for (int i = 0; threadsInLibrary > 0 && i < STEPS; ++i)
        std::this_thread::sleep_for(STEP);
}

} // namespace opcpython

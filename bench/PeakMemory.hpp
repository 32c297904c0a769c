#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

namespace bench {

/// The largest memory of this process since `resetPeakMemory`, in MiB, as the kernel counts it.
inline double peakMemoryInMiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.compare(0, 6, "VmHWM:") == 0)
            return std::strtod(line.c_str() + 6, nullptr) / 1024;
    return 0;
}

inline void resetPeakMemory() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

} // namespace bench

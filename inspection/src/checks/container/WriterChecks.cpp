#include "checks/container/ContainerChecks.hpp"

#include <algorithm>
#include <cstdio>
#include <set>

namespace opc::inspection {

namespace {

std::string systemOf(unsigned system) {
    switch (system) {
    case 0:
        return "MS-DOS or Windows";
    case 3:
        return "Unix";
    case 10:
    case 11:
        return "Windows NT";
    case 19:
        return "macOS";
    default:
        return "system " + std::to_string(system);
    }
}

/// Date and time of MS-DOS in one number, which grows with time.
std::uint32_t timeOf(const ItemHeader& header) {
    return static_cast<std::uint32_t>(header.date) << 16 | header.time;
}

std::string textOf(std::uint32_t time) {
    char text[48];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", 1980 + (time >> 25), time >> 21 & 15U,
                  time >> 16 & 31U, time >> 11 & 31U, time >> 5 & 63U, 2 * (time & 31U));
    return text;
}

} // namespace

/// Many writers set all times to the first that there is: that tells nothing.
void tellWriter(const Subject& subject, Findings& findings) {
    constexpr std::uint32_t FIRST_TIME = 0x00210000; // 1 January 1980
    if (!findings.wants("SEC-58"))
        return;
    std::set<std::string> systems;
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    for (const ArchiveItem& item : subject.archive().items()) {
        if (!item.central)
            continue;
        systems.insert(systemOf(item.versionMadeBy >> 8U));
        const std::uint32_t time = timeOf(*item.central);
        if (time <= FIRST_TIME)
            continue;
        first = first == 0 ? time : std::min(first, time);
        last = std::max(last, time);
    }
    if (systems.empty())
        return;
    std::string message = "The items were written on";
    for (const std::string& system : systems)
        message += (system == *systems.begin() ? " " : ", ") + system;
    if (first != 0)
        message += ", " + textOf(first) + (last == first ? "" : " to " + textOf(last));
    findings.add("SEC-58", {}, std::move(message));
}

} // namespace opc::inspection

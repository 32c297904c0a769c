#pragma once

#include <chrono>

namespace opc::physical {
struct ZipOptions;
}

namespace opctool {

/// What time it is for everything that the tool writes: that of SOURCE_DATE_EPOCH, in seconds since 1970, if the environment
/// has it; else now.
/// @throws CLI::ValidationError  it has another value than a number
std::chrono::system_clock::time_point presentTime();

/// Lets archives be written deterministically if the environment has SOURCE_DATE_EPOCH: with that time as the time of
/// written items.
/// @throws CLI::ValidationError  as `presentTime`
void takeSourceDate(opc::physical::ZipOptions& options);

} // namespace opctool

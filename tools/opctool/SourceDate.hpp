#pragma once

namespace opc::physical {
struct ZipOptions;
}

namespace opctool {

/// Lets archives be written deterministically if the environment has SOURCE_DATE_EPOCH: with that time, in seconds since
/// 1970, as the time of written items.
/// @throws CLI::ValidationError  it has another value than a number
void takeSourceDate(opc::physical::ZipOptions& options);

} // namespace opctool

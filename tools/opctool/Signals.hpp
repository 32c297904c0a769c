#pragma once

namespace opctool {

/// From now on a signal that ends the process, such as that of Ctrl+C, leaves no temporary file behind.
void leaveNothingBehindOnSignals();

} // namespace opctool

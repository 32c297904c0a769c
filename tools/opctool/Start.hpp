#pragma once

namespace opctool {

/// Prepares the process as the tool expects it: arguments in UTF-8, and standard streams that change no byte.
/// @param arguments  those of `main`
/// @param count      their number
/// @return the arguments, which stay until the process ends
char** startProcess(int& count, char** arguments);

} // namespace opctool

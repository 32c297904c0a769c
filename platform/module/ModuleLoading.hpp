#pragma once

#include <dlfcn.h>

#include <string>

namespace bedrock {

/// Loads a library and finds its table of functions. The library stays loaded until the process ends.
/// @param file     the name of the library, looked for where the caller's `RUNPATH` and the system say
/// @param table    the name of its table
/// @param failure  the beginning of the message if that fails
template <typename Table, typename Failure>
const Table& loadModule(const char* file, const char* table, const std::string& failure) {
    void* const library = dlopen(file, RTLD_LAZY | RTLD_LOCAL);
    const auto* const functions =
        library ? static_cast<const Table*>(dlsym(library, table)) : static_cast<const Table*>(nullptr);
    if (functions)
        return *functions;
    const char* const cause = dlerror();
    throw Failure(failure + (cause ? cause : "unknown cause"));
}

} // namespace bedrock

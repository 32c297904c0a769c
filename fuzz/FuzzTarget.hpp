#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <typeinfo>
#include <vector>

/// @file
/// What every fuzz target stands on. A target is one file that defines `LLVMFuzzerTestOneInput`: it states what
/// must hold of any bytes at all. Only the exceptions that the headers name are caught; any other ends the program,
/// and so does a failed `require`.

/// Called by libFuzzer, or by replay.cpp for each file of a corpus.
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace opc::fuzz {

using Bytes = std::vector<unsigned char>;

/// Ends the program with `property` unless it holds.
void require(bool holds, const char* property);

/// The same, and says what stands against each other.
void requireEqual(const std::u16string& left, const std::u16string& right, const char* property);

/// Runs `action`, which may raise any of these classes. What else it raises ends the program, be it of a class
/// derived from them.
/// @return whether it raised nothing
template <typename... Documented, typename Action>
bool attempt(Action&& action) {
    try {
        action();
        return true;
    } catch (const std::exception& e) {
        if (((typeid(e) == typeid(Documented)) || ...))
            return false;
        throw;
    }
}

/// The text of an input: UTF-8 or, behind the bytes FF FE, code units of UTF-16 with the lower byte first, so
/// that lone surrogates come up too.
std::u16string toText(const Bytes& input);

/// The pieces of an input between bytes of that value. There is always one.
std::vector<Bytes> split(const std::uint8_t* data, std::size_t size, unsigned char separator);

} // namespace opc::fuzz

#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <typeinfo>
#include <vector>

/// @file
/// The base of all fuzz targets. A target is one file that defines `LLVMFuzzerTestOneInput` and states what must be
/// true for any bytes. Only the exceptions that the headers name are caught. All others end the program, and so does
/// a failed `require`.

/// Called by libFuzzer, or by replay.cpp for each file of a corpus.
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace opc::fuzz {

using Bytes = std::vector<unsigned char>;

/// Ends the program with the message `property` if the condition is false.
void require(bool holds, const char* property);

/// The same. The message also has both values.
void requireEqual(const std::u16string& left, const std::u16string& right, const char* property);

/// Runs `action`, which may throw any of these classes. Everything else ends the program, including classes that
/// derive from them.
/// @return whether it threw nothing
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

/// Decodes an input: UTF-8 or, after the bytes FF FE, UTF-16 with the low byte first, so that lone surrogates occur
/// too.
std::u16string toText(const Bytes& input);

/// Splits an input at each byte of that value. The result has at least one piece.
std::vector<Bytes> split(const std::uint8_t* data, std::size_t size, unsigned char separator);

} // namespace opc::fuzz

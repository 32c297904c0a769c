#pragma once

namespace opc::standard_signatures {

/// The value of a hexadecimal digit; negative if it isn't one.
constexpr int hexDigitOf(unsigned char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

} // namespace opc::standard_signatures

#pragma once

#include <opc/core/Text.hpp>

#include <string>
#include <vector>

namespace opc::test {

/// A document in each encoding that can be read. In UTF-16 without a byte order mark, it begins with a declaration.
inline std::vector<std::vector<unsigned char>> inAllEncodings(const std::string& text) {
    using Bytes = std::vector<unsigned char>;
    std::vector<Bytes> all = {Bytes(text.begin(), text.end())};
    all.push_back({0xEF, 0xBB, 0xBF});
    all.back().insert(all.back().end(), text.begin(), text.end());
    std::vector<std::u16string> texts = {u'\uFEFF' + opc::toString(text, true)};
    if (text.compare(0, 2, "<?") == 0)
        texts.push_back(opc::toString(text, true));
    for (const std::u16string& wide : texts) {
        Bytes little;
        Bytes big;
        for (const char16_t unit : wide) {
            const auto high = static_cast<unsigned char>(unit >> 8);
            const auto low = static_cast<unsigned char>(unit & 0xFF);
            little.insert(little.end(), {low, high});
            big.insert(big.end(), {high, low});
        }
        all.push_back(little);
        all.push_back(big);
    }
    return all;
}

} // namespace opc::test

#pragma once

#include <algorithm>
#include <string_view>

namespace opc::standard_signatures {

/// Whether an XML declaration names an encoding that a package can have [M1.17], or none. Other programs can read other
/// characters from a document in another one.
inline bool isEncodingOfPackages(std::u16string_view encoding) {
    const auto is = [encoding](std::u16string_view name) {
        return std::equal(encoding.begin(), encoding.end(), name.begin(), name.end(),
                          [](char16_t c, char16_t upper) {
                              return c == upper || (c >= u'a' && c <= u'z' && c - u'a' + u'A' == upper);
                          });
    };
    return encoding.empty() || is(u"UTF-8") || is(u"UTF-16");
}

} // namespace opc::standard_signatures

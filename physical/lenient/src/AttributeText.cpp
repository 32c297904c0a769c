#include "AttributeText.hpp"

namespace opc::physical::lenient {

std::u16string escapeValue(std::u16string_view value) {
    static constexpr char16_t DIGITS[] = u"0123456789ABCDEF";
    std::u16string escaped;
    for (const char16_t unit : value) {
        if (unit == u'&')
            escaped += u"&amp;";
        else if (unit == u'<')
            escaped += u"&lt;";
        else if (unit == u'"')
            escaped += u"&quot;";
        else if (unit == u'\'')
            escaped += u"&apos;";
        else if (unit < u' ')
            escaped.append(u"&#x").append({DIGITS[unit >> 4], DIGITS[unit & 15]}).append(u";");
        else
            escaped.push_back(unit);
    }
    return escaped;
}

void addAttribute(std::u16string& tag, std::u16string_view name, std::u16string_view value) {
    tag.append(u" ").append(name).append(u"=\"").append(escapeValue(value)).append(u"\"");
}

} // namespace opc::physical::lenient

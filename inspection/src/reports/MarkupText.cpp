#include "reports/MarkupText.hpp"

#include <opc/core/PrintableText.hpp>

namespace opc::inspection {

std::string toMarkup(std::string_view text) {
    std::string markup;
    for (const char c : withoutControlCharacters(std::string(text)))
        switch (c) {
        case '<':
            markup += "&lt;";
            break;
        case '>':
            markup += "&gt;";
            break;
        case '&':
            markup += "&amp;";
            break;
        case '"':
            markup += "&quot;";
            break;
        case '\'':
            markup += "&#39;";
            break;
        default:
            markup += c;
        }
    return markup;
}

} // namespace opc::inspection

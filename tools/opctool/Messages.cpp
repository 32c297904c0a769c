#include "Messages.hpp"

#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iostream>

namespace opctool {

using opc::interfaces::Oddity;

namespace {

constexpr std::size_t TOLD = 100; // a small package can have very many

std::string describe(const Oddity& oddity) {
    std::string text = opc::toUDEString(oddity.place);
    if (oddity.line != 0)
        text += (text.empty() ? "line " : ":") + std::to_string(oddity.line);
    if (!text.empty())
        text += ": ";
    text += oddity.what;
    if (!oddity.done.empty())
        text += "; " + oddity.done;
    if (!oddity.rule.empty())
        text += " [" + oddity.rule + "]";
    return text;
}

} // namespace

void tell(const std::string& package, const std::string& text) {
    std::cerr << withoutControlCharacters("opctool: " + (package.empty() ? "" : package + ": ") + text)
              << '\n';
}

void tellOddities(const std::string& package, const std::vector<Oddity>& oddities) {
    const std::size_t told = std::min(oddities.size(), TOLD);
    std::for_each_n(oddities.begin(), told, [&](const Oddity& oddity) { tell(package, describe(oddity)); });
    if (told < oddities.size())
        tell(package, "and " + std::to_string(oddities.size() - told) + " more");
}

} // namespace opctool

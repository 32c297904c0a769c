#include "Messages.hpp"

#include "TerminalText.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iostream>
#include <iterator>

namespace opctool {

using opc::interfaces::Oddity;

namespace {

constexpr std::size_t TOLD_ODDITIES = 100; // a small package can have very many

std::string describeOddity(const Oddity& oddity) {
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
    std::cerr << messageLine(package, text);
}

std::string messageLine(const std::string& package, const std::string& text) {
    return withoutControlCharacters("opctool: " + (package.empty() ? "" : package + ": ") + text) + '\n';
}

std::vector<std::string> describeOddities(const std::vector<Oddity>& oddities, bool all) {
    const std::size_t told = all ? oddities.size() : std::min(oddities.size(), TOLD_ODDITIES);
    std::vector<std::string> texts;
    std::transform(oddities.begin(), oddities.begin() + static_cast<std::ptrdiff_t>(told),
                   std::back_inserter(texts), describeOddity);
    if (told < oddities.size())
        texts.push_back("and " + std::to_string(oddities.size() - told) + " more");
    return texts;
}

} // namespace opctool

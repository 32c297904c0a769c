#include "checks/security/OleObject.hpp"

#include "text/CaselessText.hpp"

#include <algorithm>
#include <functional>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::size_t LONGEST_PATH = 1024;

bool isPlainText(std::string_view text) {
    return !text.empty() && text.size() <= LONGEST_PATH &&
           std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// The text that ends in front of the zero at `end`, behind another zero.
std::string_view textBefore(std::string_view content, std::size_t end) {
    const std::string_view front =
        content.substr(end - std::min(end, LONGEST_PATH + 1), std::min(end, LONGEST_PATH + 1));
    const std::size_t zero = front.rfind('\0');
    return zero == std::string_view::npos ? std::string_view() : front.substr(zero + 1);
}

} // namespace

void OleObject::begin() {
    macros.begin();
    name.clear();
    last.clear();
}

void OleObject::add(std::string_view piece) {
    constexpr std::size_t LONGEST_HEADER = 2 * LONGEST_PATH + 16;
    macros.add(piece);
    last.append(piece.substr(0, LONGEST_HEADER)); // what is cut in two by the pieces
    look(last);
    look(piece);
    last.assign(piece.substr(piece.size() - std::min(piece.size(), LONGEST_HEADER)));
}

// The stream is: size (4 bytes), 2 (2 bytes), name, 0, path of the original, 0, 0 and 3 (2 bytes each), and then the path
// of a temporary file and the content.
void OleObject::look(std::string_view content) {
    static constexpr std::string_view BEHIND_PATH("\0\0\0\3\0", 5);
    static constexpr std::string_view BEFORE_NAME("\2\0", 2);
    static const std::boyer_moore_horspool_searcher searcher(BEHIND_PATH.begin(), BEHIND_PATH.end());
    const auto* found = content.begin();
    while (!isRunnable(name) && (found = std::search(found, content.end(), searcher)) != content.end()) {
        const auto at = static_cast<std::size_t>(found++ - content.begin());
        const std::string_view path = textBefore(content, at);
        if (!isPlainText(path) || path.size() + 1 > at)
            continue;
        const std::size_t nameEnd = at - path.size() - 1;
        const std::string_view file = textBefore(content, nameEnd);
        if (isPlainText(file) && file.size() + 2 <= nameEnd &&
            content.substr(nameEnd - file.size() - 2, 2) == BEFORE_NAME && (name.empty() || isRunnable(file)))
            name = file;
    }
}

bool isRunnable(std::string_view fileName) {
    static constexpr std::string_view EXTENSIONS[] = {
        ".appref-ms", ".bat", ".chm", ".cmd", ".com", ".cpl", ".dll", ".exe", ".hta",
        ".iso",       ".jar", ".js",  ".jse", ".lnk", ".msi", ".pif", ".ps1", ".reg",
        ".scr",       ".sct", ".url", ".vbe", ".vbs", ".wsf", ".wsh"};
    return std::any_of(std::begin(EXTENSIONS), std::end(EXTENSIONS),
                       [fileName](std::string_view extension) { return endsWith(fileName, extension); });
}

} // namespace opc::inspection

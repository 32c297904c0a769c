#include "ForeignFormat.hpp"

#include "Failure.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

namespace opc::physical::zip {

namespace {

using std::string_view;
using namespace std::string_view_literals;

constexpr struct {
    string_view beginning; ///< in lower case
    const char* format;
} FORMATS[] = {
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, "an encrypted or older Office file (OLE2)"},
    {"%pdf-"sv, "a PDF file"},
    {R"({\rtf)"sv, "an RTF file"},
    {"<!doctype html"sv, "an HTML page"},
    {"<html"sv, "an HTML page"},
    {"<?xml"sv, "an XML document"},
    {"\x1F\x8B"sv, "a gzip file"},
    {"7z\xBC\xAF\x27\x1C"sv, "a 7z archive"},
    {"rar!\x1A\x07"sv, "a RAR archive"},
    {"version https://git-lfs"sv, "the pointer to a file that Git LFS keeps elsewhere"},
};

char lowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

void requireNoForeignFormat(ByteSource& archive, const std::string& place) {
    if (archive.size() == 0)
        fail(place, "an empty file, no package", EBADMSG);
    std::array<unsigned char, 64> bytes{};
    std::size_t got = 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), archive.size()));
    if (archive.readAt(0, bytes.data(), count, got) != 0)
        return; // the next reader reports the failure
    std::string start(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got));
    std::transform(start.begin(), start.end(), start.begin(), lowerCase);
    const bool hasMark = start.compare(0, 3, "\xEF\xBB\xBF") == 0;
    start.erase(0, start.find_first_not_of(" \t\r\n", hasMark ? 3 : 0));
    for (const auto& [beginning, format] : FORMATS) {
        if (start.compare(0, beginning.size(), beginning) == 0)
            fail(place, std::string(format) + ", no package", EBADMSG);
    }
}

} // namespace opc::physical::zip

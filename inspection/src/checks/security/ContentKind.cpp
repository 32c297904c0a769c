#include "checks/security/ContentKind.hpp"

#include "content/TagNames.hpp"
#include "text/CaselessText.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

struct Magic {
    std::string_view bytes;
    ContentKind kind;
};

constexpr Magic MAGICS[] = {
    {"\x89PNG\r\n\x1A\n", ContentKind::Png},
    {"\xFF\xD8\xFF", ContentKind::Jpeg},
    {"GIF8", ContentKind::Gif},
    {std::string_view("II*\0", 4), ContentKind::Tiff},
    {std::string_view("MM\0*", 4), ContentKind::Tiff},
    {"BM", ContentKind::Bmp},
    {"\xD7\xCD\xC6\x9A", ContentKind::Wmf},
    {std::string_view("\1\0\t\0\0", 5), ContentKind::Wmf},
    {"%PDF-", ContentKind::Pdf},
    {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", ContentKind::Ole},
    {"PK\3\4", ContentKind::Zip},
    {"\x7F"
     "ELF",
     ContentKind::Program},
    {"#!/", ContentKind::Script},
    {std::string_view("L\0\0\0\1\x14\2\0", 8), ContentKind::Shortcut},
};

/// An executable of Windows: `MZ`, and behind it the place of a second header.
bool isWindowsProgram(std::string_view head) {
    if (head.size() < 64 || head.substr(0, 2) != "MZ")
        return false;
    const auto at = static_cast<std::size_t>(static_cast<unsigned char>(head[60])) |
                    static_cast<std::size_t>(static_cast<unsigned char>(head[61])) << 8U;
    return head[62] == '\0' && head[63] == '\0' &&
           (at >= head.size() || head.substr(at, 2) == "PE" || head.substr(at, 2) == "NE" ||
            head.substr(at, 2) == "LE");
}

bool isHtml(std::string_view head) {
    if (head.substr(0, 3) == "\xEF\xBB\xBF")
        head.remove_prefix(3);
    const std::size_t first = head.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos &&
           (startsWith(head.substr(first), "<!doctype html") || startsWith(head.substr(first), "<html") ||
            startsWith(head.substr(first), "<script"));
}

struct TypeKind {
    std::string_view type;
    ContentKind kind;
};

constexpr TypeKind TYPES[] = {
    {"image/png", ContentKind::Png},
    {"image/x-png", ContentKind::Png},
    {"image/jpeg", ContentKind::Jpeg},
    {"image/jpg", ContentKind::Jpeg},
    {"image/pjpeg", ContentKind::Jpeg},
    {"image/gif", ContentKind::Gif},
    {"image/tiff", ContentKind::Tiff},
    {"image/bmp", ContentKind::Bmp},
    {"image/x-bmp", ContentKind::Bmp},
    {"image/x-emf", ContentKind::Emf},
    {"image/emf", ContentKind::Emf},
    {"image/x-wmf", ContentKind::Wmf},
    {"image/wmf", ContentKind::Wmf},
    {"application/pdf", ContentKind::Pdf},
    {"application/vnd.ms-office.vbaproject", ContentKind::Ole},
    {"application/xhtml+xml", ContentKind::Html},
};

} // namespace

ContentKind kindOf(std::string_view head) {
    for (const Magic& magic : MAGICS)
        if (head.substr(0, magic.bytes.size()) == magic.bytes)
            return magic.kind;
    if (head.size() >= 44 && head.substr(40, 4) == " EMF")
        return ContentKind::Emf;
    if (isWindowsProgram(head))
        return ContentKind::Program;
    if (isHtml(head))
        return ContentKind::Html;
    return looksLikeXml(head) ? ContentKind::Xml : ContentKind::Unknown;
}

ContentKind kindOfType(std::string_view mediaType) {
    for (const TypeKind& row : TYPES)
        if (row.type == mediaType)
            return row.kind;
    const bool isXml =
        endsWith(mediaType, "+xml") || mediaType == "application/xml" || mediaType == "text/xml";
    return isXml ? ContentKind::Xml : ContentKind::Unknown;
}

bool isImage(ContentKind kind) {
    return kind >= ContentKind::Png && kind <= ContentKind::Wmf;
}

bool isRun(ContentKind kind) {
    return kind >= ContentKind::Program;
}

std::string_view describe(ContentKind kind) {
    static constexpr std::string_view TEXTS[] = {
        "something else",  "a PNG image", "a JPEG image", "a GIF image", "a TIFF image",  "a BMP image",
        "an EMF image",    "a WMF image", "a PDF file",   "an OLE file", "a ZIP archive", "an HTML page",
        "an XML document", "a program",   "a script",     "a shortcut"};
    return TEXTS[static_cast<std::size_t>(kind)];
}

} // namespace opc::inspection

#include "format/ForeignFormats.hpp"

#include "format/Ole2Directory.hpp"
#include "zip/src/NameText.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace opc::inspection {

namespace {

using std::string_view;
using namespace std::string_view_literals;

struct KnownFormat {
    string_view key;
    const char* name;
    const char* mediaType;
    const char* description;
};

/// By the first bytes, letters in lower case.
constexpr KnownFormat BY_BEGINNING[] = {
    {R"({\rtf)"sv, "rtf", "application/rtf", "RTF document"},
    {"<!doctype html"sv, "html", "text/html", "HTML page"},
    {"<html"sv, "html", "text/html", "HTML page"},
    {"<?xml"sv, "xml", "application/xml", "XML document"},
    {"\x1F\x8B"sv, "gzip", "application/gzip", "gzip file"},
    {"7z\xBC\xAF\x27\x1C"sv, "7z", "application/x-7z-compressed", "7z archive"},
    {"rar!\x1A\x07"sv, "rar", "application/vnd.rar", "RAR archive"},
    {"mz"sv, "exe", "application/vnd.microsoft.portable-executable", "program for Windows"},
};

/// By the item `mimetype`, which begins these archives, or should.
constexpr KnownFormat BY_MIMETYPE[] = {
    {"application/vnd.oasis.opendocument.text", "odt", "", "OpenDocument text"},
    {"application/vnd.oasis.opendocument.text-template", "ott", "", "OpenDocument text template"},
    {"application/vnd.oasis.opendocument.spreadsheet", "ods", "", "OpenDocument spreadsheet"},
    {"application/vnd.oasis.opendocument.spreadsheet-template", "ots", "",
     "OpenDocument spreadsheet template"},
    {"application/vnd.oasis.opendocument.presentation", "odp", "", "OpenDocument presentation"},
    {"application/vnd.oasis.opendocument.presentation-template", "otp", "",
     "OpenDocument presentation template"},
    {"application/vnd.oasis.opendocument.graphics-template", "otg", "", "OpenDocument drawing template"},
    {"application/vnd.oasis.opendocument.formula", "odf", "", "OpenDocument formula"},
    {"application/vnd.oasis.opendocument.chart", "odc", "", "OpenDocument chart"},
    {"application/vnd.oasis.opendocument.image", "odi", "", "OpenDocument image"},
    {"application/vnd.oasis.opendocument.text-master", "odm", "", "OpenDocument master document"},
    {"application/vnd.oasis.opendocument.text-web", "oth", "", "OpenDocument text for the web"},
    {"application/vnd.oasis.opendocument.base", "odb", "", "OpenDocument database"},
    {"application/vnd.oasis.opendocument.graphics", "odg", "", "OpenDocument drawing"},
    {"application/epub+zip", "epub", "", "EPUB book"},
};

/// By an item that every such archive has.
constexpr KnownFormat BY_ITEM[] = {
    {"AndroidManifest.xml", "apk", "application/vnd.android.package-archive", "Android app"},
    {"META-INF/MANIFEST.MF", "jar", "application/java-archive", "Java archive"},
};

/// By a stream of an OLE2 file.
constexpr KnownFormat BY_STREAM[] = {
    {"EncryptedPackage", "encrypted", "application/x-ole-storage",
     "Office document encrypted with a password"},
    {"WordDocument", "doc", "application/msword", "Word document of the older format"},
    {"Workbook", "xls", "application/vnd.ms-excel", "Excel workbook of the older format"},
    {"Book", "xls", "application/vnd.ms-excel", "Excel workbook of the older format"},
    {"PowerPoint Document", "ppt", "application/vnd.ms-powerpoint",
     "PowerPoint presentation of the older format"},
};

Format formatOf(const KnownFormat& known) {
    Format format;
    format.name = known.name;
    format.mediaType = known.mediaType;
    format.description = known.description;
    return format;
}

constexpr std::size_t START = 4096; ///< how many bytes are looked at

std::string readStart(const Archive& file) {
    std::array<unsigned char, START> bytes{};
    const std::size_t got = file.read(0, bytes.data(), bytes.size());
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got)};
}

/// @return the first bytes of the item; nothing if there is none that can be read
std::string readStartOf(const Archive& archive, string_view name) {
    std::array<unsigned char, START> bytes{};
    const auto item =
        std::find_if(archive.items().begin(), archive.items().end(), [name](const ArchiveItem& candidate) {
            return candidate.name == name && candidate.kind != ItemKind::Hidden;
        });
    if (item == archive.items().end())
        return {};
    try {
        const auto stream = archive.open(*item);
        const std::uint64_t got = stream->isDone() ? 0 : stream->read(bytes.data(), bytes.size());
        return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(got)};
    } catch (const Exception&) {
        return {};
    }
}

/// As the item `mimetype` says, or else the manifest of an OpenDocument file, whose first entry is the file itself.
std::string readMediaType(const Archive& archive) {
    std::string type = readStartOf(archive, "mimetype");
    type.erase(type.find_last_not_of(" \r\n") + 1);
    if (!type.empty())
        return type;
    const std::string manifest = readStartOf(archive, "META-INF/manifest.xml");
    const std::size_t begin = manifest.find("application/vnd.oasis.opendocument.");
    return begin == std::string::npos ? type
                                      : manifest.substr(begin, manifest.find_first_of("\"'", begin) - begin);
}

Format detectArchive(const Archive& archive) {
    if (archive.items().empty())
        return formatOf({"", "zip", "application/zip", "empty ZIP archive"});
    const std::string type = readMediaType(archive);
    for (const KnownFormat& known : BY_MIMETYPE)
        if (type == known.key) {
            Format format = formatOf(known);
            format.mediaType = type;
            return format;
        }
    for (const KnownFormat& known : BY_ITEM)
        for (const ArchiveItem& item : archive.items())
            if (item.name == known.key)
                return formatOf(known);
    return formatOf({"", "zip", "application/zip", "ZIP archive"});
}

Format detectOle2(const Archive& file) {
    const std::vector<std::string> names = readOle2Directory(file);
    for (const KnownFormat& known : BY_STREAM)
        if (std::find(names.begin(), names.end(), known.key) != names.end()) {
            Format format = formatOf(known);
            format.isEncrypted = known.key == "EncryptedPackage";
            return format;
        }
    return formatOf({"", "ole2", "application/x-ole-storage", "OLE2 file"});
}

bool isText(string_view start) {
    if (start.size() == START)
        start = start.substr(0, start.find_last_of(" \n\t") + 1); // not within a character
    return !start.empty() && physical::zip::isUTF8(start) &&
           std::none_of(start.begin(), start.end(), [](char c) {
               return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\r' && c != '\t' && c != '\f';
           });
}

Format detectText(const std::string& start) {
    std::string text = start;
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    const bool hasMark = text.compare(0, 3, "\xEF\xBB\xBF") == 0;
    text.erase(0, text.find_first_not_of(" \t\r\n", hasMark ? 3 : 0));
    for (const KnownFormat& known : BY_BEGINNING)
        if (text.compare(0, known.key.size(), known.key) == 0) {
            if (known.key == "<?xml" &&
                text.find("http://schemas.microsoft.com/office/2006/xmlpackage") != std::string::npos)
                return formatOf(
                    {"", "flat-opc", "application/xml", "package in one XML document (flat OPC)"});
            return formatOf(known);
        }
    if (isText(start))
        return formatOf({"", "text", "text/plain", "plain text"});
    return formatOf({"", "unknown", "", "file of an unknown format"});
}

} // namespace

Format detectForeignFormat(const Archive& archive) {
    if (archive.isZip())
        return detectArchive(archive);
    const std::string start = readStart(archive);
    if (start.empty())
        return formatOf({"", "empty", "", "empty file"});
    if (start.compare(0, 4, "PK\3\4") == 0)
        return formatOf({"", "cut-off", "", "ZIP archive that is cut off"});
    if (start.compare(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") == 0)
        return detectOle2(archive);
    if (start.substr(0, 1024).find("%PDF-") != std::string::npos)
        return formatOf({"", "pdf", "application/pdf", "PDF document"});
    return detectText(start);
}

void throwNoArchive(const Archive& archive) {
    throw Exception(archive.place() +
                    ": The file is no package: " + detectForeignFormat(archive).description);
}

} // namespace opc::inspection

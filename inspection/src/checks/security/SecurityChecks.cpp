#include "checks/security/SecurityChecks.hpp"

#include "checks/Checks.hpp"
#include "checks/names/NameChecks.hpp"
#include "external/RelationshipType.hpp"

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::string_view WITH_MACROS[] = {"docm", "dotm", "potm", "ppam", "ppsm", "pptm", "sldm",
                                            "vsdm", "vssm", "vstm", "xlam", "xlsb", "xlsm", "xltm"};
constexpr std::string_view WITHOUT_MACROS[] = {"docx", "dotx", "potx", "ppsx", "pptx", "sldx",
                                               "vsdx", "vssx", "vstx", "xlsx", "xltx"};

template <std::size_t N>
bool has(const std::string_view (&sorted)[N], std::string_view name) {
    return std::binary_search(std::begin(sorted), std::end(sorted), name);
}

} // namespace

std::string shown(std::string_view text) {
    constexpr std::size_t MOST = 200;
    if (text.size() <= MOST)
        return std::string(text);
    std::size_t end = MOST;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) // within a character
        --end;
    return std::string(text.substr(0, end)) + "…";
}

bool isOfficeFormat(std::string_view format) {
    return has(WITH_MACROS, format) || has(WITHOUT_MACROS, format);
}

bool allowsMacros(std::string_view format) {
    return has(WITH_MACROS, format);
}

std::string userIn(std::string_view path) {
    const std::string slashed = [path] {
        std::string text(path);
        std::replace(text.begin(), text.end(), '\\', '/');
        return text;
    }();
    const std::string folded = lowered(slashed);
    for (const std::string_view folder : {"/users/", "/home/", "/documents and settings/"}) {
        const std::size_t begin = folded.find(folder);
        const std::size_t name = begin + folder.size();
        const std::size_t end = begin == std::string::npos ? begin : folded.find('/', name);
        if (end != std::string::npos && end > name)
            return slashed.substr(name, end - name);
    }
    return {};
}

void checkHiddenItems(const Subject& subject, Findings& findings) {
    for (const ArchiveItem& item : subject.archive().items()) {
        const bool isTrash = startsWith(item.name, "[trash]/"); // the standard's own place for leftovers
        const bool isToldByName = findings.wants("M1.6") && !intendedName(item).empty();
        if (item.kind == ItemKind::Ignored && !isTrash && !isToldByName)
            findings.add("SEC-31", {{}, item.name}, "The item is no part of the package: " + item.reason);
    }
}

void checkFileName(const Subject& subject, Findings& findings, std::string_view fileName) {
    const std::string extension = lowered(fileName.substr(fileName.rfind('.') + 1));
    const std::string& format = subject.format();
    if (!isOfficeFormat(extension) || !isOfficeFormat(format) || extension == "xlsb" || format == "xlsb" ||
        allowsMacros(extension) == allowsMacros(format))
        return;
    findings.add("SEC-40", {},
                 "The file is named ." + extension + ", and its content is " + format +
                     (allowsMacros(format) ? ", which can have macros" : ", which can't have macros"));
}

void checkSecurity(const Subject& subject, Findings& findings, const InspectionOptions& options) {
    checkExternalTargets(subject, findings);
    checkKindsOfParts(subject, findings);
    checkHiddenItems(subject, findings);
    checkFileName(subject, findings, options.fileName);
}

} // namespace opc::inspection

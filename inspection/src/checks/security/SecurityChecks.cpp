#include "checks/security/SecurityChecks.hpp"

#include "checks/Checks.hpp"
#include "checks/OfficeFormats.hpp"
#include "checks/names/NameChecks.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"

#include <algorithm>

namespace opc::inspection {

std::string userIn(std::string_view path) {
    const std::string slashed = [path] {
        std::string text(path);
        std::replace(text.begin(), text.end(), '\\', '/');
        return text;
    }();
    const std::string folded = toLowerASCII(slashed);
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
        const bool isToldByName = findings.wants("M1.6") && (item.name.empty() || item.name.back() == '/' ||
                                                             !intendedName(item).empty());
        if (item.kind == ItemKind::Ignored && !isTrash && !isToldByName)
            findings.add("SEC-31", {{}, item.name}, "The item is no part of the package: " + item.reason);
    }
}

void checkFileName(const Subject& subject, Findings& findings, std::string_view fileName) {
    const std::size_t dot = fileName.rfind('.');
    if (dot == std::string_view::npos)
        return;
    const std::string extension = toLowerASCII(fileName.substr(dot + 1));
    const std::string& format = subject.format();
    if (!isOfficeFormat(extension) || !isOfficeFormat(format) || extension == "xlsb" || format == "xlsb" ||
        allowsMacros(extension) == allowsMacros(format))
        return;
    findings.add("SEC-40", allowsMacros(format) ? Severity::Error : Severity::Warning, {},
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

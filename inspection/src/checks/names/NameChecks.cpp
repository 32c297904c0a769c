#include "checks/names/NameChecks.hpp"

#include "checks/Checks.hpp"
#include "subject/Names.hpp"

#include <algorithm>

namespace opc::inspection {

std::string intendedName(const ArchiveItem& item) {
    std::string name = item.name;
    std::replace(name.begin(), name.end(), '\\', '/');
    const auto isIn = [&name](std::string_view folder) {
        return equalsCaseless(std::string_view(name).substr(0, folder.size()), folder);
    };
    if (!item.central || item.kind == ItemKind::ContentTypes || isIn("[trash]/") || isIn("__MACOSX/") ||
        (!name.empty() && name.back() == '/'))
        return {};
    if (item.hasPieceName)
        name.resize(name.rfind('/'));
    return equalsCaseless(name, "[Content_Types].xml") ? std::string() : name;
}

void checkNames(const Subject& subject, Findings& findings) {
    for (const ArchiveItem& item : subject.archive().items())
        if (item.central)
            checkSpelling(item, findings);
    checkCollisions(subject, findings);
    checkExtraction(subject, findings);
}

} // namespace opc::inspection

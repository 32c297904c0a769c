#include "checks/contenttypes/DefaultTypes.hpp"

#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

/// Extensions of what a system runs when a user opens it.
constexpr std::string_view EXECUTABLE[] = {"bat", "chm", "cmd", "com", "cpl", "exe", "hta", "jar",
                                           "js",  "jse", "lnk", "msi", "pif", "ps1", "reg", "scf",
                                           "scr", "sct", "url", "vb",  "vbe", "vbs", "wsf", "wsh"};

bool isXml(std::string_view type) {
    constexpr std::string_view SUFFIX = "+xml";
    return type == "application/xml" || type == "text/xml" ||
           (type.size() > SUFFIX.size() && type.substr(type.size() - SUFFIX.size()) == SUFFIX);
}

bool begins(std::string_view text, std::string_view begin) {
    return text.substr(0, begin.size()) == begin;
}

} // namespace

std::string oddityOfDefault(std::string_view extension, std::string_view contentType) {
    const std::string type = toLowerASCII(trimmed(contentType.substr(0, contentType.find(';'))));
    if (type.empty())
        return {};
    const std::string behind = " has the type " + type;
    if (std::find(std::begin(EXECUTABLE), std::end(EXECUTABLE), extension) != std::end(EXECUTABLE))
        return "The extension " + std::string(extension) + ", that of a program," + behind;
    const bool isOdd = extension == "xml"   ? !isXml(type)
                       : extension == "bin" ? isXml(type) || begins(type, "text/") || begins(type, "image/")
                                            : false;
    return isOdd ? "The extension " + std::string(extension) + behind : std::string();
}

} // namespace opc::inspection

#include "checks/OfficeFormats.hpp"

#include "text/CaselessText.hpp"

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

bool isOfficeFormat(std::string_view format) {
    return has(WITH_MACROS, format) || has(WITHOUT_MACROS, format);
}

bool allowsMacros(std::string_view format) {
    return has(WITH_MACROS, format);
}

bool isOfficeMediaType(std::string_view mediaType) {
    return mediaType.find("officedocument") != std::string_view::npos ||
           mediaType.find("application/vnd.ms-") == 0;
}

bool isMainType(std::string_view mediaType) {
    static constexpr std::string_view ENDS[] = {".main", ".main+xml", ".thememanager+xml",
                                                ".document.glossary+xml"};
    return std::any_of(std::begin(ENDS), std::end(ENDS),
                       [mediaType](std::string_view end) { return endsWith(mediaType, end); });
}

} // namespace opc::inspection

#include <opc/inspection/Reports.hpp>

namespace opc::inspection {

namespace {

/// By RFC 3986: everything but unreserved characters and slashes is percent-encoded.
std::string encoded(const std::string& path) {
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string uri;
    for (const char c : path) {
        const bool isKept = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                            c == '-' || c == '.' || c == '_' || c == '~' || c == '/';
        if (isKept) {
            uri += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        uri.append({'%', DIGITS[byte >> 4U], DIGITS[byte & 0xFU]});
    }
    return uri;
}

bool climbs(const std::filesystem::path& path) {
    return path.empty() || *path.begin() == "..";
}

} // namespace

std::string toSARIFURI(const std::string& file, const std::filesystem::path& root) {
    namespace fs = std::filesystem;
    const fs::path path(file);
    if (!root.empty()) {
        const fs::path relative = fs::absolute(path).lexically_normal().lexically_relative(
            (fs::absolute(root) / "").lexically_normal().parent_path());
        if (!climbs(relative))
            return encoded(relative.generic_string());
    }
    if (path.is_absolute() || !root.empty())
        return "file://" + encoded(fs::absolute(path).lexically_normal().generic_string());
    return encoded(path.lexically_normal().generic_string());
}

} // namespace opc::inspection

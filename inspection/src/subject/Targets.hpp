#pragma once

#include <opc/inspection/Export.hpp>

#include <string>
#include <string_view>

namespace opc::inspection {

/// A reference by RFC 3986, taken apart by its appendix B: whatever it is, it can be taken apart.
struct Reference {
    OPC_INSPECTION_EXPORT explicit Reference(std::string_view text);

    bool hasScheme = false, hasAuthority = false, hasQuery = false, hasFragment = false;
    std::string_view scheme, authority, path, query, fragment;
};

/// The part that an internal target leads to, by RFC 3986 section 5.2. Backslashes count as slashes, and white space
/// around the target doesn't count.
/// @param source  the name of the source part, or "/"
/// @return empty for a target with a scheme or an authority, or that leads to the package itself
OPC_INSPECTION_EXPORT std::string resolveTarget(std::string_view source, std::string_view target);

/// Whether a target has more `..` than its source has folders.
bool climbsAboveRoot(std::string_view source, std::string_view target);

/// A text without the white space around it.
OPC_INSPECTION_EXPORT std::string_view trimmed(std::string_view text);

} // namespace opc::inspection

#pragma once

#include <string_view>

/// @file
/// The namespaces of core properties parts, and the names in them that aren't those of a `CorePropertyField`.

namespace opc::model::vocabulary::core_properties {

struct Namespace {
    std::string_view prefix; ///< the usual one
    std::string_view uri;
};

/// The declarations of the root, in this order.
inline constexpr Namespace NAMESPACES[] = {
    {"cp", "http://schemas.openxmlformats.org/package/2006/metadata/core-properties"},
    {"dc", "http://purl.org/dc/elements/1.1/"},
    {"dcmitype", "http://purl.org/dc/dcmitype/"},
    {"dcterms", "http://purl.org/dc/terms/"},
    {"xsi", "http://www.w3.org/2001/XMLSchema-instance"},
};
inline constexpr std::string_view MARKUP_COMPATIBILITY =
    "http://schemas.openxmlformats.org/markup-compatibility/2006";

inline constexpr std::string_view ROOT = "cp:coreProperties";
inline constexpr std::string_view KEYWORD = "cp:value";            ///< each but the first one
inline constexpr std::string_view CONTENT_TYPE = "cp:contentType"; ///< valid, and ignored
inline constexpr std::string_view TYPE = "xsi:type";
inline constexpr std::string_view LANGUAGE = "xml:lang";

constexpr std::string_view prefixOf(std::string_view name) {
    return name.substr(0, name.find(':'));
}

/// @param prefix  a usual one, or one that XML itself has
constexpr std::string_view namespaceOf(std::string_view prefix) {
    for (const auto& [usual, uri] : NAMESPACES)
        if (usual == prefix)
            return uri;
    return prefix == "xml" ? "http://www.w3.org/XML/1998/namespace" : "http://www.w3.org/2000/xmlns/";
}

/// A name without its prefix.
constexpr std::string_view localPart(std::string_view name) {
    return name.substr(name.find(':') + 1);
}

/// The value of `TYPE`.
inline constexpr std::string_view W3CDTF = "dcterms:W3CDTF";

} // namespace opc::model::vocabulary::core_properties

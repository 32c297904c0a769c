#pragma once

#include <opc/model/XmlText.hpp>

/// @file
/// The namespace and the names in content types streams.

namespace opc::model::vocabulary::content_types {

inline constexpr XmlText NAMESPACE("http://schemas.openxmlformats.org/package/2006/content-types");

inline constexpr XmlText TYPES("Types"); ///< the root
inline constexpr XmlText DEFAULT("Default");
inline constexpr XmlText OVERRIDE("Override");

/// Attributes: the key of a `DEFAULT`, that of an `OVERRIDE`, and the content type of both.
/// @{
inline constexpr XmlText EXTENSION("Extension");
inline constexpr XmlText PART_NAME("PartName");
inline constexpr XmlText CONTENT_TYPE("ContentType");
/// @}

} // namespace opc::model::vocabulary::content_types

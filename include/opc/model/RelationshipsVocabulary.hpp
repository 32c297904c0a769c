#pragma once

#include <opc/model/XmlText.hpp>

/// @file
/// The namespace and the names in relationships parts.

namespace opc::model::vocabulary::relationships {

inline constexpr XmlText NAMESPACE("http://schemas.openxmlformats.org/package/2006/relationships");

inline constexpr XmlText RELATIONSHIPS("Relationships"); ///< the root
inline constexpr XmlText RELATIONSHIP("Relationship");

/// Attributes of a relationship.
/// @{
inline constexpr XmlText ID("Id");
inline constexpr XmlText TYPE("Type");
inline constexpr XmlText TARGET("Target");
inline constexpr XmlText TARGET_MODE("TargetMode");
/// @}

/// Target modes.
/// @{
inline constexpr XmlText INTERNAL("Internal"); ///< also where there is no `TARGET_MODE`
inline constexpr XmlText EXTERNAL("External");
/// @}

} // namespace opc::model::vocabulary::relationships

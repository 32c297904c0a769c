#pragma once

#include "subject/Subject.hpp"

#include <string>
#include <string_view>

namespace opc::editing::mending {

/// The content type that a part must have by what it contains: an image by its first bytes, XML by its root.
/// @param fileName  of the package: its extension tells a document from a template
/// @return empty if that isn't certain
std::string certainType(const inspection::Subject& subject, const inspection::PartView& part,
                        std::string_view fileName);

/// Whether an item of this name is what file managers and packing programs leave in archives.
bool isLeftover(std::string_view itemName);

} // namespace opc::editing::mending

#pragma once

#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Joins a base and a reference, either of which can be relative: RFC 3986 section 5.2 as Canonical XML 1.1 changes it
/// (section 2.4), where `..` segments stay if there is nothing that they could remove.
std::string joinBase(std::string_view base, std::string_view reference);

} // namespace opc::standard_signatures

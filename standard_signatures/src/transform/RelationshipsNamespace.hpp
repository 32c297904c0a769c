#pragma once

#include <string_view>

namespace opc::standard_signatures {

constexpr std::string_view RELATIONSHIPS_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/relationships";

} // namespace opc::standard_signatures

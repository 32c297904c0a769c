#pragma once

#include <string_view>

namespace opc::standard_signatures {

/// Types of the relationships and content types of the parts that signatures consist of (ECMA-376 Part 2, digital
/// signatures).
/// @{
constexpr std::string_view ORIGIN_RELATIONSHIP =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin";
constexpr std::string_view SIGNATURE_RELATIONSHIP =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/signature";
constexpr std::string_view CERTIFICATE_RELATIONSHIP =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/certificate";

constexpr std::string_view ORIGIN_CONTENT_TYPE =
    "application/vnd.openxmlformats-package.digital-signature-origin";
constexpr std::string_view SIGNATURE_CONTENT_TYPE =
    "application/vnd.openxmlformats-package.digital-signature-xmlsignature+xml";
constexpr std::string_view CERTIFICATE_CONTENT_TYPE =
    "application/vnd.openxmlformats-package.digital-signature-certificate";
/// @}

} // namespace opc::standard_signatures

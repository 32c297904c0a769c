#pragma once

#include "crypto/Methods.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace opc::standard_signatures {

/// Texts of a new signature document, whose default namespace is that of XML Signature.

constexpr std::string_view CANONICAL_XML = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315";

std::string escapedAttribute(std::string_view value);
std::string escapedText(std::string_view text);

std::string base64Of(const std::vector<unsigned char>& bytes);

/// The elements DigestMethod and DigestValue.
std::string composeDigest(const DigestMethod& method, const std::vector<unsigned char>& digest);

} // namespace opc::standard_signatures

#include "signing/SignatureText.hpp"

#include "canonical/CanonicalXml.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

namespace opc::standard_signatures {

std::string escapedAttribute(std::string_view value) {
    std::string escaped;
    appendAttributeValue(escaped, value);
    return escaped;
}

std::string escapedText(std::string_view text) {
    std::string escaped;
    for (const char c : text)
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '\r':
            escaped += "&#xD;";
            break;
        default:
            escaped += c;
        }
    return escaped;
}

std::string base64Of(const std::vector<unsigned char>& bytes) {
    return toUDEString(bedrock::crypto::utils::base64Encode(bytes));
}

std::string composeDigest(const DigestMethod& method, const std::vector<unsigned char>& digest) {
    return "<DigestMethod Algorithm=\"" + std::string(method.uri) + "\"/><DigestValue>" + base64Of(digest) +
           "</DigestValue>";
}

} // namespace opc::standard_signatures

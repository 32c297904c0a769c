#include "signing/SignatureText.hpp"

#include "canonical/CanonicalText.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Text.hpp>

namespace opc::standard_signatures {

std::string escapedAttribute(std::string_view value) {
    CanonicalText escaped(value.size());
    escaped.putValue(value);
    return escaped.take();
}

std::string escapedText(std::string_view text) {
    CanonicalText escaped(text.size());
    escaped.putText(text);
    return escaped.take();
}

std::string base64Of(const std::vector<unsigned char>& bytes) {
    return toUDEString(bedrock::crypto::utils::base64Encode(bytes));
}

std::string composeDigest(const DigestMethod& method, const std::vector<unsigned char>& digest) {
    return "<DigestMethod Algorithm=\"" + std::string(method.uri) + "\"/><DigestValue>" + base64Of(digest) +
           "</DigestValue>";
}

} // namespace opc::standard_signatures

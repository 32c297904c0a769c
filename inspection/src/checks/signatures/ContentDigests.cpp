#include "checks/signatures/ContentDigests.hpp"

#include "content/ContentBuffer.hpp"

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Exception.hpp>
#include <opc/core/Text.hpp>

#include <algorithm>
#include <istream>
#include <iterator>

namespace opc::inspection {

namespace {

using bedrock::crypto::DigestAlgorithm;

struct Method {
    const char* uri;
    DigestAlgorithm algorithm;
};

constexpr Method METHODS[] = {
    {"http://www.w3.org/2000/09/xmldsig#sha1", DigestAlgorithm::SHA1},
    {"http://www.w3.org/2001/04/xmlenc#sha256", DigestAlgorithm::SHA256},
    {"http://www.w3.org/2001/04/xmldsig-more#sha384", DigestAlgorithm::SHA384},
    {"http://www.w3.org/2001/04/xmlenc#sha512", DigestAlgorithm::SHA512},
};

} // namespace

bool ContentDigests::isOf(const PartView& part, const SignatureReference& reference) {
    const auto* const method =
        std::find_if(std::begin(METHODS), std::end(METHODS),
                     [&reference](const Method& one) { return reference.digestMethod == one.uri; });
    if (method == std::end(METHODS))
        return true;
    const Bytes& digest = digestOf(part, static_cast<int>(method->algorithm));
    try {
        return digest.empty() ||
               digest == bedrock::crypto::utils::base64Decode(opc::toString(reference.digestValue, true));
    } catch (const bedrock::crypto::utils::Exception&) {
        return false;
    }
}

const ContentDigests::Bytes& ContentDigests::digestOf(const PartView& part, int algorithm) {
    const auto [place, isNew] = known.try_emplace({&part, algorithm});
    if (isNew)
        try {
            const std::unique_ptr<InputStream> content = subject.open(part);
            ContentBuffer buffer(*content);
            std::istream stream(&buffer);
            place->second = bedrock::crypto::cryptopp::CryptoProvider()
                                .createDigestEngine(static_cast<DigestAlgorithm>(algorithm))
                                ->computeDigest(stream);
        } catch (const Exception&) {
            place->second.clear();
        }
    return place->second;
}

} // namespace opc::inspection

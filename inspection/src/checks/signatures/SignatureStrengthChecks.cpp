#include "checks/signatures/SignatureChecks.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/certificates/X509Certificate.hpp>
#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>
#include <bedrock/crypto/utils/Base64.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>

namespace opc::inspection {

namespace {

using bedrock::certificates::X509Certificate;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t SMALLEST_KEY = 2048;

std::string lastSegment(const std::string& uri) {
    return uri.substr(uri.find_last_of("/#") + 1);
}

/// SHA-1, MD5, RIPEMD, DSA and keyed digests, by the last segments of their identifiers.
bool isWeak(const std::string& algorithm) {
    const std::string name = lastSegment(algorithm);
    constexpr std::string_view NAMES[] = {"sha1", "md5", "ripemd160", "dsa-sha1", "dsa-sha256"};
    constexpr std::string_view BEGINNINGS[] = {"rsa-sha1", "rsa-md5", "rsa-ripemd160", "ecdsa-sha1", "hmac-"};
    return std::find(std::begin(NAMES), std::end(NAMES), name) != std::end(NAMES) ||
           std::any_of(std::begin(BEGINNINGS), std::end(BEGINNINGS),
                       [&name](std::string_view weak) { return name.compare(0, weak.size(), weak) == 0; });
}

Bytes decode(const std::string& base64) {
    return bedrock::crypto::utils::base64Decode(opc::toString(base64, true));
}

Bytes withoutLeadingZeros(const Bytes& number) {
    return {std::find_if(number.begin(), number.end(), [](unsigned char byte) { return byte != 0; }),
            number.end()};
}

class StrengthChecks {
public:
    StrengthChecks(const FoundSignature& signature, Findings& findings)
        : document(signature.document), part(*signature.part), findings(findings) {}

    void run() {
        if (isWeak(document.signatureMethod))
            add("SEC-74", document.methodPlace,
                "The signature is made by " + lastSegment(document.signatureMethod));
        checkDigests();
        try {
            checkKeys();
        } catch (const bedrock::certificates::X509CertificateException& e) {
            add("SEC-74", {}, std::string("A certificate of the signature can't be read: ") + e.what());
        } catch (const bedrock::crypto::utils::Exception& e) {
            add("SEC-74", {}, std::string("A key of the signature can't be read: ") + e.what());
        }
    }

private:
    void add(std::string_view rule, const SignaturePlace& at, std::string message) {
        findings.add(rule, placeIn(part, at), std::move(message));
    }

    void checkDigests() {
        std::set<std::string> told;
        for (const auto* const references : {&document.signedReferences, &document.manifest})
            for (const SignatureReference& reference : *references)
                if (isWeak(reference.digestMethod) && told.insert(reference.digestMethod).second)
                    add("SEC-74", reference.place,
                        "The signature has digests by " + lastSegment(reference.digestMethod));
    }

    /// The key value comes first; it says nothing about whose it is. Of several certificates one must be its own.
    void checkKeys() {
        const Bytes key = withoutLeadingZeros(decode(document.modulus));
        bool isCertified = key.empty() || document.certificates.empty();
        bool isSigned = document.certificates.empty();
        Bytes first;
        for (const std::string& text : document.certificates) {
            const Bytes certificate = decode(text);
            const X509Certificate read(certificate);
            const Bytes modulus = read.getModulus();
            if (document.certificates.size() == 1 || modulus == key)
                checkTime(read);
            isCertified = isCertified || modulus == key;
            isSigned = isSigned || isNamed(certificate);
            if (first.empty())
                first = modulus;
        }
        if (!isSigned)
            add("M6.21", {}, "The signature was made with another certificate than the one in it");
        if (!isCertified)
            add("M6.21", {}, "The key in the signature isn't that of its certificate");
        const std::size_t bits = 8 * (key.empty() ? first : key).size();
        if (bits != 0 && bits < SMALLEST_KEY)
            add("SEC-74", {}, "The key has only " + std::to_string(bits) + " bits");
    }

    /// Both are claims: a time stamp isn't asked for, and nobody vouches for the certificate here.
    void checkTime(const X509Certificate& certificate) {
        const X509Certificate::Validity validity = certificate.getValidity();
        for (const SignatureProperty& property : document.properties) {
            const auto time = convertStringToTime(opc::toString(property.timeValue, true));
            if (time.is_not_a_date_time())
                continue;
            const bool isEarly = time < convertStringToTime(opc::toString(validity.from, true));
            if (isEarly || time > convertStringToTime(opc::toString(validity.until, true)))
                findings.add("SEC-74", Severity::Info, placeIn(part, property.place),
                             "The signature claims the time " + property.timeValue +
                                 (isEarly ? ", and its certificate was valid from " + validity.from
                                          : ", and its certificate was valid until " + validity.until));
        }
    }

    /// Whether the signed properties name this certificate, if they name one by a digest that we know.
    bool isNamed(const Bytes& certificate) const {
        using bedrock::crypto::DigestAlgorithm;
        const std::string method = lastSegment(document.certificateDigestMethod);
        for (const auto& [name, algorithm] : {std::pair("sha1", DigestAlgorithm::SHA1),
                                              {"sha256", DigestAlgorithm::SHA256},
                                              {"sha384", DigestAlgorithm::SHA384},
                                              {"sha512", DigestAlgorithm::SHA512}})
            if (method == name)
                return bedrock::crypto::cryptopp::CryptoProvider()
                           .createDigestEngine(algorithm)
                           ->computeDigest(certificate) == decode(document.certificateDigest);
        return true;
    }

    const SignatureDocument& document;
    const PartView& part;
    Findings& findings;
};

} // namespace

void checkSignatureStrength(const FoundSignature& signature, Findings& findings) {
    if (findings.wants("SEC-74") || findings.wants("M6.21"))
        StrengthChecks(signature, findings).run();
}

} // namespace opc::inspection

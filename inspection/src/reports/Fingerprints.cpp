#include <opc/inspection/Reports.hpp>

#include <bedrock/crypto/CryptoEngine.hpp>
#include <bedrock/crypto/DigestEngine.hpp>
#include <bedrock/crypto/cryptopp/CryptoProvider.hpp>

#include <unordered_map>

namespace opc::inspection {

namespace {

std::string toHex(const std::vector<unsigned char>& bytes) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += DIGITS[byte >> 4U];
        text += DIGITS[byte & 0xFU];
    }
    return text;
}

/// The texts are kept apart by their lengths, as they may hold any character.
std::string identityOf(const Finding& finding) {
    std::string identity;
    for (const std::string_view text :
         {finding.rule->id, std::string_view(finding.place.part), std::string_view(finding.place.item),
          std::string_view(finding.place.relationship), std::string_view(finding.place.target)})
        identity.append(std::to_string(text.size())).append(":").append(text);
    return identity;
}

} // namespace

std::vector<std::string> fingerprints(const Report& report) {
    const auto digest = bedrock::crypto::cryptopp::CryptoProvider().createDigestEngine(
        bedrock::crypto::DigestAlgorithm::SHA256);
    std::unordered_map<std::string, std::size_t> seen;
    std::vector<std::string> all;
    for (const Finding& finding : report.findings) {
        std::string identity = identityOf(finding);
        identity += std::to_string(++seen[identity]);
        all.push_back(toHex(digest->computeDigest({identity.begin(), identity.end()})));
    }
    return all;
}

void Baseline::add(const std::string& file, const std::string& fingerprint) {
    findings.emplace(file, fingerprint);
}

std::vector<bool> Baseline::findKnown(const std::string& file, const Report& report) const {
    std::vector<bool> known;
    for (const std::string& fingerprint : fingerprints(report))
        known.push_back(findings.count({file, fingerprint}) != 0);
    return known;
}

} // namespace opc::inspection

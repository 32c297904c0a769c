#include <bedrock/codesigning_verifier/FingerprintStore.hpp>

#include <stdexcept>

namespace bedrock::codesigning_verifier {

namespace {

constexpr std::size_t DigitCount = 64;

/// The digits in lower case; empty if the text isn't a fingerprint.
std::string digitsOf(const std::string& fingerprint) {
    std::string digits;
    for (const char c : fingerprint) {
        if (c == ':')
            continue;
        const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
        if ((lower < '0' || lower > '9') && (lower < 'a' || lower > 'f'))
            return {};
        digits += lower;
    }
    return digits.size() == DigitCount ? digits : std::string();
}

} // namespace

void FingerprintStore::addFingerprint(const std::string& fingerprint) {
    std::string digits = digitsOf(fingerprint);
    if (digits.empty())
        throw std::invalid_argument("The text is no SHA-256 fingerprint: " + fingerprint);
    fingerprints.insert(std::move(digits));
}

bool FingerprintStore::hasFingerprint(const std::string& fingerprint) const {
    return fingerprints.count(digitsOf(fingerprint)) > 0;
}

} // namespace bedrock::codesigning_verifier

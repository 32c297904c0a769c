#include <opc/inspection/Reports.hpp>

#include "digests/Sha256.hpp"
#include "hash/TextHash.hpp"

#include <unordered_map>

namespace opc::inspection {

namespace {

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
    Sha256 digest;
    std::unordered_map<std::string, std::size_t, TextHash> seen;
    std::vector<std::string> all;
    for (const Finding& finding : report.findings) {
        std::string identity = identityOf(finding);
        identity += std::to_string(++seen[identity]);
        all.push_back(digest.of(identity));
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

#include "checks/signatures/SignatureChecks.hpp"
#include "checks/signatures/SignedContent.hpp"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace opc::inspection {

namespace {

/// Office programs leave these relationships of the package, and the parts behind them, unsigned.
bool isLeftOut(const RelationshipView& relationship) {
    if (relationship.isExternal)
        return false;
    if (leadsToOrigin(relationship))
        return true;
    constexpr std::string_view SEGMENTS[] = {"core-properties",   "extended-properties", "extendedProperties",
                                             "custom-properties", "customProperties",    "thumbnail"};
    return std::find(std::begin(SEGMENTS), std::end(SEGMENTS), relationship.lastSegment()) !=
           std::end(SEGMENTS);
}

class CoverageChecks {
public:
    CoverageChecks(const Subject& subject, const std::vector<FoundSignature>& signatures, Findings& findings)
        : subject(subject), content(subject, signatures), findings(findings) {
        for (const FoundSignature& signature : signatures)
            ownParts.insert(signature.part);
    }

    void run() {
        findOwnParts();
        for (const PartView& part : subject.parts())
            if (!part.isRelationships() && !content.covers(part) && ownParts.count(&part) == 0 &&
                !isOfSignatures(part))
                findings.add("SEC-71", placeIn(part), "No signature names the part");
        for (const RelationshipsView& source : subject.relationships())
            checkRelationships(source);
    }

private:
    /// Whether it is one of those that other rules tell of.
    static bool isOfSignatures(const PartView& part) {
        const std::string type = part.mediaType();
        return isOriginType(type) || isSignatureType(type) || isCertificateType(type);
    }

    void findOwnParts() {
        for (const RelationshipsView& source : subject.relationships())
            for (const RelationshipView& relationship : source.entries)
                if (relationship.part != nullptr &&
                    (leadsToCertificate(relationship) || (source.source == "/" && isLeftOut(relationship))))
                    ownParts.insert(relationship.part);
    }

    void checkRelationships(const RelationshipsView& source) {
        if (source.sourcePart != nullptr && ownParts.count(source.sourcePart) != 0)
            return;
        for (const RelationshipView& relationship : source.entries) {
            if (content.covers(source, relationship) || (source.source == "/" && isLeftOut(relationship)))
                continue;
            findings.add("SEC-71", placeIn(source, relationship), "No signature names the relationship");
        }
    }

    const Subject& subject;
    const SignedContent content;
    Findings& findings;
    std::unordered_set<const PartView*> ownParts; ///< of the signatures, and what they leave out
};

} // namespace

void checkCoverage(const Subject& subject, const std::vector<FoundSignature>& signatures,
                   Findings& findings) {
    const bool anythingIsSigned =
        std::any_of(signatures.begin(), signatures.end(),
                    [](const FoundSignature& signature) { return !signature.document.manifest.empty(); });
    if (anythingIsSigned && findings.wants("SEC-71"))
        CoverageChecks(subject, signatures, findings).run();
}

} // namespace opc::inspection

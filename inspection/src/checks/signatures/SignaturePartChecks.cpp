#include "checks/DocumentChecks.hpp"
#include "checks/signatures/SignatureChecks.hpp"

#include <set>

namespace opc::inspection {

namespace {

class PartChecks {
public:
    PartChecks(const Subject& subject, const std::vector<FoundSignature>& signatures, Findings& findings)
        : subject(subject), signatures(signatures), findings(findings) {}

    void run() {
        checkOrigins();
        for (const FoundSignature& signature : signatures)
            checkSignature(signature);
        if (subject.relationships().empty())
            return;
        for (const RelationshipsView& source : subject.relationships())
            checkRelationships(source);
        checkUnreached();
    }

private:
    void checkOrigins() {
        const RelationshipsView* const package = subject.relationshipsOf("/");
        if (package == nullptr)
            return;
        for (const RelationshipView& relationship : package->entries)
            if (leadsToOrigin(relationship))
                checkOrigin(*package, relationship);
    }

    void checkOrigin(const RelationshipsView& package, const RelationshipView& relationship) {
        const Place place = placeIn(package, relationship);
        hasLostOrigin = hasLostOrigin || relationship.part == nullptr;
        if (relationship.isExternal)
            return findings.add("M6.1", place,
                                "The relationship to the signature origin leads out of the package");
        if (relationship.part == nullptr)
            return findings.add("SEC-72", place,
                                "The signature origin is missing, and all signatures with it");
        if (!origins.insert(relationship.part).second)
            return;
        if (origins.size() == 2)
            findings.add("M6.1", place, "The package has a second signature origin");
        if (!isOriginType(relationship.part->mediaType()) && !relationship.part->contentType.empty())
            findings.add("M6.1", Severity::Warning, placeIn(*relationship.part),
                         "The signature origin has the content type \"" + relationship.part->contentType +
                             "\"");
        if (relationship.part->size != 0)
            findings.add("S6.1", placeIn(*relationship.part), "The signature origin isn't empty");
        const RelationshipsView* const origin = subject.relationshipsOf(relationship.part->name);
        bool leads = false;
        if (origin != nullptr)
            for (const RelationshipView& entry : origin->entries)
                leads = leads || leadsToSignature(entry);
        if (!leads)
            findings.add("SEC-72", Severity::Info, placeIn(*relationship.part),
                         "The package has a signature origin, but no signature");
    }

    void checkSignature(const FoundSignature& signature) {
        const PartView& part = *signature.part;
        reached.insert(&part);
        const bool hasType = isSignatureType(part.mediaType()) || part.contentType.empty();
        if (!hasType)
            findings.add("M6.3", placeIn(part),
                         "The signature has the content type \"" + part.contentType + "\"");
        if (hasType || signature.document.isSignature)
            checkContent(signature);
        else
            hasLostSignature = true;
    }

    void checkContent(const FoundSignature& signature) {
        const PartView& part = *signature.part;
        const DocumentState& state = signature.document.state;
        signers.insert(&part);
        const bool isReason = state.hasDocumentType || isWrongEncoding(state) || state.isBeyondLimit;
        if (state.failure.empty() ? signature.document.isSignature : isReason)
            checkDocument(state, placeIn(part), "http://www.w3.org/2000/09/xmldsig#", "Signature", findings);
        if (!state.failure.empty() && !isReason)
            findings.add("SEC-72", placeAt(placeIn(part), state.failureLine, state.failureColumn),
                         "The signature can't be read: " + state.failure);
        else if (state.failure.empty() && !signature.document.isSignature)
            findings.add("SEC-72", placeIn(part), "The document isn't an XML signature");
        else if (state.failure.empty())
            tellForm(signature);
    }

    void tellForm(const FoundSignature& signature) {
        findings.add("SEC-73", placeIn(*signature.part),
                     signature.form == SignatureForm::Own
                         ? "The signature is in a form that only opcmodel reads"
                         : "The signature is in the standard's form, whose value isn't checked, nor are "
                           "digests behind "
                           "transforms");
    }

    void checkRelationships(const RelationshipsView& source) {
        const bool isOrigin = source.sourcePart != nullptr && origins.count(source.sourcePart) != 0;
        const bool isSignature = source.sourcePart != nullptr && signers.count(source.sourcePart) != 0;
        for (const RelationshipView& relationship : source.entries) {
            if (leadsToOrigin(relationship) && source.source != "/")
                findings.add("P1-3", placeIn(source, relationship),
                             "A part has a relationship to a signature origin");
            const bool isLost = isOrigin && relationship.isExternal && leadsToSignature(relationship);
            hasLostSignature = hasLostSignature || isLost;
            if (isLost)
                findings.add("M6.3", placeIn(source, relationship),
                             "The relationship to a signature leads out of the package");
            if (leadsToCertificate(relationship))
                checkCertificate(source, relationship);
            else if (isSignature)
                findings.add("P1-3", placeIn(source, relationship),
                             "A signature part has a relationship that isn't to a certificate");
        }
    }

    void checkCertificate(const RelationshipsView& source, const RelationshipView& relationship) {
        if (relationship.isExternal)
            findings.add("M6.4", placeIn(source, relationship),
                         "The relationship to a certificate leads out of the package");
        if (relationship.part != nullptr)
            reached.insert(relationship.part);
    }

    void checkUnreached() {
        for (const PartView& part : subject.parts()) {
            const std::string type = part.mediaType();
            if (reached.count(&part) != 0)
                continue;
            if (isSignatureType(type) && !hasLostOrigin && !hasLostSignature)
                findings.add("M6.3", placeIn(part),
                             "No relationship of a signature origin leads to the signature");
            else if (isCertificateType(type))
                findings.add("M6.4", placeIn(part), "No signature has a relationship to the certificate");
        }
    }

    const Subject& subject;
    const std::vector<FoundSignature>& signatures;
    Findings& findings;
    std::set<const PartView*> origins;
    std::set<const PartView*> reached; ///< signatures and certificates
    std::set<const PartView*>
        signers;                   ///< the signatures among them, without what only a relationship calls one
    bool hasLostSignature = false; ///< a relationship leads out of the package, or to something else
    bool hasLostOrigin = false;    ///< a relationship leads to none: what hangs on it is lost too
};

} // namespace

void checkSignatureParts(const Subject& subject, const std::vector<FoundSignature>& signatures,
                         Findings& findings) {
    PartChecks(subject, signatures, findings).run();
}

} // namespace opc::inspection

#include "checks/signatures/ContentDigests.hpp"
#include "checks/signatures/SignatureChecks.hpp"

#include <unordered_set>

namespace opc::inspection {

namespace {

bool isXML(const PartView& part) {
    const std::string type = part.mediaType();
    const std::string suffix = "+xml";
    return type == "application/xml" || type == "text/xml" ||
           (type.size() > suffix.size() &&
            type.compare(type.size() - suffix.size(), suffix.size(), suffix) == 0);
}

class ManifestChecks {
public:
    ManifestChecks(const Subject& subject, RelationshipIds& ids, const FoundSignature& signature,
                   Findings& findings)
        : subject(subject), ids(ids), signature(signature), findings(findings) {}

    void run() {
        for (const SignatureReference& reference : signature.document.manifest)
            check(reference);
        if (rawXML != 0 && signature.form == SignatureForm::Standard)
            findings.add("S6.3", placeIn(*signature.part),
                         std::to_string(rawXML) +
                             " XML parts are signed by their bytes, without canonicalization");
    }

private:
    void add(std::string_view rule, const SignatureReference& reference, std::string message) {
        findings.add(rule, placeIn(*signature.part, reference.place), std::move(message));
    }

    void check(const SignatureReference& reference) {
        const std::string name = partNameOf(reference);
        if (reference.uri.find('#') != std::string::npos)
            return add("M6.18", reference, "The reference \"" + reference.uri + "\" has a fragment");
        const PartView* const part = name.empty() || name[0] != '/' ? nullptr : subject.findPart(name);
        if (part == nullptr)
            return add("M6.9", reference, "The signed part \"" + name + "\" isn't in the package");
        checkContentType(reference, *part);
        if (part->isRelationships())
            checkRelationships(reference, *part);
        else if (isXML(*part) && reference.transforms.empty())
            ++rawXML;
        if (reference.transforms.empty() && signature.form == SignatureForm::Standard &&
            findings.wants("M6.30") && !digests.isOf(*part, reference))
            add("M6.30", reference, "\"" + part->name + "\" has changed since it was signed");
    }

    void checkContentType(const SignatureReference& reference, const PartView& part) {
        const auto stated = statedContentType(reference);
        if (!stated || stated->empty())
            add("M6.10", reference, "The reference to \"" + part.name + "\" doesn't state the content type");
        else if (stated->find('/') == std::string::npos || stated->find('&') != std::string::npos)
            add("M6.10", reference,
                "The reference to \"" + part.name + "\" states \"" + *stated +
                    "\", which is no content type");
        else if (*stated != part.contentType && !part.contentType.empty())
            findings.add("M6.11", placeIn(part),
                         "The part was signed as \"" + *stated + "\", and now has the content type \"" +
                             part.contentType + "\"");
    }

    void checkRelationships(const SignatureReference& reference, const PartView& part) {
        std::size_t count = 0;
        for (const SignatureTransform& transform : reference.transforms) {
            count += transform.isOfRelationships() ? 1 : 0;
            if (ids.canBeRead(part))
                checkSources(reference, part, transform);
        }
        if (count == 0 && signature.form == SignatureForm::Standard)
            add("M6.25", reference, "All relationships in \"" + part.name + "\" are signed, by their bytes");
        if (count > 1 || (count == 1 && !transformed.insert(&part).second))
            add("M6.35", reference, "\"" + part.name + "\" has more than one relationship transform");
    }

    void checkSources(const SignatureReference& reference, const PartView& part,
                      const SignatureTransform& transform) {
        if (transform.sourceIds.empty())
            return;
        const auto& known = ids.of(part);
        for (const std::string& id : transform.sourceIds)
            if (known.count(id) == 0)
                add("M6.27", reference,
                    "The signed relationship \"" + id + "\" isn't in \"" + part.name + "\"");
    }

    const Subject& subject;
    RelationshipIds& ids;
    const FoundSignature& signature;
    Findings& findings;
    ContentDigests digests{subject};
    std::size_t rawXML = 0;
    std::unordered_set<const PartView*> transformed;
};

} // namespace

void checkManifest(const Subject& subject, RelationshipIds& ids, const FoundSignature& signature,
                   Findings& findings) {
    ManifestChecks(subject, ids, signature, findings).run();
}

} // namespace opc::inspection

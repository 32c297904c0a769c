#include "signatures/verification/VerdictTexts.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>
#include <iterator>

namespace opc::model::verdict {

namespace {

constexpr std::size_t LISTED = 5;

struct Meaning {
    const char* words;
    int code;
    bool isAboutSigner;
};

constexpr Meaning MEANINGS[] = {
    {"holds", 0, false},
    {"signature value is wrong", 1, false},
    {"signature value is wrong", 2, false},
    {"certificate has expired", 3, true},
    {"certificate isn't valid yet", 4, true},
    {"signer isn't trusted", 5, true},
    {"signer isn't trusted", 6, true},
    {"certificate isn't for signing", 7, true},
    {"certificate chain is wrong", 8, true},
    {"signer is unknown: no certificate", 9, true},
    {"certificate is revoked", 10, true},
    {"algorithm is too weak", 11, true},
    {"certificate is forged", 16, true},
    {"no revocation list covers the certificate", 19, true},
    {"content changed", 101, false},
};

const Meaning* find(int code) {
    const auto* const found = std::find_if(std::begin(MEANINGS), std::end(MEANINGS),
                                           [code](const Meaning& meaning) { return meaning.code == code; });
    return found == std::end(MEANINGS) ? nullptr : found;
}

} // namespace

std::string inWords(int code) {
    const Meaning* const meaning = find(code);
    return meaning == nullptr ? "doesn't hold" : meaning->words;
}

bool isAboutSigner(int code) {
    const Meaning* const meaning = find(code);
    return meaning != nullptr && meaning->isAboutSigner;
}

std::string describe(const ChangedContentType& changed) {
    return toUDEString(changed.part.toString()) + " has the content type " + toUDEString(changed.now) +
           (changed.whenSigned.empty() ? ", and none was signed"
                                       : " and was signed as " + toUDEString(changed.whenSigned));
}

std::string describe(const interfaces::IgnoredItem& item) {
    return toUDEString(item.name) + " (" + item.reason + ")";
}

std::string describe(const Relationship& relationship) {
    return "relationship " + toUDEString(relationship.getID()) + " of " +
           toUDEString(relationship.getSourceURI().toString());
}

std::string describe(const Exception& failure) {
    return *failure.details() == '\0' ? failure.what()
                                      : std::string(failure.what()) + "; " + failure.details();
}

void Places::add(const std::string& place) {
    places.insert(place);
}

void Places::add(const PartName& name) {
    add(toUDEString(name.toString()));
}

void Places::add(const Relationship& relationship) {
    add(describe(relationship));
}

std::string Places::toText() const {
    std::string text;
    std::size_t listed = 0;
    for (auto place = places.begin(); place != places.end() && listed < LISTED; ++place, ++listed)
        text += (text.empty() ? "" : ", ") + *place;
    return listed == places.size() ? text : text + " and " + std::to_string(places.size() - listed) + " more";
}

std::string describeDifferences(const std::vector<const Reference*>& references) {
    Places parts;
    Places sources;
    Places objects;
    for (const Reference* reference : references) {
        if (isSameDocumentReference(reference->referenceURI))
            objects.add(toUDEString(reference->referenceURI.getFragment()));
        else if (!reference->selectsRelationships())
            parts.add(toUDEString(reference->referenceURI.getPath()));
        else
            sources.add(toUDEString(reference->referenceURI.getPath()));
    }
    std::string text;
    const auto append = [&text](const std::string& what, const Places& places) {
        if (!places.empty())
            text += (text.empty() ? "" : "; ") + what + places.toText();
    };
    append("this content isn't as it was signed: ", parts);
    append("a signed relationship isn't as it was, or one of a signed type has come, in: ", sources);
    append("these objects of the signature aren't as they were signed: ", objects);
    return text;
}

} // namespace opc::model::verdict

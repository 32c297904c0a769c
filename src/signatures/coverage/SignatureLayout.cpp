#include "signatures/coverage/SignatureLayout.hpp"

#include "signatures/document/SignatureVocabulary.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

namespace opc::model {

using namespace vocabulary::signatures;

const std::u16string COUNTERSIGNATURE_ID = u"countersig";

URI getOriginPartURI() {
    return URI(PARTS_FOLDER.text() + u"origin.sigs");
}

ContentType getOriginPartContentType() {
    return ContentType(u"application/vnd.openxmlformats-package.digital-signature-origin");
}

std::u16string getOriginRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/origin";
}

ContentType getSignaturePartContentType() {
    return ContentType(u"application/vnd.openxmlformats-package.digital-signaturexmlsignature+xml");
}

std::u16string getSignatureRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/digitalsignature/signature";
}

std::u16string getForeignOriginRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin";
}

std::u16string getForeignSignatureRelationshipType() {
    return u"http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/signature";
}

std::u16string getSignatureName(const std::u16string& signatureID) {
    return NAME_PREFIX.text() + signatureID;
}

PartName getSignaturePartName(const std::u16string& name) {
    if (!name.empty() && name.front() == URI::getSlash())
        throw SignatureNotFound(
            "Incorrect signature name provided. It should not start with backslash like a part name.");
    return PartName(PARTS_FOLDER.text() + name + PART_EXTENSION.text());
}

std::u16string getSignatureRelationshipID(const std::u16string& signatureID) {
    return u"DSRel" + signatureID;
}

std::optional<URI> findOriginURI(const Package& package) {
    const auto relationships = package.getRelationshipsByType(getOriginRelationshipType());
    if (relationships.empty())
        return std::nullopt;
    return relationships.begin()->getTargetURI();
}

bool leadsToCountersignature(const Relationship& relationship, const URI& originURI) {
    static const std::u16string id = getSignatureRelationshipID(COUNTERSIGNATURE_ID);
    return relationship.getID() == id && relationship.getType() == getSignatureRelationshipType() &&
           relationship.getTargetMode() == TargetMode::Internal && relationship.getSourceURI() == originURI &&
           relationship.getTargetURI() ==
               getSignaturePartName(getSignatureName(COUNTERSIGNATURE_ID)).getURI();
}

} // namespace opc::model

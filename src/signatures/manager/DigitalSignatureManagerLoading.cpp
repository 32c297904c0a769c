#include <opc/model/DigitalSignatureManager.hpp>

#include "package/StreamRewinder.hpp"
#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/document/DigitalSignatureSerializer.hpp"
#include "signatures/document/SignatureCost.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/verification/VerdictTexts.hpp"
#include "xml/DocumentBudget.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>

/// @file
/// How the manager comes to know the signatures that stand in the package, and finds them.

namespace opc::model {

namespace {

using bedrock::codesigning_verifier::ErrorMap;

[[noreturn]] void throwUnreadable(const std::string& message,
                                  std::initializer_list<std::string> details = {}) {
    InvalidSignature failure(message, ErrorMap<102>());
    for (const std::string& phrase : details)
        failure.addDetails(phrase);
    throw failure;
}

/// The number in a text of digits. Identifiers count in 32 bits.
std::uint32_t toNumber(const std::string& digits) {
    std::uint64_t number = 0;
    for (const char digit : digits) {
        number = number * 10 + static_cast<std::uint64_t>(digit - '0');
        if (number > UINT32_MAX)
            throwUnreadable("The identifier of the signature is a number of more than 32 bits: " + digits);
    }
    return static_cast<std::uint32_t>(number);
}

void throwIfNoSignature(const Part& part) {
    if (part.getContentType() != getSignaturePartContentType())
        throwUnreadable("The part " + toUDEString(part.getName().toString()) +
                        " doesn't have the content type of signatures.");
}

} // namespace

void DigitalSignatureManager::ensureLoaded() const {
    // Loading fills what the operations answer from; it changes nothing that a caller can see.
    auto* const self = const_cast<DigitalSignatureManager*>(this);
    if (getPackage().isCreateOnly())
        self->m_signatures
            .clear(); // there is nothing to load, but what an earlier package held may stand here
    self->load();
}

void DigitalSignatureManager::doLoad() {
    m_signatures.clear();
    m_nextSignatureID = 1;
    m_work = 0;
    m_placeOfFailure.clear();
    try {
        const auto origins = getPackage().getRelationshipsByType(getOriginRelationshipType());
        if (origins.empty())
            return;
        if (origins.size() > 1)
            throwUnreadable("The package has more than one relationship to a signature origin part.");
        const Part origin = getTarget(*origins.begin());
        SelectableRelationships selectable(origins.begin()->getTargetURI());
        // Each part is read once, however many relationships lead to it: a small package could fill all memory.
        std::map<const InputStream*, std::shared_ptr<DigitalSignatureData>> known;
        for (const Relationship& relationship :
             origin.getRelationshipsByType(getSignatureRelationshipType())) {
            const Part part = getTarget(relationship);
            throwIfNoSignature(part);
            m_placeOfFailure = toUDEString(part.getName().toString());
            std::shared_ptr<DigitalSignatureData>& data = known[&part.getInputStream()];
            if (!data)
                data = readSignature(part, selectable);
            addLoadedSignature(data, part);
        }
        m_placeOfFailure.clear();
        m_work = measureWork();
    } catch (const Exception& e) {
        throwUnreadable(e.what(), {e.details(), m_placeOfFailure});
    } catch (const bedrock::crypto::utils::Exception& e) {
        throwUnreadable(e.what(), {m_placeOfFailure});
    } catch (const bedrock::certificates::CertificateException& e) {
        throwUnreadable(e.what(), {m_placeOfFailure});
    }
}

/// The part that a relationship of signatures leads to.
Part DigitalSignatureManager::getTarget(const Relationship& relationship) {
    m_placeOfFailure = verdict::describe(relationship);
    if (relationship.getTargetMode() == TargetMode::External)
        throwUnreadable("A relationship of signatures leads out of the package: " +
                        toUDEString(relationship.getTarget()));
    return getPackage().getPart(PartName(relationship.getTargetURI()));
}

std::shared_ptr<DigitalSignatureData>
DigitalSignatureManager::readSignature(const Part& part, SelectableRelationships& selectable) const {
    auto data = std::make_shared<DigitalSignatureData>();
    InputStream& stream = part.getInputStream();
    const StreamRewinder rewinder(stream);
    data->m_share = std::make_shared<DocumentShare>(getPackage().getDocumentBudget(), &XmlLimits::signature);
    MeteredStream metered(stream, *data->m_share, cost::BYTES_PER_ELEMENT);
    m_serializer->readSignature(metered, *data);
    fillUpSignedEntities(*data, selectable);
    return data;
}

void DigitalSignatureManager::addLoadedSignature(const std::shared_ptr<DigitalSignatureData>& data,
                                                 const Part& part) {
    getSignaturePartName(data->getName()); // which others than this manager ask for later
    m_signatures.push_back(DigitalSignature(data));
    if (data->m_signatureId == COUNTERSIGNATURE_ID)
        return;
    updateNextSignatureID(data->m_signatureId, part);
    assertSignatureCorrectnessAfterLoad(*data);
}

void DigitalSignatureManager::updateNextSignatureID(std::u16string id, const Part& /*part*/) {
    if (id.empty())
        throwUnreadable("The signature has no identifier.");
    const bool isNumber =
        std::all_of(id.begin(), id.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; });
    if (!isNumber) {
        ++m_nextSignatureID;
        return;
    }
    const std::uint32_t next = toNumber(toASCIIString(id)) + 1; // wraps, as the identifiers do
    m_nextSignatureID = std::max<std::uint64_t>(m_nextSignatureID, next);
}

/// What is accepted on reading is all that can be said of a loaded signature.
void DigitalSignatureManager::assertSignatureCorrectnessAfterLoad(
    const DigitalSignatureData& /*data*/) const {
}

void DigitalSignatureManager::fillUpSignedEntities(DigitalSignatureData& data,
                                                   SelectableRelationships& selectable) const {
    SignedRelationships selected;
    for (const Reference& reference : data.m_content.manifestReferences) {
        const URI& uri = reference.referenceURI;
        if (uri.isAbsolute() || uri.isOpaque() || isSameDocumentReference(uri))
            throwUnreadable(
                "URI referenced to in the manifest reference should not be an external reference or a "
                "same-document reference.");
        const PartName name(uri.getPath());
        if (name.isRelationshipName()) {
            fillUpSignedRelationships(reference, name, selectable, selected);
            continue;
        }
        if (!getPackage().hasPart(name))
            throwUnreadable("Part referenced to by the signature is not present in the package." +
                            toUDEString(uri.getPath()));
        // It would be digested as relationships, and not at all as a part.
        if (reference.selectsRelationships())
            throwUnreadable("The signature selects relationships from a part that holds none: " +
                            toUDEString(uri.getPath()));
        data.m_signedPartNames.push_back(name);
    }
    data.m_signedRelationships = selectable.share(std::move(selected));
}

void DigitalSignatureManager::fillUpSignedRelationships(const Reference& reference,
                                                        const PartName& relationshipsPart,
                                                        SelectableRelationships& selectable,
                                                        SignedRelationships& selected) const {
    const auto fillUp = [&](const RelationshipSource& source, const std::u16string& name,
                            const std::string& label) {
        const auto throwMissing = [&label](const std::string& what, const std::u16string& criteria) {
            throwUnreadable("Relationship with " + what + " " + toUDEString(criteria) +
                            " referenced to in the signature is not present in the " + label);
        };
        for (const std::u16string& id : reference.relationshipReferences) {
            if (!source.hasRelationship(id))
                throwMissing("ID", id);
            selected.add(selectable.byID(source, name, id));
        }
        for (const std::u16string& type : reference.relationshipGroupReferences) {
            const SignedRelationships::Group group = selectable.byType(source, name, type);
            if (!group)
                throwMissing("Type", type);
            selected.add(group);
        }
    };
    if (relationshipsPart == u"/_rels/.rels")
        return fillUp(getPackage(), u"/", "package");
    const std::u16string name = relationshipsPart.getSourcePartName();
    const Part part = getPackage().getPart(PartName(name));
    fillUp(part, part.getName().toString(), toUDEString(name));
}

DigitalSignatureManager::Signatures::iterator
DigitalSignatureManager::findSignature(const std::u16string& name) {
    throwIfNotValidSignaturePart(getSignaturePartName(name));
    const auto found =
        std::find_if(m_signatures.begin(), m_signatures.end(),
                     [&name](const DigitalSignature& entry) { return entry.getName() == name; });
    if (found == m_signatures.end())
        throw SignatureNotFound("Could not find the given signature by the given name.");
    return found;
}

Enumerator<std::vector<DigitalSignature>> DigitalSignatureManager::getSignatures() {
    throwIfPackageNotOpen();
    ensureLoaded();
    return Enumerator<std::vector<DigitalSignature>>(m_signatures);
}

DigitalSignature DigitalSignatureManager::getSignature(const std::u16string& name) {
    throwIfPackageNotOpen();
    ensureLoaded();
    return *findSignature(name);
}

bool DigitalSignatureManager::isPackageSigned() const {
    throwIfPackageNotOpen();
    ensureLoaded();
    return !m_signatures.empty();
}

bool DigitalSignatureManager::isSigned(const PartName& name) const {
    throwIfPackageNotOpen();
    ensureLoaded();
    return std::any_of(m_signatures.begin(), m_signatures.end(), [&name](const DigitalSignature& signature) {
        const auto& names = signature.getImpl()->m_signedPartNames;
        return std::find(names.begin(), names.end(), name) != names.end();
    });
}

} // namespace opc::model

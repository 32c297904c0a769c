#include "package/PackageImpl.hpp"
#include "signatures/coverage/SelectableRelationships.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/coverage/SignedEntities.hpp"
#include "signatures/document/SignatureCost.hpp"
#include "signatures/manager/DigitalSignatureManagerImpl.hpp"
#include "signatures/signature/DigitalSignatureData.hpp"
#include "signatures/signature/SignatureWork.hpp"
#include "signatures/verification/VerdictTexts.hpp"
#include "values/StreamRewinder.hpp"
#include "xml/DocumentBudget.hpp"

#include <bedrock/certificates/Exceptions.hpp>
#include <bedrock/crypto/utils/Exceptions.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <map>
#include <memory>

/// @file
/// How the signatures of a package are read.

namespace opc::model {

namespace {

[[noreturn]] void throwUnreadable(const std::string& message,
                                  std::initializer_list<std::string> details = {}) {
    InvalidSignature failure(message, bedrock::codesigning_verifier::ErrorMap<102>());
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

/// The number after the identifier of a signature.
std::uint64_t findNextNumber(const std::u16string& id, std::uint64_t next) {
    if (id.empty())
        throwUnreadable("The signature has no identifier.");
    if (!std::all_of(id.begin(), id.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; }))
        return next + 1;
    const std::uint32_t behind = toNumber(toASCIIString(id)) + 1; // wraps, like the identifiers
    return std::max<std::uint64_t>(next, behind);
}

void throwIfNoSignature(const Part& part) {
    if (part.getContentType() != getSignaturePartContentType())
        throwUnreadable("The part " + toUDEString(part.getName().toString()) +
                        " doesn't have the content type of signatures.");
}

/// Reads all signatures once.
class Loading {
public:
    Loading(const Package& package, const std::shared_ptr<DocumentBudget>& budget,
            DigitalSignatureSerializer& serializer)
        : package(package), budget(budget), serializer(serializer) {}

    SignatureList load() {
        try {
            const auto origins = package.getRelationshipsByType(getOriginRelationshipType());
            if (origins.empty())
                return {};
            if (origins.size() > 1)
                throwUnreadable("The package has more than one relationship to a signature origin part.");
            loadFrom(*origins.begin());
            return std::move(list);
        } catch (const Exception& e) {
            auto failure =
                translated<InvalidSignature>(e, e.what(), bedrock::codesigning_verifier::ErrorMap<102>());
            failure.addDetails(place);
            failure.setPart(part);
            throw failure;
        } catch (const bedrock::crypto::utils::Exception& e) {
            throwUnreadable(e.what(), {place});
        } catch (const bedrock::certificates::CertificateException& e) {
            throwUnreadable(e.what(), {place});
        }
    }

private:
    void loadFrom(const Relationship& toOrigin) {
        const Part origin = getTarget(toOrigin);
        SelectableRelationships selectable(toOrigin.getTargetURI());
        // Each part is read once, however many relationships lead to it: a small package could fill all memory.
        std::map<const InputStream*, std::shared_ptr<DigitalSignatureData>> known;
        for (const Relationship& relationship :
             origin.getRelationshipsByType(getSignatureRelationshipType())) {
            const Part signature = getTarget(relationship);
            throwIfNoSignature(signature);
            place = part = toUDEString(signature.getName().toString());
            std::shared_ptr<DigitalSignatureData>& data = known[&signature.getInputStream()];
            if (!data)
                data = read(signature, selectable);
            add(data);
        }
        place.clear();
        part.clear();
        list.work = measureWork(list.signatures);
    }

    /// The part that a relationship of signatures leads to.
    Part getTarget(const Relationship& relationship) {
        place = verdict::describe(relationship);
        part.clear();
        if (relationship.getTargetMode() == TargetMode::External)
            throwUnreadable("A relationship of signatures leads out of the package: " +
                            toUDEString(relationship.getTarget()));
        return package.getPart(PartName(relationship.getTargetURI()));
    }

    std::shared_ptr<DigitalSignatureData> read(const Part& signature,
                                               SelectableRelationships& selectable) const {
        auto data = std::make_shared<DigitalSignatureData>();
        InputStream& stream = signature.getInputStream();
        const StreamRewinder rewinder(stream);
        data->m_share = std::make_shared<DocumentShare>(budget, &XmlLimits::signature);
        MeteredStream metered(stream, *data->m_share, cost::BYTES_PER_ELEMENT);
        serializer.readSignature(metered, *data);
        SignedEntities signedEntities = findSignedEntities(package, data->m_content, selectable);
        data->m_signedPartNames = std::move(signedEntities.partNames);
        data->m_signedRelationships = std::move(signedEntities.relationships);
        return data;
    }

    void add(const std::shared_ptr<DigitalSignatureData>& data) {
        getSignaturePartName(data->getName()); // so that it fails now and not in a later operation
        list.signatures.push_back(DigitalSignatureData::makeHandle(data));
        if (data->m_signatureId != COUNTERSIGNATURE_ID)
            list.nextNumber = findNextNumber(data->m_signatureId, list.nextNumber);
    }

    const Package& package;
    const std::shared_ptr<DocumentBudget>& budget;
    DigitalSignatureSerializer& serializer;
    SignatureList list;
    std::string place; // the relationship or part that is being read; empty if there is none
    std::string part;  // the same, if it is a part
};

} // namespace

void DigitalSignatureManager::Impl::load() {
    list = {};
    list = Loading(package, package.state().documentBudget, serializer).load();
}

} // namespace opc::model

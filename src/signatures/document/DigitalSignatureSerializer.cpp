#include "signatures/document/DigitalSignatureSerializer.hpp"

#include "signatures/document/SignatureComposer.hpp"
#include "signatures/document/SignatureCost.hpp"
#include "signatures/document/SignatureFilling.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureScanner.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ScanOrParse.hpp"

#include <bedrock/crypto/utils/Base64.hpp>
#include <opc/core/Time.hpp>

#include <algorithm>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using bedrock::certificates::X509CertificateChain;
using bedrock::crypto::utils::base64Decode;

/// A larger document goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED_SIGNATURE = 1U << 28;

/// The text of an object as in the parser's document: it declares the namespace that it gets from its parent.
std::u16string withNamespaceDeclaration(std::string_view object) {
    static constexpr auto DECLARATION =
        " " + attribute::XMLNS + "=\"" + vocabulary::signatures::NAMESPACE + "\"";
    constexpr std::u16string_view declaration = DECLARATION.wide();
    const auto* const place = object.begin() + object.find(' ');
    std::u16string text(object.size() + declaration.size(), u'\0');
    auto end = std::copy(object.begin(), place, text.begin());
    end = std::copy(declaration.begin(), declaration.end(), end);
    std::copy(place, object.end(), end);
    return text;
}

void takeScannedValueAndKey(const ScannedSignature& scanned, SignatureRecord& data) {
    data.m_signatureValueInXML = widen(scanned.signatureValue);
    data.m_signatureValue = base64Decode(data.m_signatureValueInXML);
    data.m_namespace = vocabulary::signatures::NAMESPACE.text();
    if (!scanned.modulus.empty())
        setKeyValue({0, widen(scanned.modulus), widen(scanned.exponent)}, data);
    if (scanned.certificates.empty())
        return;
    X509CertificateChain chain;
    for (const std::string_view text : scanned.certificates)
        addCertificate(widen(text), data, chain);
    data.m_certificateChain = std::move(chain);
}

/// Failures come in the order in which the parser's document is read.
void takeScanned(ScannedSignature& scanned, SignatureRecord& data) {
    data.m_signatureId = readSignatureId(widen(scanned.id));
    takeScannedValueAndKey(scanned, data);
    data.m_objects.emplace(
        PACKAGE_OBJECT_ID.text(),
        SignatureObject{PACKAGE_OBJECT_ID.text(), withNamespaceDeclaration(scanned.object)});
    data.m_content.manifestReferences = std::move(scanned.manifestReferences);
    data.m_content.signatureProperties.push_back(
        {u"#" + widen(scanned.propertyTarget), SIGNATURE_TIME_ID.text(), {}, {}});
    data.m_signedTime = convertStringToTime(widen(scanned.time));
    data.m_canonicalizationMethod = widen(scanned.canonicalizationMethod);
    data.m_signatureMethod = widen(scanned.signatureMethod);
    data.m_content.signedInfoXML = widen(scanned.signedInfo);
    data.m_content.signedInfoReferences.push_back(std::move(scanned.objectReference));
    settleParameters(data);
}

} // namespace

SignatureXml& DigitalSignatureSerializer::xml() {
    if (!made)
        made = makeSignatureXml();
    return *made;
}

void DigitalSignatureSerializer::readSignature(InputStream& stream, SignatureRecord& data) {
    ReadAheadBuffer buffer;
    const auto scan = [&data](std::string_view document) {
        if (data.m_share) { // before memory is allocated for it
            const auto tags = std::count(document.begin(), document.end(), '<');
            data.m_share->addElements(static_cast<std::uint64_t>(tags) / cost::TAGS_PER_ELEMENT);
        }
        ScannedSignature scanned;
        if (!scanSignature(document, scanned))
            return false;
        takeScanned(scanned, data);
        return true;
    };
    scanOrParse(stream, buffer, LARGEST_SCANNED_SIGNATURE, scan,
                [&](InputStream& document) { xml().parse(document, data); });
}

void DigitalSignatureSerializer::parseSignature(InputStream& stream, SignatureRecord& data) {
    translateDocumentFailures([&] { xml().parse(stream, data); });
}

void DigitalSignatureSerializer::writeSignature(const SignatureRecord& data, OutputStream& stream) {
    std::string document;
    const auto compose = [&data](std::string& composed) {
        if (!composePlainSignature(data, composed))
            return false;
        if (data.m_keyValue)
            throwIfNoKeySize(data.m_signatureParams.getSignatureMethod());
        return true;
    };
    composeOrSerialize(document, compose, [&](OutputStream& output) { xml().serialize(data, output); });
    writeDocument(document, stream);
}

} // namespace opc::model

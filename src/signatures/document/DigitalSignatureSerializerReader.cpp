#include "signatures/document/DigitalSignatureSerializer.hpp"

#include "signatures/document/SignatureCost.hpp"
#include "signatures/document/SignatureForm.hpp"
#include "signatures/document/SignatureLimits.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureScanner.hpp"
#include "xml/ElementIndex.hpp"
#include "xml/ElementMeter.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ScanOrParse.hpp"
#include "xml/XercesFailures.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/AlgorithmURIMap.hpp>
#include <opc/model/XercesHelper.hpp>

#include <algorithm>
#include <optional>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;

IdleParsers& signatureParsers() {
    static IdleParsers& parsers = *new IdleParsers([] {
        auto parser = XercesHelper::createParser();
        translateXercesFailures([&parser] {
            parser->getDomConfig()->setParameter(xercesc::XMLUni::fgXercesUseCachedGrammarInParse, true);
            parser->getDomConfig()->setParameter(xercesc::XMLUni::fgXercesSchemaFullChecking, true);
        });
        loadGrammars(parser.get(), {&schemas::PACKAGE_SIGNATURE, &schemas::XML_SIGNATURE});
        return parser;
    });
    return parsers;
}

/// A larger document goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED = 1U << 28;

IndexedElement getOnlyElement(const IndexedElement& parent, const XercesString& name, const char* message) {
    const std::vector<IndexedElement> elements = parent.getElements(name);
    if (elements.size() != 1)
        throw InvalidPartContent(message);
    return elements.front();
}

/// The signature's identifier in the `Id` of the root.
std::u16string withoutPrefix(const std::u16string& id) {
    constexpr std::u16string_view PREFIX = SIGNATURE_ID_PREFIX.wide();
    return id.compare(0, PREFIX.size(), PREFIX) == 0 ? id.substr(PREFIX.size()) : id;
}

/// The text of an object as in the parser's document: it declares the namespace that it gets from its parent.
std::u16string withNamespaceDeclaration(std::string_view object) {
    static constexpr auto DECLARATION = " " + attribute::XMLNS + "=\"" + NAMESPACE + "\"";
    constexpr std::u16string_view declaration = DECLARATION.wide();
    const auto* const place = object.begin() + object.find(' ');
    std::u16string text(object.size() + declaration.size(), u'\0');
    auto end = std::copy(object.begin(), place, text.begin());
    end = std::copy(declaration.begin(), declaration.end(), end);
    std::copy(place, object.end(), end);
    return text;
}

SignatureParams settleParameters(const SignatureRecord& data) {
    std::uint64_t keySize = 0;
    if (data.m_keyValue)
        keySize = data.m_keyValue->keySize;
    else if (data.m_certificate)
        keySize = data.m_certificate->getKeySize();
    const DigestMethod digest = AlgorithmURIMap::getSigningParameters(data.m_signatureMethod).first;
    return SignatureParams(digest, keySize == 0 ? SignatureMethod::NoKey : keySizeToSignatureMethod(keySize));
}

} // namespace

DigitalSignatureSerializer::Xerces::Xerces() : parser(signatureParsers()) {
}

DigitalSignatureSerializer::DigitalSignatureSerializer() = default;

DigitalSignatureSerializer::~DigitalSignatureSerializer() = default;

DigitalSignatureSerializer::Xerces& DigitalSignatureSerializer::wakeXerces() {
    if (!m_xerces)
        m_xerces = std::make_unique<Xerces>();
    return *m_xerces;
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
    scanOrParse(stream, buffer, LARGEST_SCANNED, scan, [&](InputStream& document) { parse(document, data); });
}

/// Failures come in the order in which the parser's document is read.
void DigitalSignatureSerializer::takeScanned(ScannedSignature& scanned, SignatureRecord& data) {
    data.m_signatureId = withoutPrefix(widen(scanned.id));
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
    data.m_signatureParams = settleParameters(data);
}

void DigitalSignatureSerializer::parseSignature(InputStream& stream, SignatureRecord& data) {
    translateDocumentFailures([&] { parse(stream, data); });
}

void DigitalSignatureSerializer::parse(InputStream& stream, SignatureRecord& data) {
    wakeXerces().parser.use(stream, [&](xercesc::DOMLSParser* parser, InputStream& document) {
        std::optional<ElementMeter> meter;
        std::optional<MeteredStream> counted; // again, for the tree
        if (data.m_share) {
            meter.emplace(parser, *data.m_share, cost::NODE, cost::NODE);
            counted.emplace(document, *data.m_share, cost::BYTES_PER_ELEMENT);
        }
        InputStream& source = counted ? *counted : document;
        const ElementIndex index(
            XercesHelper::readDocumentFromStream(parser, source, true, {}, {})->getDocumentElement());
        SignatureLimits(m_xerces->names).check(index);
        readDocument(index.at(0), data);
        checkSignatureForm(index, data.m_content);
    });
}

void DigitalSignatureSerializer::readDocument(const IndexedElement& root, SignatureRecord& data) {
    std::u16string id;
    if (XercesHelper::getElementAttribute(root, m_xerces->names.id, id))
        data.m_signatureId = withoutPrefix(id);
    readValueAndKey(root, data);
    readObjects(root, data);
    readSignedInfoMethods(root, data);
    readSignedInfoReferences(root, data);
    data.m_signatureParams = settleParameters(data);
}

IndexedElement DigitalSignatureSerializer::getRequiredElement(const IndexedElement& element,
                                                              const XercesString& name,
                                                              const XercesString& namespaceURI) const {
    const auto found =
        namespaceURI == u"" ? element.getElement(name) : element.getElementNS(namespaceURI, name);
    if (!found)
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is not present.");
    return *found;
}

void DigitalSignatureSerializer::getRequiredElementText(const IndexedElement& element,
                                                        const XercesString& name, std::u16string& text,
                                                        const XercesString& namespaceURI) const {
    XercesHelper::getElementText(getRequiredElement(element, name, namespaceURI), text);
    if (text.empty())
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is empty.");
}

std::u16string DigitalSignatureSerializer::getRequiredAttribute(const IndexedElement& element,
                                                                const XercesString& name,
                                                                const char* message) {
    std::u16string value;
    if (!XercesHelper::getElementAttribute(element, name, value))
        throw InvalidPartContent(message);
    return value;
}

void DigitalSignatureSerializer::readObjects(const IndexedElement& root, SignatureRecord& data) {
    for (const IndexedElement& element : root.getElements(m_xerces->names.object)) {
        const std::u16string id =
            getRequiredAttribute(element, m_xerces->names.id, "XML signature: Object missing Id attribute.");
        SignatureObject object{id, {}};
        toText(element, object.XMLBytes);
        data.m_objects.emplace(id, std::move(object));
        if (id == PACKAGE_OBJECT_ID)
            readPackageObject(element, data);
    }
}

void DigitalSignatureSerializer::readPackageObject(const IndexedElement& object,
                                                   SignatureRecord& data) const {
    readManifest(getOnlyElement(object, m_xerces->names.manifest,
                                "XML signature: There must exist only one Manifest element in package "
                                "specific Object element."),
                 data);
    readSignatureProperties(getOnlyElement(object, m_xerces->names.signatureProperties,
                                           "XML signature: There must exist only one SignatureProperties "
                                           "element in package specific Object element."),
                            data);
}

void DigitalSignatureSerializer::readSignatureProperties(const IndexedElement& properties,
                                                         SignatureRecord& data) const {
    for (const IndexedElement& element : properties.getElements(m_xerces->names.signatureProperty)) {
        SignatureProperty property;
        property.target = getRequiredAttribute(element, m_xerces->names.target,
                                               "XML signature: SignatureProperty does not have a target.");
        XercesHelper::getElementAttribute(element, m_xerces->names.id, property.id);
        data.m_content.signatureProperties.push_back(property);
        if (property.id == SIGNATURE_TIME_ID)
            readSignatureTime(element, data);
    }
}

/// `Format` must be there and isn't used: the form of the value shows by itself.
void DigitalSignatureSerializer::readSignatureTime(const IndexedElement& property,
                                                   SignatureRecord& data) const {
    const IndexedElement time =
        getRequiredElement(property, m_xerces->packageNames.signatureTime, m_xerces->packageNamespace);
    std::u16string text;
    getRequiredElementText(time, m_xerces->packageNames.format, text, m_xerces->packageNamespace);
    getRequiredElementText(time, m_xerces->packageNames.value, text, m_xerces->packageNamespace);
    data.m_signedTime = convertStringToTime(text);
}

void DigitalSignatureSerializer::readSignedInfoMethods(const IndexedElement& root,
                                                       SignatureRecord& data) const {
    const IndexedElement signedInfo =
        getRequiredElement(root, m_xerces->names.signedInfo, m_xerces->names.noNamespace);
    data.m_canonicalizationMethod = getRequiredAttribute(
        getRequiredElement(signedInfo, m_xerces->names.canonicalizationMethod, m_xerces->names.noNamespace),
        m_xerces->names.algorithm, "XML signature: CanonicalizationMethod is empty.");
    data.m_signatureMethod = getRequiredAttribute(
        getRequiredElement(signedInfo, m_xerces->names.signatureMethod, m_xerces->names.noNamespace),
        m_xerces->names.algorithm, "XML signature: SignatureMethod is empty.");
}

} // namespace opc::model

#include "signatures/document/SignatureTrees.hpp"

#include "signatures/document/SignatureCost.hpp"
#include "signatures/document/SignatureFilling.hpp"
#include "signatures/document/SignatureForm.hpp"
#include "signatures/document/SignatureLimits.hpp"
#include "signatures/document/SignatureRecords.hpp"
#include "xml/ElementIndex.hpp"
#include "xml/ElementMeter.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/XercesFailures.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/XercesHelper.hpp>

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

IndexedElement getOnlyElement(const IndexedElement& parent, const XercesString& name, const char* message) {
    const std::vector<IndexedElement> elements = parent.getElements(name);
    if (elements.size() != 1)
        throw InvalidPartContent(message);
    return elements.front();
}

} // namespace

SignatureTrees::SignatureTrees() : parser(signatureParsers()) {
}

void SignatureTrees::parse(InputStream& stream, SignatureRecord& data) {
    parser.use(stream, [&](xercesc::DOMLSParser* with, InputStream& document) {
        std::optional<ElementMeter> meter;
        std::optional<MeteredStream> counted; // again, for the tree
        if (data.m_share) {
            meter.emplace(with, *data.m_share, cost::NODE, cost::NODE);
            counted.emplace(document, *data.m_share, cost::BYTES_PER_ELEMENT);
        }
        InputStream& source = counted ? *counted : document;
        const ElementIndex index(
            XercesHelper::readDocumentFromStream(with, source, true, {}, {})->getDocumentElement());
        SignatureLimits(names).check(index);
        readDocument(index.at(0), data);
        checkSignatureForm(index, data.m_content);
    });
}

void SignatureTrees::readDocument(const IndexedElement& root, SignatureRecord& data) {
    std::u16string id;
    if (XercesHelper::getElementAttribute(root, names.id, id))
        data.m_signatureId = readSignatureId(id);
    readValueAndKey(root, data);
    readObjects(root, data);
    readSignedInfoMethods(root, data);
    readSignedInfoReferences(root, data);
    settleParameters(data);
}

IndexedElement SignatureTrees::getRequiredElement(const IndexedElement& element, const XercesString& name,
                                                  const XercesString& namespaceURI) const {
    const auto found =
        namespaceURI == u"" ? element.getElement(name) : element.getElementNS(namespaceURI, name);
    if (!found)
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is not present.");
    return *found;
}

void SignatureTrees::getRequiredElementText(const IndexedElement& element, const XercesString& name,
                                            std::u16string& text, const XercesString& namespaceURI) const {
    XercesHelper::getElementText(getRequiredElement(element, name, namespaceURI), text);
    if (text.empty())
        throw InvalidPartContent("XML signature: " + toUDEString(name) + " is empty.");
}

std::u16string SignatureTrees::getRequiredAttribute(const IndexedElement& element, const XercesString& name,
                                                    const char* message) {
    std::u16string value;
    if (!XercesHelper::getElementAttribute(element, name, value))
        throw InvalidPartContent(message);
    return value;
}

void SignatureTrees::readObjects(const IndexedElement& root, SignatureRecord& data) {
    for (const IndexedElement& element : root.getElements(names.object)) {
        const std::u16string id =
            getRequiredAttribute(element, names.id, "XML signature: Object missing Id attribute.");
        SignatureObject object{id, {}};
        toText(element, object.XMLBytes);
        data.m_objects.emplace(id, std::move(object));
        if (id == PACKAGE_OBJECT_ID)
            readPackageObject(element, data);
    }
}

void SignatureTrees::readPackageObject(const IndexedElement& object, SignatureRecord& data) const {
    readManifest(getOnlyElement(object, names.manifest,
                                "XML signature: There must exist only one Manifest element in package "
                                "specific Object element."),
                 data);
    readSignatureProperties(getOnlyElement(object, names.signatureProperties,
                                           "XML signature: There must exist only one SignatureProperties "
                                           "element in package specific Object element."),
                            data);
}

void SignatureTrees::readSignatureProperties(const IndexedElement& properties, SignatureRecord& data) const {
    for (const IndexedElement& element : properties.getElements(names.signatureProperty)) {
        SignatureProperty property;
        property.target = getRequiredAttribute(element, names.target,
                                               "XML signature: SignatureProperty does not have a target.");
        XercesHelper::getElementAttribute(element, names.id, property.id);
        data.m_content.signatureProperties.push_back(property);
        if (property.id == SIGNATURE_TIME_ID)
            readSignatureTime(element, data);
    }
}

/// `Format` must be there and isn't used: the form of the value shows by itself.
void SignatureTrees::readSignatureTime(const IndexedElement& property, SignatureRecord& data) const {
    const IndexedElement time = getRequiredElement(property, packageNames.signatureTime, packageNamespace);
    std::u16string text;
    getRequiredElementText(time, packageNames.format, text, packageNamespace);
    getRequiredElementText(time, packageNames.value, text, packageNamespace);
    data.m_signedTime = convertStringToTime(text);
}

void SignatureTrees::readSignedInfoMethods(const IndexedElement& root, SignatureRecord& data) const {
    const IndexedElement signedInfo = getRequiredElement(root, names.signedInfo, names.noNamespace);
    data.m_canonicalizationMethod =
        getRequiredAttribute(getRequiredElement(signedInfo, names.canonicalizationMethod, names.noNamespace),
                             names.algorithm, "XML signature: CanonicalizationMethod is empty.");
    data.m_signatureMethod =
        getRequiredAttribute(getRequiredElement(signedInfo, names.signatureMethod, names.noNamespace),
                             names.algorithm, "XML signature: SignatureMethod is empty.");
}

std::unique_ptr<SignatureXml> makeSignatureXml() {
    return std::make_unique<SignatureTrees>();
}

} // namespace opc::model

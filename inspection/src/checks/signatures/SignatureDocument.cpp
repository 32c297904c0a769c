#include "checks/signatures/SignatureDocument.hpp"

#include "subject/DocumentReading.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/XmlEvents.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace opc::inspection {

const std::string PACKAGE_OBJECT = "idPackageObject";

namespace {

using model::XmlElement;
using model::XmlPlace;

constexpr std::u16string_view XML_SIGNATURE = u"http://www.w3.org/2000/09/xmldsig#";
constexpr std::u16string_view PACKAGE_SIGNATURE =
    u"http://schemas.openxmlformats.org/package/2006/digital-signature";
constexpr std::u16string_view ADVANCED = u"http://uri.etsi.org/01903/v1.3.2#"; // XAdES
constexpr std::u16string_view COMPATIBILITY = u"http://schemas.openxmlformats.org/markup-compatibility/2006";

constexpr std::size_t MOST_TEXT = std::size_t{64} * 1024; // of one element: a certificate
constexpr std::size_t MOST_CERTIFICATES = 64;

std::string toUTF8(std::u16string_view text) {
    return toUDEString(std::u16string(text.substr(0, MOST_TEXT)));
}

/// What an element of the document is to us.
enum class ElementPlace {
    Other,
    Signature,
    SignedInfo,
    Object, ///< which isn't a package object
    PackageObject,
    Manifest,
    Reference,
    Transforms,
    DigestValue,
    Transform,
    Properties,
    Property,
    Time,
    TimeFormat,
    TimeValue,
    KeyInfo,
    Certificate,
    KeyValue,
    Modulus,
    Exponent,
    SigningCertificate,
    SigningCertificateData, ///< an element in it
    CertificateDigest
};

class SignatureReader : public model::XmlEvents {
public:
    explicit SignatureReader(SignatureDocument& document) : document(document) {}

    void onStart(const XmlElement& element, const XmlPlace& behind) override {
        const ElementPlace parent = places.empty() ? ElementPlace::Other : places.back();
        here = {behind.line, behind.column};
        noteId(element);
        noteFaults(element, parent);
        places.push_back(enter(element, parent));
        isInPackageObject = isInPackageObject || places.back() == ElementPlace::PackageObject;
        if (isInPackageObject)
            noteCompatibility(element);
        text = textOf(places.back());
    }

    void onEnd() override {
        isInPackageObject = isInPackageObject && places.back() != ElementPlace::PackageObject;
        places.pop_back();
        text = nullptr;
    }

    void onText(std::u16string_view piece) override {
        if (text != nullptr && text->size() < MOST_TEXT)
            text->append(toUTF8(piece));
    }

private:
    void noteId(const XmlElement& element) {
        for (const std::u16string_view name : {u"Id", u"ID", u"id"})
            if (const auto id = element.valueOf({}, name); !id.empty())
                ++document.ids[toUTF8(id)];
    }

    /// Below SignedInfo the schema leaves nothing open but the inside of its algorithms; objects may hold anything.
    void noteFaults(const XmlElement& element, ElementPlace parent) {
        constexpr std::u16string_view IN_SIGNED_INFO[] = {u"CanonicalizationMethod", u"SignatureMethod",
                                                          u"Reference"};
        constexpr std::u16string_view IN_REFERENCE[] = {u"Transforms", u"DigestMethod", u"DigestValue"};
        constexpr std::u16string_view IN_SIGNATURE[] = {u"SignedInfo", u"SignatureValue", u"KeyInfo",
                                                        u"Object"};
        const bool isKnown = parent == ElementPlace::SignedInfo  ? has(IN_SIGNED_INFO, element)
                             : parent == ElementPlace::Reference ? has(IN_REFERENCE, element)
                             : parent == ElementPlace::Signature ? has(IN_SIGNATURE, element)
                                                                 : true;
        if (!isKnown)
            noteFault(DocumentFault::Kind::Element, toUTF8(element.localName()));
        if (element.namespaceURI() != XML_SIGNATURE)
            return;
        for (std::size_t i = 0; i < element.attributeCount(); ++i) {
            const model::XmlAttribute attribute = element.attribute(i);
            if (attribute.namespaceURI == XML_NAMESPACE)
                noteFault(DocumentFault::Kind::XmlAttribute, "xml:" + toUTF8(attribute.localName));
            else if (attribute.namespaceURI == SCHEMA_INSTANCE)
                noteFault(DocumentFault::Kind::SchemaInstanceAttribute, "xsi:" + toUTF8(attribute.localName));
        }
    }

    template <std::size_t N>
    static bool has(const std::u16string_view (&names)[N], const XmlElement& element) {
        return element.namespaceURI() == XML_SIGNATURE &&
               std::find(std::begin(names), std::end(names), element.localName()) != std::end(names);
    }

    void noteFault(DocumentFault::Kind kind, std::string name) {
        if (document.state.faults.size() < DocumentState::MOST_FAULTS)
            document.state.faults.push_back({kind, std::move(name), here.line, here.column});
    }

    void noteCompatibility(const XmlElement& element) {
        bool uses = element.namespaceURI() == COMPATIBILITY;
        for (std::size_t i = 0; i < element.attributeCount(); ++i)
            uses = uses || element.attribute(i).namespaceURI == COMPATIBILITY;
        if (uses && !std::exchange(document.packageObjectUsesCompatibility, true))
            document.compatibilityPlace = here;
    }

    ElementPlace enter(const XmlElement& element, ElementPlace parent) {
        if (element.namespaceURI() == PACKAGE_SIGNATURE)
            return enterOfPackage(element, parent);
        if (element.namespaceURI() != XML_SIGNATURE) {
            noteForeign(parent);
            return element.namespaceURI() == ADVANCED ? enterAdvanced(element.localName(), parent)
                                                      : ElementPlace::Other;
        }
        const std::u16string_view name = element.localName();
        switch (parent) {
        case ElementPlace::Other:
            return places.empty() && name == u"Signature" ? enterSignature(element) : ElementPlace::Other;
        case ElementPlace::Signature:
            return enterChild(element, name);
        case ElementPlace::SignedInfo:
            return enterInSignedInfo(element, name);
        case ElementPlace::PackageObject:
            return enterInPackageObject(name);
        case ElementPlace::Object:
            ++document.objects.back().others;
            return ElementPlace::Other;
        case ElementPlace::Manifest:
            return name == u"Reference" ? enterReference(element, document.manifest) : ElementPlace::Other;
        case ElementPlace::Reference:
            return enterInReference(element, name);
        case ElementPlace::Transforms:
            return name == u"Transform" ? enterTransform(element) : ElementPlace::Other;
        case ElementPlace::Properties:
            return name == u"SignatureProperty" ? enterProperty(element) : ElementPlace::Other;
        case ElementPlace::KeyInfo:
        case ElementPlace::KeyValue:
            return enterInKeyInfo(name);
        case ElementPlace::SigningCertificateData:
            return enterCertificateDigest(element, name);
        default:
            return ElementPlace::Other;
        }
    }

    void noteForeign(ElementPlace parent) {
        if (parent == ElementPlace::PackageObject || parent == ElementPlace::Object)
            ++document.objects.back().others;
    }

    ElementPlace enterSignature(const XmlElement& element) {
        document.isSignature = true;
        document.id = toUTF8(element.valueOf({}, u"Id"));
        return ElementPlace::Signature;
    }

    ElementPlace enterChild(const XmlElement& element, std::u16string_view name) {
        if (name == u"SignedInfo")
            return ElementPlace::SignedInfo;
        if (name == u"KeyInfo")
            return ElementPlace::KeyInfo;
        if (name != u"Object")
            return ElementPlace::Other;
        document.objects.push_back({toUTF8(element.valueOf({}, u"Id")), here});
        return document.objects.back().id == PACKAGE_OBJECT ? ElementPlace::PackageObject
                                                            : ElementPlace::Object;
    }

    ElementPlace enterInSignedInfo(const XmlElement& element, std::u16string_view name) {
        const std::string algorithm = toUTF8(element.valueOf({}, u"Algorithm"));
        if (name == u"CanonicalizationMethod") {
            document.canonicalizationMethod = algorithm;
            document.canonicalizationPlace = here;
        } else if (name == u"SignatureMethod") {
            document.signatureMethod = algorithm;
            document.methodPlace = here;
        }
        return name == u"Reference" ? enterReference(element, document.signedReferences)
                                    : ElementPlace::Other;
    }

    ElementPlace enterInPackageObject(std::u16string_view name) {
        SignatureObject& object = document.objects.back();
        if (name == u"Manifest")
            return ++object.manifests, ElementPlace::Manifest;
        if (name == u"SignatureProperties")
            return ++object.propertyLists, ElementPlace::Properties;
        return ++object.others, ElementPlace::Other;
    }

    ElementPlace enterReference(const XmlElement& element, std::vector<SignatureReference>& list) {
        references = &list;
        list.push_back(
            {toUTF8(element.valueOf({}, u"URI")), toUTF8(element.valueOf({}, u"Type")), {}, {}, {}, here});
        return ElementPlace::Reference;
    }

    ElementPlace enterInReference(const XmlElement& element, std::u16string_view name) {
        if (name == u"DigestMethod")
            references->back().digestMethod = toUTF8(element.valueOf({}, u"Algorithm"));
        return name == u"Transforms"    ? ElementPlace::Transforms
               : name == u"DigestValue" ? ElementPlace::DigestValue
                                        : ElementPlace::Other;
    }

    ElementPlace enterTransform(const XmlElement& element) {
        references->back().transforms.push_back({toUTF8(element.valueOf({}, u"Algorithm")), {}, {}});
        return ElementPlace::Transform;
    }

    ElementPlace enterProperty(const XmlElement& element) {
        document.properties.push_back(
            {toUTF8(element.valueOf({}, u"Id")), toUTF8(element.valueOf({}, u"Target")), 0, {}, {}, here});
        return ElementPlace::Property;
    }

    ElementPlace enterOfPackage(const XmlElement& element, ElementPlace parent) {
        const std::u16string_view name = element.localName();
        if (parent == ElementPlace::Transform) {
            SignatureTransform& transform = references->back().transforms.back();
            if (name == u"RelationshipReference")
                transform.sourceIds.push_back(toUTF8(element.valueOf({}, u"SourceId")));
            else if (name == u"RelationshipsGroupReference" || name == u"RelationshipGroupReference")
                transform.sourceTypes.push_back(toUTF8(element.valueOf({}, u"SourceType")));
        }
        if (parent == ElementPlace::Property && name == u"SignatureTime")
            return ++document.properties.back().times, ElementPlace::Time;
        if (parent == ElementPlace::Time)
            return name == u"Format"  ? ElementPlace::TimeFormat
                   : name == u"Value" ? ElementPlace::TimeValue
                                      : ElementPlace::Other;
        noteForeign(parent);
        return ElementPlace::Other;
    }

    /// X509Data and RSAKeyValue only hold what is looked at.
    ElementPlace enterInKeyInfo(std::u16string_view name) {
        if (name == u"X509Certificate" && document.certificates.size() < MOST_CERTIFICATES)
            return document.certificates.emplace_back(), ElementPlace::Certificate;
        if (name == u"X509Data" || name == u"KeyValue" || name == u"RSAKeyValue")
            return ElementPlace::KeyValue;
        return name == u"Modulus"    ? ElementPlace::Modulus
               : name == u"Exponent" ? ElementPlace::Exponent
                                     : ElementPlace::Other;
    }

    ElementPlace enterAdvanced(std::u16string_view name, ElementPlace parent) {
        if (name == u"SigningCertificate" || name == u"SigningCertificateV2")
            return ElementPlace::SigningCertificate;
        const bool isInside =
            parent == ElementPlace::SigningCertificate || parent == ElementPlace::SigningCertificateData;
        return isInside ? ElementPlace::SigningCertificateData : ElementPlace::Other;
    }

    /// The first is the signer's.
    ElementPlace enterCertificateDigest(const XmlElement& element, std::u16string_view name) {
        if (!document.certificateDigest.empty())
            return ElementPlace::Other;
        if (name == u"DigestMethod")
            document.certificateDigestMethod = toUTF8(element.valueOf({}, u"Algorithm"));
        return name == u"DigestValue" ? ElementPlace::CertificateDigest : ElementPlace::Other;
    }

    std::string* textOf(ElementPlace place) {
        switch (place) {
        case ElementPlace::DigestValue:
            return &references->back().digestValue;
        case ElementPlace::TimeFormat:
            return &document.properties.back().timeFormat;
        case ElementPlace::TimeValue:
            return &document.properties.back().timeValue;
        case ElementPlace::Certificate:
            return &document.certificates.back();
        case ElementPlace::CertificateDigest:
            return &document.certificateDigest;
        case ElementPlace::Modulus:
            return &document.modulus;
        case ElementPlace::Exponent:
            return &document.exponent;
        default:
            return nullptr;
        }
    }

    SignatureDocument& document;
    std::vector<ElementPlace> places; ///< of the open elements
    SignaturePlace here;
    std::vector<SignatureReference>* references = nullptr; ///< the list that the last one is in
    std::string* text = nullptr;                           ///< where the text of the open element goes
    bool isInPackageObject = false;
};

} // namespace

bool SignatureTransform::isCanonicalization() const {
    const std::string canonical = "http://www.w3.org/TR/2001/REC-xml-c14n-20010315";
    return algorithm == canonical || algorithm == canonical + "#WithComments";
}

bool SignatureTransform::isOfRelationships() const {
    return algorithm == "http://schemas.openxmlformats.org/package/2006/RelationshipTransform" ||
           algorithm == "http://schemas.openxmlformats.org/package/2005/06/RelationshipTransform";
}

std::vector<const SignatureObject*> SignatureDocument::packageObjects() const {
    std::vector<const SignatureObject*> found;
    for (const SignatureObject& object : objects)
        if (object.id == PACKAGE_OBJECT)
            found.push_back(&object);
    return found;
}

SignatureDocument readSignature(const Subject& subject, const PartView& part) {
    SignatureDocument document;
    SignatureReader reader(document);
    readDocument(subject.archive(), part.items, document.state, reader);
    return document;
}

SignatureDocument readSignature(InputStream& content) {
    SignatureDocument document;
    SignatureReader reader(document);
    readDocument(content, document.state, reader);
    return document;
}

} // namespace opc::inspection

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

std::string narrow(std::u16string_view text) {
    return toUDEString(std::u16string(text.substr(0, MOST_TEXT)));
}

/// What an element of the document is to us.
enum class Place {
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
        const Place parent = places.empty() ? Place::Other : places.back();
        here = {behind.line, behind.column};
        noteId(element);
        noteFaults(element, parent);
        places.push_back(enter(element, parent));
        isInPackageObject = isInPackageObject || places.back() == Place::PackageObject;
        if (isInPackageObject)
            noteCompatibility(element);
        text = textOf(places.back());
    }

    void onEnd() override {
        isInPackageObject = isInPackageObject && places.back() != Place::PackageObject;
        places.pop_back();
        text = nullptr;
    }

    void onText(std::u16string_view piece) override {
        if (text != nullptr && text->size() < MOST_TEXT)
            text->append(narrow(piece));
    }

private:
    void noteId(const XmlElement& element) {
        for (const std::u16string_view name : {u"Id", u"ID", u"id"})
            if (const auto id = element.valueOf({}, name); !id.empty())
                ++document.ids[narrow(id)];
    }

    /// Below SignedInfo the schema leaves nothing open but the inside of its algorithms; objects may hold anything.
    void noteFaults(const XmlElement& element, Place parent) {
        constexpr std::u16string_view IN_SIGNED_INFO[] = {u"CanonicalizationMethod", u"SignatureMethod",
                                                          u"Reference"};
        constexpr std::u16string_view IN_REFERENCE[] = {u"Transforms", u"DigestMethod", u"DigestValue"};
        constexpr std::u16string_view IN_SIGNATURE[] = {u"SignedInfo", u"SignatureValue", u"KeyInfo",
                                                        u"Object"};
        const bool isKnown = parent == Place::SignedInfo  ? has(IN_SIGNED_INFO, element)
                             : parent == Place::Reference ? has(IN_REFERENCE, element)
                             : parent == Place::Signature ? has(IN_SIGNATURE, element)
                                                          : true;
        if (!isKnown)
            noteFault(DocumentFault::Kind::Element, narrow(element.localName()));
        if (element.namespaceURI() != XML_SIGNATURE)
            return;
        for (std::size_t i = 0; i < element.attributeCount(); ++i) {
            const model::XmlAttribute attribute = element.attribute(i);
            if (attribute.namespaceURI == XML_NAMESPACE)
                noteFault(DocumentFault::Kind::XmlAttribute, "xml:" + narrow(attribute.localName));
            else if (attribute.namespaceURI == SCHEMA_INSTANCE)
                noteFault(DocumentFault::Kind::SchemaInstanceAttribute, "xsi:" + narrow(attribute.localName));
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

    Place enter(const XmlElement& element, Place parent) {
        if (element.namespaceURI() == PACKAGE_SIGNATURE)
            return enterOfPackage(element, parent);
        if (element.namespaceURI() != XML_SIGNATURE) {
            noteForeign(parent);
            return element.namespaceURI() == ADVANCED ? enterAdvanced(element.localName(), parent)
                                                      : Place::Other;
        }
        const std::u16string_view name = element.localName();
        switch (parent) {
        case Place::Other:
            return places.empty() && name == u"Signature" ? enterSignature(element) : Place::Other;
        case Place::Signature:
            return enterChild(element, name);
        case Place::SignedInfo:
            return enterInSignedInfo(element, name);
        case Place::PackageObject:
            return enterInPackageObject(name);
        case Place::Object:
            ++document.objects.back().others;
            return Place::Other;
        case Place::Manifest:
            return name == u"Reference" ? enterReference(element, document.manifest) : Place::Other;
        case Place::Reference:
            return enterInReference(element, name);
        case Place::Transforms:
            return name == u"Transform" ? enterTransform(element) : Place::Other;
        case Place::Properties:
            return name == u"SignatureProperty" ? enterProperty(element) : Place::Other;
        case Place::KeyInfo:
        case Place::KeyValue:
            return enterInKeyInfo(name);
        case Place::SigningCertificateData:
            return enterCertificateDigest(element, name);
        default:
            return Place::Other;
        }
    }

    void noteForeign(Place parent) {
        if (parent == Place::PackageObject || parent == Place::Object)
            ++document.objects.back().others;
    }

    Place enterSignature(const XmlElement& element) {
        document.isSignature = true;
        document.id = narrow(element.valueOf({}, u"Id"));
        return Place::Signature;
    }

    Place enterChild(const XmlElement& element, std::u16string_view name) {
        if (name == u"SignedInfo")
            return Place::SignedInfo;
        if (name == u"KeyInfo")
            return Place::KeyInfo;
        if (name != u"Object")
            return Place::Other;
        document.objects.push_back({narrow(element.valueOf({}, u"Id")), here});
        return document.objects.back().id == PACKAGE_OBJECT ? Place::PackageObject : Place::Object;
    }

    Place enterInSignedInfo(const XmlElement& element, std::u16string_view name) {
        const std::string algorithm = narrow(element.valueOf({}, u"Algorithm"));
        if (name == u"CanonicalizationMethod") {
            document.canonicalizationMethod = algorithm;
            document.canonicalizationPlace = here;
        } else if (name == u"SignatureMethod") {
            document.signatureMethod = algorithm;
            document.methodPlace = here;
        }
        return name == u"Reference" ? enterReference(element, document.signedReferences) : Place::Other;
    }

    Place enterInPackageObject(std::u16string_view name) {
        SignatureObject& object = document.objects.back();
        if (name == u"Manifest")
            return ++object.manifests, Place::Manifest;
        if (name == u"SignatureProperties")
            return ++object.propertyLists, Place::Properties;
        return ++object.others, Place::Other;
    }

    Place enterReference(const XmlElement& element, std::vector<SignatureReference>& list) {
        references = &list;
        list.push_back(
            {narrow(element.valueOf({}, u"URI")), narrow(element.valueOf({}, u"Type")), {}, {}, {}, here});
        return Place::Reference;
    }

    Place enterInReference(const XmlElement& element, std::u16string_view name) {
        if (name == u"DigestMethod")
            references->back().digestMethod = narrow(element.valueOf({}, u"Algorithm"));
        return name == u"Transforms"    ? Place::Transforms
               : name == u"DigestValue" ? Place::DigestValue
                                        : Place::Other;
    }

    Place enterTransform(const XmlElement& element) {
        references->back().transforms.push_back({narrow(element.valueOf({}, u"Algorithm")), {}, {}});
        return Place::Transform;
    }

    Place enterProperty(const XmlElement& element) {
        document.properties.push_back(
            {narrow(element.valueOf({}, u"Id")), narrow(element.valueOf({}, u"Target")), 0, {}, {}, here});
        return Place::Property;
    }

    Place enterOfPackage(const XmlElement& element, Place parent) {
        const std::u16string_view name = element.localName();
        if (parent == Place::Transform) {
            SignatureTransform& transform = references->back().transforms.back();
            if (name == u"RelationshipReference")
                transform.sourceIds.push_back(narrow(element.valueOf({}, u"SourceId")));
            else if (name == u"RelationshipsGroupReference" || name == u"RelationshipGroupReference")
                transform.sourceTypes.push_back(narrow(element.valueOf({}, u"SourceType")));
        }
        if (parent == Place::Property && name == u"SignatureTime")
            return ++document.properties.back().times, Place::Time;
        if (parent == Place::Time)
            return name == u"Format" ? Place::TimeFormat : name == u"Value" ? Place::TimeValue : Place::Other;
        noteForeign(parent);
        return Place::Other;
    }

    /// X509Data and RSAKeyValue only hold what is looked at.
    Place enterInKeyInfo(std::u16string_view name) {
        if (name == u"X509Certificate" && document.certificates.size() < MOST_CERTIFICATES)
            return document.certificates.emplace_back(), Place::Certificate;
        if (name == u"X509Data" || name == u"KeyValue" || name == u"RSAKeyValue")
            return Place::KeyValue;
        return name == u"Modulus" ? Place::Modulus : name == u"Exponent" ? Place::Exponent : Place::Other;
    }

    Place enterAdvanced(std::u16string_view name, Place parent) {
        if (name == u"SigningCertificate" || name == u"SigningCertificateV2")
            return Place::SigningCertificate;
        const bool isInside = parent == Place::SigningCertificate || parent == Place::SigningCertificateData;
        return isInside ? Place::SigningCertificateData : Place::Other;
    }

    /// The first is the signer's.
    Place enterCertificateDigest(const XmlElement& element, std::u16string_view name) {
        if (!document.certificateDigest.empty())
            return Place::Other;
        if (name == u"DigestMethod")
            document.certificateDigestMethod = narrow(element.valueOf({}, u"Algorithm"));
        return name == u"DigestValue" ? Place::CertificateDigest : Place::Other;
    }

    std::string* textOf(Place place) {
        switch (place) {
        case Place::DigestValue:
            return &references->back().digestValue;
        case Place::TimeFormat:
            return &document.properties.back().timeFormat;
        case Place::TimeValue:
            return &document.properties.back().timeValue;
        case Place::Certificate:
            return &document.certificates.back();
        case Place::CertificateDigest:
            return &document.certificateDigest;
        case Place::Modulus:
            return &document.modulus;
        case Place::Exponent:
            return &document.exponent;
        default:
            return nullptr;
        }
    }

    SignatureDocument& document;
    std::vector<Place> places; ///< of the open elements
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

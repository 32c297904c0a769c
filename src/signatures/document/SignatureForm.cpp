#include "signatures/document/SignatureForm.hpp"

#include "signatures/document/SignatureRecords.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "xml/ElementIndex.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;
using xercesc::DOMElement;
using xercesc::DOMNode;
using Text = std::u16string_view;

[[noreturn]] void refuse(const std::string& reason) {
    throw InvalidPartContent("XML signature: " + reason);
}

Text toText(const char16_t* text) {
    return text == nullptr ? Text() : Text(text);
}

/// An element that is read, and its allowed parents.
struct Rule {
    Text name;
    Text parents[2] = {};
};

/// These hold in the whole document. The root is the only one without a parent.
constexpr Rule OF_DOCUMENT[] = {
    {element::SIGNATURE},
    {element::SIGNED_INFO, {element::SIGNATURE}},
    {element::SIGNATURE_VALUE, {element::SIGNATURE}},
    {element::KEY_INFO, {element::SIGNATURE}},
};

/// These hold in `SignedInfo`, in the package object and in `KeyInfo`.
constexpr Rule OF_CONTENT[] = {
    {element::OBJECT, {element::SIGNATURE}},
    {element::CANONICALIZATION_METHOD, {element::SIGNED_INFO}},
    {element::SIGNATURE_METHOD, {element::SIGNED_INFO}},
    {element::MANIFEST, {element::OBJECT}},
    {element::REFERENCE, {element::SIGNED_INFO, element::MANIFEST}},
    {element::TRANSFORMS, {element::REFERENCE, element::RETRIEVAL_METHOD}},
    {element::TRANSFORM, {element::TRANSFORMS}},
    {element::DIGEST_METHOD, {element::REFERENCE}},
    {element::DIGEST_VALUE, {element::REFERENCE}},
    {element::SIGNATURE_PROPERTIES, {element::OBJECT}},
    {element::SIGNATURE_PROPERTY, {element::SIGNATURE_PROPERTIES}},
    {element::KEY_VALUE, {element::KEY_INFO}},
    {element::RSA_KEY_VALUE, {element::KEY_VALUE}},
    {element::MODULUS, {element::RSA_KEY_VALUE}},
    {element::EXPONENT, {element::RSA_KEY_VALUE}},
    {element::X509_DATA, {element::KEY_INFO}},
    {element::X509_CERTIFICATE, {element::X509_DATA}},
};

/// The same for the elements of the package signature namespace, which can have any prefix.
constexpr Rule OF_PACKAGE[] = {
    {package_element::SIGNATURE_TIME, {element::SIGNATURE_PROPERTY}},
    {package_element::FORMAT, {package_element::SIGNATURE_TIME}},
    {package_element::VALUE, {package_element::SIGNATURE_TIME}},
    {package_element::RELATIONSHIP_REFERENCE, {element::TRANSFORM}},
    {package_element::RELATIONSHIP_GROUP_REFERENCE, {element::TRANSFORM}},
};

constexpr Text VALUES[] = {element::DIGEST_VALUE, element::SIGNATURE_VALUE,  element::MODULUS,
                           element::EXPONENT,     element::X509_CERTIFICATE, package_element::FORMAT,
                           package_element::VALUE};

constexpr Text CANONICALIZATIONS[] = {
    u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315",
    u"http://www.w3.org/TR/2001/REC-xml-c14n-20010315#WithComments",
    u"http://www.w3.org/2001/10/xml-exc-c14n#",
    u"http://www.w3.org/2001/10/xml-exc-c14n#WithComments",
    u"http://www.w3.org/2006/12/xml-c14n11",
    u"http://www.w3.org/2006/12/xml-c14n11#WithComments",
};

template <std::size_t N>
const Rule* findRule(const Rule (&rules)[N], Text name) {
    const auto* const found = std::find_if(std::begin(rules), std::end(rules),
                                           [name](const Rule& rule) { return rule.name == name; });
    return found == std::end(rules) ? nullptr : found;
}

template <std::size_t N>
bool isAmong(const Text (&texts)[N], Text text) {
    return std::find(std::begin(texts), std::end(texts), text) != std::end(texts);
}

/// Whether some reader takes an attribute for an identifier: `Id`, `ID`, `xml:id`.
bool isIdentifier(Text name) {
    return name.size() == 2 && (name[0] | 0x20) == u'i' && (name[1] | 0x20) == u'd';
}

Text trimmed(Text text) {
    constexpr char16_t BLANKS[] = u" \t\r\n";
    const std::size_t begin = std::min(text.find_first_not_of(BLANKS), text.size());
    return text.substr(begin, text.find_last_not_of(BLANKS) + 1 - begin);
}

/// One walk through the document.
class FormCheck {
public:
    explicit FormCheck(const SignatureContent& content) {
        for (const Reference& reference : content.signedInfoReferences)
            addReference(reference);
        if (identifiers.count(PACKAGE_OBJECT_ID.wide()) == 0)
            refuse("SignedInfo doesn't reference the package object.");
        identifiers.emplace(SIGNATURE_TIME_ID.text(), 0);
    }

    void check(const ElementIndex& document) {
        for (std::size_t position = 0; position < document.size(); ++position) {
            while (!around.empty() && around.back().end == position)
                around.pop_back();
            const IndexedElement element = document.at(position);
            const Entry entry = describe(element);
            if (around.size() == 1)
                section = sectionOf(entry);
            checkIdentifiers(entry);
            checkPlace(entry);
            around.push_back(entry);
        }
    }

private:
    /// The child of the root whose content is being checked.
    enum class Section { SignedInfo, KeyInfo, PackageObject, ReferencedObject, Other };

    struct Entry {
        const DOMElement* element;
        Text name; // without its prefix
        bool isOfSignature, isOfPackage, hasPrefix;
        std::size_t end;
    };

    void addReference(const Reference& reference) {
        const std::u16string id = reference.referenceURI.getFragment();
        if (!isSameDocumentReference(reference.referenceURI) || !reference.referenceURI.getPath().empty())
            refuse("SignedInfo references something outside of the document.");
        if (!identifiers.emplace(id, 0).second)
            refuse("SignedInfo references " + toUDEString(id) + " more than once.");
    }

    static Entry describe(const IndexedElement& indexed) {
        const DOMElement* const element = indexed.element();
        const Text space = toText(element->getNamespaceURI());
        return {element,
                toText(element->getLocalName()),
                space == vocabulary::signatures::NAMESPACE,
                space == PACKAGE_NAMESPACE,
                !toText(element->getPrefix()).empty(),
                indexed.end()};
    }

    Section sectionOf(const Entry& entry) const {
        if (entry.name == element::SIGNED_INFO)
            return Section::SignedInfo;
        if (entry.name == element::KEY_INFO)
            return Section::KeyInfo;
        const auto id = identifiers.find(toText(entry.element->getAttribute(attribute::ID.wide().data())));
        if (entry.name != element::OBJECT || id == identifiers.end())
            return Section::Other;
        return id->first == PACKAGE_OBJECT_ID ? Section::PackageObject : Section::ReferencedObject;
    }

    void checkIdentifiers(const Entry& entry) {
        const auto* const attributes = entry.element->getAttributes();
        for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
            const DOMNode* const attribute = attributes->item(i);
            if (!isIdentifier(toText(attribute->getLocalName())))
                continue;
            const auto found = identifiers.find(trimmed(toText(attribute->getNodeValue())));
            if (found == identifiers.end())
                continue;
            const std::string id = toUDEString(std::u16string(found->first));
            if (++found->second > 1)
                refuse("The identifier " + id + " stands more than once.");
            if (found->first == SIGNATURE_TIME_ID
                    ? section != Section::PackageObject || entry.name != element::SIGNATURE_PROPERTY
                    : around.size() != 1 || entry.name != element::OBJECT)
                refuse("The identifier " + id + " stands in the wrong place.");
        }
    }

    void checkPlace(const Entry& entry) {
        if (around.empty() && !(entry.isOfSignature && entry.name == element::SIGNATURE))
            refuse("The root isn't a Signature.");
        if (entry.isOfPackage)
            checkPlaceOfPackage(entry);
        if (!entry.isOfSignature && entry.hasPrefix)
            return;
        if (const Rule* const rule = findRule(OF_DOCUMENT, entry.name))
            requirePlace(entry, *rule, entry.isOfSignature);
        if (entry.name == element::MANIFEST && (section == Section::Other || section == Section::KeyInfo))
            refuse("A Manifest lies outside of what SignedInfo references.");
        const Rule* const rule = findRule(OF_CONTENT, entry.name);
        if (rule == nullptr || !isRead())
            return;
        requirePlace(entry, *rule, entry.isOfSignature && !entry.hasPrefix);
        if (entry.name == element::TRANSFORM && section == Section::SignedInfo &&
            !isAmong(CANONICALIZATIONS,
                     toText(entry.element->getAttribute(attribute::ALGORITHM.wide().data()))))
            refuse("SignedInfo references an object through a transform that isn't supported.");
    }

    void checkPlaceOfPackage(const Entry& entry) {
        if (entry.name == package_element::SIGNATURE_TIME && section != Section::PackageObject)
            refuse("A SignatureTime lies outside of the package object.");
        if (entry.name == package_element::SIGNATURE_TIME && std::exchange(hasTime, true))
            refuse("There is more than one SignatureTime.");
        const Rule* const rule = findRule(OF_PACKAGE, entry.name);
        if (rule != nullptr && isRead())
            requirePlace(entry, *rule, true);
    }

    bool isRead() const { return section != Section::ReferencedObject && section != Section::Other; }

    static bool isParent(const Entry& parent, const Rule& rule) {
        return isAmong(rule.parents, parent.name) &&
               (parent.name == package_element::SIGNATURE_TIME ? parent.isOfPackage : parent.isOfSignature);
    }

    void requirePlace(const Entry& entry, const Rule& rule, bool isNamedRight) const {
        const bool isPlacedRight = around.empty() || isParent(around.back(), rule);
        if (!isNamedRight || !isPlacedRight)
            refuse(toUDEString(std::u16string(entry.name)) + " stands in the wrong place.");
        const DOMNode* const text = entry.element->getFirstChild();
        if (isAmong(VALUES, entry.name) && text != nullptr &&
            (text->getNextSibling() != nullptr || text->getNodeType() != DOMNode::TEXT_NODE))
            refuse(toUDEString(std::u16string(entry.name)) + " holds more than a text.");
    }

    std::map<std::u16string, int, std::less<>>
        identifiers; // the relevant ones, with the number of their occurrences
    std::vector<Entry> around;
    Section section = Section::Other;
    bool hasTime = false;
};

} // namespace

void checkSignatureForm(const ElementIndex& document, const SignatureContent& content) {
    FormCheck(content).check(document);
}

} // namespace opc::model

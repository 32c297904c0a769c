#include "coreproperties/CorePropertiesRules.hpp"

#include "coreproperties/CorePropertiesNames.hpp"
#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/PlainDocument.hpp"

#include <opc/model/CorePropertyField.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOMElement.hpp>

#include <algorithm>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;
using Attribute = CorePropertyField::Attribute;

/// The attribute of an element with this local name, in any namespace: the rules mention only local names.
Attribute attributeOf(const xercesc::DOMElement* element) {
    const std::u16string_view name = element->getLocalName();
    const auto isNamed = [name](std::string_view local) {
        return std::equal(name.begin(), name.end(), local.begin(), local.end(),
                          [](char16_t unit, char c) { return unit == static_cast<unsigned char>(c); });
    };
    for (const CorePropertyField& field : CorePropertyField::all())
        if (isNamed(field.name()))
            return field.attribute;
    return isNamed(localPart(KEYWORD)) ? Attribute::Language : Attribute::None;
}

void throwIfUsesMarkupCompatibility(const xercesc::DOMElement* root) {
    const XercesString uri(widen(MARKUP_COMPATIBILITY));
    if (root->isDefaultNamespace(uri.toXMLCh()) || root->lookupPrefix(uri.toXMLCh()) != nullptr)
        throw InvalidPartContent("Core properties shall not use the Markup Compatibility namespace. [M4.2]");
}

void throwIfRefinesDublinCore(const xercesc::DOMElement* root) {
    const CorePropertiesName anyTerm("dcterms:*");
    for (const xercesc::DOMElement* element :
         XercesHelper::getElementsNS(root, anyTerm.namespaceURI, anyTerm.local)) {
        if (attributeOf(element) != Attribute::Type)
            throw InvalidPartContent(
                "Core properties shall not use refinements to the Dublin Core except for "
                "the \"created\" and \"modified\" elements. [M4.3]");
    }
}

/// Checks the attributes of elements. It keeps their names.
class AttributeRules {
public:
    /// Checks `element` and all its descendants, in document order.
    void check(const xercesc::DOMElement* element) const {
        const Attribute allowed = attributeOf(element);
        throwIfHasForbiddenLanguage(element, allowed);
        throwIfHasWrongType(element, allowed);
        for (const xercesc::DOMElement* child = element->getFirstElementChild(); child != nullptr;
             child = child->getNextElementSibling())
            check(child);
    }

private:
    void throwIfHasForbiddenLanguage(const xercesc::DOMElement* element, Attribute allowed) const {
        std::u16string value;
        if (read(element, language, value) && allowed != Attribute::Language)
            throw InvalidPartContent("Core properties shall not use the xml:lang attribute except on the "
                                     "\"keywords\" and \"value\" elements. [M4.4]");
    }

    void throwIfHasWrongType(const xercesc::DOMElement* element, Attribute allowed) const {
        std::u16string value;
        if (read(element, type, value)) {
            // Exactly this text: another prefix for the same type isn't allowed.
            if (allowed != Attribute::Type || value != w3cdtf)
                throw InvalidPartContent("Core properties shall not use the xsi:type attribute except on the "
                                         "\"created\" and \"modified\" elements. [M4.5]");
        } else if (allowed == Attribute::Type) {
            throw InvalidPartContent("Core properties must use the xsi:type attribute on the \"created\" and "
                                     "\"modified\" elements. [M4.5]");
        }
    }

    static bool read(const xercesc::DOMElement* element, const CorePropertiesName& name,
                     std::u16string& value) {
        return XercesHelper::getElementAttributeNS(element, name.namespaceURI, name.local, value);
    }

    const CorePropertiesName language{LANGUAGE};
    const CorePropertiesName type{vocabulary::core_properties::TYPE};
    const std::u16string w3cdtf = widen(W3CDTF);
};

} // namespace

void throwIfCorePropertiesBreakRules(const xercesc::DOMElement* root) {
    throwIfUsesMarkupCompatibility(root);
    throwIfRefinesDublinCore(root);
    AttributeRules().check(root);
}

} // namespace opc::model

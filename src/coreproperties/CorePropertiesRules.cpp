#include "coreproperties/CorePropertiesRules.hpp"

#include "coreproperties/CorePropertiesVocabulary.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOMElement.hpp>

namespace opc::model {

namespace {

using Name = CorePropertiesVocabulary::Name;

/// In whatever namespace: the rules speak of the local names alone.
bool hasLocalName(const xercesc::DOMElement* element, const Name& name) {
    return name.local == element->getLocalName();
}

bool readAttribute(const xercesc::DOMElement* element, const Name& name, std::u16string& value) {
    return XercesHelper::getElementAttributeNS(element, name.namespaceURI, name.local, value);
}

void throwIfUsesMarkupCompatibility(const xercesc::DOMElement* root,
                                    const CorePropertiesVocabulary& vocabulary) {
    const char16_t* const uri = vocabulary.markupCompatibility.toXMLCh();
    if (root->isDefaultNamespace(uri) || root->lookupPrefix(uri) != nullptr)
        throw InvalidPartContent("Core properties shall not use the Markup Compatibility namespace. [M4.2]");
}

void throwIfRefinesDublinCore(const xercesc::DOMElement* root, const CorePropertiesVocabulary& vocabulary) {
    for (const xercesc::DOMElement* element :
         XercesHelper::getElementsNS(root, vocabulary.dublinCoreTerms, XercesString(u"*"))) {
        if (!hasLocalName(element, vocabulary.created) && !hasLocalName(element, vocabulary.modified))
            throw InvalidPartContent(
                "Core properties shall not use refinements to the Dublin Core except for "
                "the \"created\" and \"modified\" elements. [M4.3]");
    }
}

void throwIfHasForbiddenLanguage(const xercesc::DOMElement* element,
                                 const CorePropertiesVocabulary& vocabulary) {
    std::u16string language;
    if (readAttribute(element, vocabulary.lang, language) && !hasLocalName(element, vocabulary.keywords) &&
        !hasLocalName(element, vocabulary.value))
        throw InvalidPartContent("Core properties shall not use the xml:lang attribute except on the "
                                 "\"keywords\" and \"value\" elements. [M4.4]");
}

void throwIfHasWrongType(const xercesc::DOMElement* element, const CorePropertiesVocabulary& vocabulary) {
    const bool isTyped =
        hasLocalName(element, vocabulary.created) || hasLocalName(element, vocabulary.modified);
    std::u16string type;
    if (readAttribute(element, vocabulary.type, type)) {
        // The very text: another prefix for the same type isn't allowed.
        if (!isTyped || type != vocabulary.w3cdtf)
            throw InvalidPartContent("Core properties shall not use the xsi:type attribute except on the "
                                     "\"created\" and \"modified\" elements. [M4.5]");
    } else if (isTyped) {
        throw InvalidPartContent("Core properties must use the xsi:type attribute on the \"created\" and "
                                 "\"modified\" elements. [M4.5]");
    }
}

/// Looks at `element` and all below it, in document order.
void throwIfAttributesAreWrong(const xercesc::DOMElement* element,
                               const CorePropertiesVocabulary& vocabulary) {
    throwIfHasForbiddenLanguage(element, vocabulary);
    throwIfHasWrongType(element, vocabulary);
    for (const xercesc::DOMElement* child = element->getFirstElementChild(); child != nullptr;
         child = child->getNextElementSibling())
        throwIfAttributesAreWrong(child, vocabulary);
}

} // namespace

void throwIfCorePropertiesBreakRules(const xercesc::DOMElement* root,
                                     const CorePropertiesVocabulary& vocabulary) {
    throwIfUsesMarkupCompatibility(root, vocabulary);
    throwIfRefinesDublinCore(root, vocabulary);
    throwIfAttributesAreWrong(root, vocabulary);
}

} // namespace opc::model

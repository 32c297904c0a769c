#include "coreproperties/CorePropertiesParser.hpp"

#include "coreproperties/CorePropertiesNames.hpp"
#include "coreproperties/CorePropertiesRules.hpp"
#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/ElementMeter.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/ReusedParser.hpp"

#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;
using boost::posix_time::ptime;
using xercesc::DOMElement;

/// Stores the value of an element in a field.
/// @{
void readValue(const DOMElement* element, CoreProperties::Text& text) {
    text.emplace();
    XercesHelper::getElementText(element, *text);
}

void readValue(const DOMElement* element, CoreProperties::Time& time) {
    std::u16string text;
    XercesHelper::getElementText(element, text);
    const ptime read = convertStringToTime(text);
    if (!read.is_not_a_date_time())
        time = read;
}

void readValue(const DOMElement* element, CoreProperties::Keywords& keywords) {
    const CorePropertiesName keywordName(KEYWORD);
    const CorePropertiesName languageName(LANGUAGE);
    keywords.emplace();
    const auto add = [&](const DOMElement* keyword) {
        auto& [text, language] = keywords->emplace_back();
        XercesHelper::getTrimmedElementText(keyword, text);
        XercesHelper::getElementAttributeNS(keyword, languageName.namespaceURI, languageName.local, language);
    };
    // The element's own text is the first keyword, even if it is empty.
    add(element);
    for (const DOMElement* keyword :
         XercesHelper::getElementsNS(element, keywordName.namespaceURI, keywordName.local))
        add(keyword);
}
/// @}

IdleParsers& corePropertiesParsers() {
    static IdleParsers& parsers = *new IdleParsers([] {
        auto created = XercesHelper::createParser();
        loadGrammars(created.get(), {&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE,
                                     &schemas::DCMI_TERMS, &schemas::CORE_PROPERTIES});
        return created;
    });
    return parsers;
}

} // namespace

void parseCoreProperties(InputStream& stream, CoreProperties& properties, DocumentShare& share) {
    const XercesGuard guard;
    ReusedParser(corePropertiesParsers()).use(stream, [&](xercesc::DOMLSParser* with, InputStream& document) {
        const ElementMeter meter(with, share);
        const DOMElement* const root =
            XercesHelper::readDocumentFromStream(with, document, true, {}, {})->getDocumentElement();
        properties.clear();
        throwIfCorePropertiesBreakRules(root);
        for (const CorePropertyField& field : CorePropertyField::all()) {
            const CorePropertiesName name(field.element);
            const DOMElement* const element = XercesHelper::getElementNS(root, name.namespaceURI, name.local);
            if (element != nullptr)
                field.visit(properties, [element](auto& value) { readValue(element, value); });
        }
    });
}

} // namespace opc::model

#include "coreproperties/CorePropertiesSerializer.hpp"

#include "coreproperties/CorePropertiesComposer.hpp"
#include "coreproperties/CorePropertiesLoss.hpp"
#include "coreproperties/CorePropertiesNames.hpp"
#include "coreproperties/CorePropertiesRules.hpp"
#include "coreproperties/CorePropertiesScanner.hpp"
#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/ElementMeter.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ReusedParser.hpp"
#include "xml/ScanOrParse.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <stdexcept>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;
using boost::posix_time::ptime;
using xercesc::DOMElement;

/// A larger part goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED = 1 << 20;

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

void setAttribute(DOMElement* element, const CorePropertiesName& name, std::u16string_view value) {
    XercesHelper::setElementAttributeNS(element, name.namespaceURI, name.qualified, std::u16string(value));
}

DOMElement* append(DOMElement* parent, std::string_view name, const std::u16string& text) {
    const CorePropertiesName with(name);
    DOMElement* const element = XercesHelper::appendElementNS(parent, with.namespaceURI, with.qualified);
    XercesHelper::setElementText(element, text);
    return element;
}

/// Appends the element of a field, if it is present.
/// @{
void append(DOMElement* root, const CorePropertyField& field, const CoreProperties::Text& value) {
    if (value)
        append(root, field.element, *value);
}

void append(DOMElement* root, const CorePropertyField& field, const CoreProperties::Time& value) {
    const std::u16string text = value ? convertTimeToString(*value) : std::u16string();
    if (text.empty())
        return;
    DOMElement* const element = append(root, field.element, text);
    if (field.attribute == CorePropertyField::Attribute::Type)
        setAttribute(element, CorePropertiesName(TYPE), widen(W3CDTF));
}

/// The first keyword is the element's own text. Each further keyword is a child.
void append(DOMElement* root, const CorePropertyField& field, const CoreProperties::Keywords& keywords) {
    if (!keywords)
        return;
    const CorePropertiesName languageName(LANGUAGE);
    DOMElement* element = nullptr;
    for (const auto& [text, language] : *keywords) {
        DOMElement* const keyword =
            element != nullptr ? append(element, KEYWORD, text) : append(root, field.element, text);
        if (!language.empty())
            setAttribute(keyword, languageName, language);
        if (element == nullptr)
            element = keyword;
    }
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

/// Arithmetic can lead a ptime out of the years that it can represent.
void throwIfTimesAreOutOfRange(const CoreProperties& properties) {
    for (const CorePropertyField& field : CorePropertyField::all()) {
        const auto* const time = std::get_if<CoreProperties::Time CoreProperties::*>(&field.member);
        try {
            if (time && properties.**time)
                convertTimeToString(*(properties.**time));
        } catch (const std::out_of_range&) {
            throw InvalidPartContent("A time lies outside the years 1400 to 9999");
        }
    }
}

} // namespace

/// The parsers of Xerces that have the schemas.
struct CorePropertiesSerializer::Parser {
    XercesGuard guard;
    ReusedParser reused{corePropertiesParsers()};
};

CorePropertiesSerializer::CorePropertiesSerializer(std::shared_ptr<DocumentBudget> budget)
    : budget(std::move(budget)) {
}

CorePropertiesSerializer::~CorePropertiesSerializer() = default;

void CorePropertiesSerializer::read(InputStream& stream, CoreProperties& properties) {
    read(stream, properties, LARGEST_SCANNED);
}

void CorePropertiesSerializer::parse(InputStream& stream, CoreProperties& properties) {
    read(stream, properties, 0);
}

void CorePropertiesSerializer::read(InputStream& stream, CoreProperties& properties,
                                    std::size_t largestScanned) {
    ReadAheadBuffer buffer;
    DocumentShare share(budget, &XmlLimits::coreProperties);
    MeteredStream metered(stream, share);
    const auto scan = [&](std::string_view document) {
        CoreProperties scanned;
        std::size_t elements = 0;
        if (!scanCoreProperties(document, scanned, elements))
            return false;
        share.addElements(elements);
        properties = scanned;
        return true;
    };
    scanOrParse(metered, buffer, largestScanned, scan,
                [&](InputStream& document) { parse(document, properties, share); });
}

void CorePropertiesSerializer::parse(InputStream& stream, CoreProperties& properties, DocumentShare& share) {
    if (!parser)
        parser = std::make_unique<Parser>();
    parser->reused.use(stream, [&](xercesc::DOMLSParser* with, InputStream& document) {
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

std::string CorePropertiesSerializer::write(const CoreProperties& properties) {
    throwIfTimesAreOutOfRange(properties);
    std::string document;
    composeOrSerialize(
        document, [&](std::string& composed) { return composePlainCoreProperties(properties, composed); },
        [&](OutputStream& stream) { serialize(properties, stream); });
    CoreProperties found;
    const std::vector<unsigned char> written(document.begin(), document.end());
    ByteArrayInAdaptor stream(written);
    read(stream, found);
    if (const CorePropertyField* const lost = findLostCoreProperty(properties, found))
        throw InvalidPartContent("The core property \"" + std::string(lost->name()) +
                                 "\" has a value that doesn't come back from a document as it is");
    return document;
}

std::string CorePropertiesSerializer::serialize(const CoreProperties& properties) {
    std::string document;
    serializeDocument(document, [&](OutputStream& stream) { serialize(properties, stream); });
    return document;
}

void CorePropertiesSerializer::serialize(const CoreProperties& properties, OutputStream& stream) {
    const XercesGuard guard;
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    const CorePropertiesName rootName(ROOT);
    DOMElement* const root =
        XercesHelper::appendElementNS(document.get(), rootName.namespaceURI, rootName.qualified);
    for (const auto& [prefix, uri] : NAMESPACES)
        if (prefix != prefixOf(ROOT)) // Xerces declares that one
            setAttribute(root, CorePropertiesName("xmlns:" + std::string(prefix)), widen(uri));
    for (const CorePropertyField& field : CorePropertyField::all())
        field.visit(properties, [&](const auto& value) { append(root, field, value); });
    const auto writer = XercesHelper::createPrettyPrintingWriter();
    XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
}

} // namespace opc::model

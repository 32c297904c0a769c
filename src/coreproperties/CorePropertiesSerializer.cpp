#include "coreproperties/CorePropertiesSerializer.hpp"

#include "coreproperties/CorePropertiesComposer.hpp"
#include "coreproperties/CorePropertiesLoss.hpp"
#include "coreproperties/CorePropertiesParser.hpp"
#include "coreproperties/CorePropertiesScanner.hpp"
#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/ComposeOrSerialize.hpp"
#include "xml/PlainDocument.hpp"
#include "xml/ScanOrParse.hpp"
#include "xml/XmlDocument.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/CorePropertyField.hpp>

#include <stdexcept>
#include <utility>

namespace opc::model {

namespace {

using namespace vocabulary::core_properties;
using boost::posix_time::ptime;

/// A larger part goes to the parser at once, so that it isn't kept in memory as a whole.
constexpr std::size_t LARGEST_SCANNED_PROPERTIES = 1 << 20;

/// Opens the element of a field, with its text.
void open(XmlDocument& document, std::string_view name, const std::u16string& text) {
    document.open(widen(namespaceOf(prefixOf(name))), widen(name));
    document.setText(text);
}

void setAttribute(XmlDocument& document, std::string_view name, std::u16string_view value) {
    document.setAttribute(widen(namespaceOf(prefixOf(name))), widen(name), value);
}

/// Appends the element of a field, if it is present.
/// @{
void append(XmlDocument& document, const CorePropertyField& field, const CoreProperties::Text& value) {
    if (!value)
        return;
    open(document, field.element, *value);
    document.close();
}

void append(XmlDocument& document, const CorePropertyField& field, const CoreProperties::Time& value) {
    const std::u16string text = value ? convertTimeToString(*value) : std::u16string();
    if (text.empty())
        return;
    open(document, field.element, text);
    if (field.attribute == CorePropertyField::Attribute::Type)
        setAttribute(document, vocabulary::core_properties::TYPE, widen(W3CDTF));
    document.close();
}

/// The first keyword is the element's own text. Each further keyword is a child.
void append(XmlDocument& document, const CorePropertyField& field, const CoreProperties::Keywords& keywords) {
    if (!keywords || keywords->empty())
        return;
    for (const auto& keyword : *keywords) {
        const bool isFirst = &keyword == &keywords->front();
        open(document, isFirst ? field.element : KEYWORD, keyword.first);
        if (!keyword.second.empty())
            setAttribute(document, LANGUAGE, keyword.second);
        if (!isFirst)
            document.close();
    }
    document.close();
}
/// @}

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

CorePropertiesSerializer::CorePropertiesSerializer(std::shared_ptr<DocumentBudget> budget)
    : budget(std::move(budget)) {
}

void CorePropertiesSerializer::read(InputStream& stream, CoreProperties& properties) {
    read(stream, properties, LARGEST_SCANNED_PROPERTIES);
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
        properties = std::move(scanned);
        return true;
    };
    scanOrParse(metered, buffer, largestScanned, scan,
                [&](InputStream& document) { parseCoreProperties(document, properties, share); });
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
    const auto document = makeXmlDocument(XmlDocument::Form::Part);
    document->open(widen(namespaceOf(prefixOf(ROOT))), widen(ROOT));
    for (const auto& [prefix, uri] : NAMESPACES)
        if (prefix != prefixOf(ROOT)) // Xerces declares that one
            setAttribute(*document, "xmlns:" + std::string(prefix), widen(uri));
    for (const CorePropertyField& field : CorePropertyField::all())
        field.visit(properties, [&](const auto& value) { append(*document, field, value); });
    document->write(stream);
}

} // namespace opc::model

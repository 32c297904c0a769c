#include "coreproperties/CorePropertiesSerializer.hpp"

#include "coreproperties/CorePropertiesComposer.hpp"
#include "coreproperties/CorePropertiesLoss.hpp"
#include "coreproperties/CorePropertiesRules.hpp"
#include "coreproperties/CorePropertiesScanner.hpp"
#include "coreproperties/CorePropertiesVocabulary.hpp"
#include "xml/DocumentPoolReset.hpp"
#include "xml/ElementMeter.hpp"
#include "xml/EmbeddedSchemas.hpp"
#include "xml/GrammarLoading.hpp"
#include "xml/ReplayedStream.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Time.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/XercesDeleter.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <stdexcept>

#include <xercesc/dom/DOM.hpp>

namespace opc::model {

namespace {

using boost::posix_time::ptime;
using xercesc::DOMElement;
using Name = CorePropertiesVocabulary::Name;

/// A part beyond this size goes to the parser at once, without being held whole.
constexpr std::size_t LARGEST_SCANNED = 1 << 20;

const DOMElement* find(const DOMElement* root, const Name& name) {
    return XercesHelper::getElementNS(root, name.namespaceURI, name.local);
}

/// Takes the text of one element into a field, by the field's setter.
class FieldReader {
public:
    FieldReader(const DOMElement* documentRoot, CoreProperties& target)
        : root(documentRoot), properties(target) {}

    void read(const Name& name, void (CoreProperties::*set)(const std::u16string&)) const {
        std::u16string text;
        if (XercesHelper::getElementText(find(root, name), text))
            (properties.*set)(text);
    }

    void read(const Name& name, void (CoreProperties::*set)(ptime)) const {
        std::u16string text;
        if (!XercesHelper::getElementText(find(root, name), text))
            return;
        const ptime time = convertStringToTime(text);
        if (!time.is_not_a_date_time())
            (properties.*set)(time);
    }

private:
    const DOMElement* root;
    CoreProperties& properties;
};

/// Appends an element for each field that is present.
class FieldWriter {
public:
    FieldWriter(DOMElement* documentRoot, const CorePropertiesVocabulary& vocabulary)
        : root(documentRoot), names(vocabulary) {}

    void write(const Name& name, const CoreProperties::Text& value) const {
        if (value)
            append(root, name, *value);
    }

    /// @param isTyped  whether the element says that its type is W3CDTF
    void write(const Name& name, const CoreProperties::Time& value, bool isTyped) const {
        const std::u16string text = value ? convertTimeToString(*value) : std::u16string();
        if (text.empty())
            return;
        DOMElement* const element = append(root, name, text);
        if (isTyped)
            setAttribute(element, names.type, names.w3cdtf);
    }

    /// The first keyword is the element's own text, and each other one a child.
    void write(const Name& name, const CoreProperties::Keywords& keywords) const {
        if (!keywords)
            return;
        DOMElement* element = nullptr;
        for (const auto& [text, language] : *keywords) {
            DOMElement* const keyword =
                element != nullptr ? append(element, names.value, text) : append(root, name, text);
            if (!language.empty())
                setAttribute(keyword, names.lang, language);
            if (element == nullptr)
                element = keyword;
        }
    }

    static void setAttribute(DOMElement* element, const Name& name, const std::u16string& value) {
        XercesHelper::setElementAttributeNS(element, name.namespaceURI, name.qualified, value);
    }

private:
    static DOMElement* append(DOMElement* parent, const Name& name, const std::u16string& text) {
        DOMElement* const element = XercesHelper::appendElementNS(parent, name.namespaceURI, name.qualified);
        XercesHelper::setElementText(element, text);
        return element;
    }

    DOMElement* root;
    const CorePropertiesVocabulary& names;
};

void readKeywords(const DOMElement* root, const CorePropertiesVocabulary& names, CoreProperties& properties) {
    const DOMElement* const element = find(root, names.keywords);
    if (element == nullptr)
        return;
    CoreProperties::KeywordList keywords;
    const auto add = [&](const DOMElement* keyword) {
        auto& [text, language] = keywords.emplace_back();
        XercesHelper::getTrimmedElementText(keyword, text);
        XercesHelper::getElementAttributeNS(keyword, names.lang.namespaceURI, names.lang.local, language);
    };
    // The element's own text is the first keyword, even if it is empty.
    add(element);
    for (const DOMElement* value :
         XercesHelper::getElementsNS(element, names.value.namespaceURI, names.value.local))
        add(value);
    properties.setKeywords(keywords);
}

/// Arithmetic leads a ptime out of the years that it can say.
void throwIfTimesAreOutOfRange(const CoreProperties& properties) {
    for (const CoreProperties::Time& time :
         {properties.getCreated(), properties.getLastPrinted(), properties.getModified()}) {
        try {
            if (time)
                convertTimeToString(*time);
        } catch (const std::out_of_range&) {
            throw InvalidPartContent("A time lies outside the years 1400 to 9999");
        }
    }
}

} // namespace

/// What Xerces works with.
struct CorePropertiesSerializer::Xml {
    XercesGuard guard;
    std::unique_ptr<xercesc::DOMLSParser, XercesDeleter> parser; // made by the first reading
    std::unique_ptr<xercesc::DOMLSSerializer, XercesDeleter> writer{
        XercesHelper::createPrettyPrintingWriter()};
    CorePropertiesVocabulary names;
};

CorePropertiesSerializer::CorePropertiesSerializer(std::shared_ptr<DocumentBudget> ofPackage)
    : budget(std::move(ofPackage)) {
}

CorePropertiesSerializer::~CorePropertiesSerializer() = default;

CorePropertiesSerializer::Xml& CorePropertiesSerializer::xml() {
    if (!made)
        made = std::make_unique<Xml>();
    return *made;
}

void CorePropertiesSerializer::read(InputStream& stream, CoreProperties& properties) {
    ReadAheadBuffer buffer;
    DocumentShare share(budget, &XmlLimits::coreProperties);
    MeteredStream metered(stream, share);
    ReplayedStream replayed(metered);
    CoreProperties scanned;
    std::size_t elements = 0;
    const auto document = replayed.readAhead(buffer, LARGEST_SCANNED);
    if (document && scanCoreProperties(*document, scanned, elements)) {
        share.addElements(elements);
        properties = scanned;
    } else {
        parseCounted(replayed, properties, share);
    }
}

void CorePropertiesSerializer::parse(InputStream& stream, CoreProperties& properties) {
    DocumentShare share(budget, &XmlLimits::coreProperties);
    MeteredStream metered(stream, share);
    parseCounted(metered, properties, share);
}

void CorePropertiesSerializer::parseCounted(InputStream& stream, CoreProperties& properties,
                                            DocumentShare& share) {
    Xml& with = xml();
    if (!with.parser) {
        auto loaded = XercesHelper::createParser();
        loadGrammars(loaded.get(), {&schemas::XML, &schemas::DUBLIN_CORE, &schemas::DCMI_TYPE,
                                    &schemas::DCMI_TERMS, &schemas::CORE_PROPERTIES});
        with.parser = std::move(loaded);
    }
    const DocumentPoolReset reset(with.parser.get());
    const xercesc::DOMDocument* document = nullptr;
    try {
        const ElementMeter meter(with.parser.get(), share);
        document = XercesHelper::readDocumentFromStream(with.parser.get(), stream, true, {}, {});
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
    properties.clear();
    const DOMElement* root = document->getDocumentElement();
    const CorePropertiesVocabulary& names = with.names;
    throwIfCorePropertiesBreakRules(root, names);

    const FieldReader fields(root, properties);
    fields.read(names.category, &CoreProperties::setCategory);
    fields.read(names.contentStatus, &CoreProperties::setContentStatus);
    fields.read(names.created, &CoreProperties::setCreated);
    fields.read(names.creator, &CoreProperties::setCreator);
    fields.read(names.description, &CoreProperties::setDescription);
    fields.read(names.identifier, &CoreProperties::setIdentifier);
    readKeywords(root, names, properties);
    fields.read(names.language, &CoreProperties::setLanguage);
    fields.read(names.lastModifiedBy, &CoreProperties::setLastModifiedBy);
    fields.read(names.lastPrinted, &CoreProperties::setLastPrinted);
    fields.read(names.modified, &CoreProperties::setModified);
    fields.read(names.revision, &CoreProperties::setRevision);
    fields.read(names.subject, &CoreProperties::setSubject);
    fields.read(names.title, &CoreProperties::setTitle);
    fields.read(names.version, &CoreProperties::setVersion);
}

std::string CorePropertiesSerializer::compose(const CoreProperties& properties) {
    throwIfTimesAreOutOfRange(properties);
    std::string plain;
    std::vector<unsigned char> document;
    if (composePlainCoreProperties(properties, plain)) {
        document.assign(plain.begin(), plain.end());
    } else {
        ByteArrayOutAdaptor stream(document);
        writeByXerces(properties, stream);
    }
    CoreProperties found;
    ByteArrayInAdaptor stream(document);
    read(stream, found);
    if (const char* lost = findLostCoreProperty(properties, found))
        throw InvalidPartContent("The core property \"" + std::string(lost) +
                                 "\" has a value that doesn't come back from a document as it is");
    return std::string(document.begin(), document.end());
}

void CorePropertiesSerializer::writeByXerces(const CoreProperties& properties, OutputStream& stream) {
    const Xml& with = xml();
    const CorePropertiesVocabulary& names = with.names;
    const auto document = XercesHelper::createDocument();
    document->setXmlStandalone(true);
    DOMElement* root =
        XercesHelper::appendElementNS(document.get(), names.root.namespaceURI, names.root.qualified);
    FieldWriter::setAttribute(root, names.dcPrefix, names.dublinCoreElements.toString());
    FieldWriter::setAttribute(root, names.dcmitypePrefix, names.dcmiTypes.toString());
    FieldWriter::setAttribute(root, names.dctermsPrefix, names.dublinCoreTerms.toString());
    FieldWriter::setAttribute(root, names.xsiPrefix, names.xmlSchemaInstance.toString());

    const FieldWriter fields(root, names);
    fields.write(names.category, properties.getCategory());
    fields.write(names.contentStatus, properties.getContentStatus());
    fields.write(names.created, properties.getCreated(), true);
    fields.write(names.creator, properties.getCreator());
    fields.write(names.description, properties.getDescription());
    fields.write(names.identifier, properties.getIdentifier());
    fields.write(names.keywords, properties.getKeywords());
    fields.write(names.language, properties.getLanguage());
    fields.write(names.lastModifiedBy, properties.getLastModifiedBy());
    fields.write(names.lastPrinted, properties.getLastPrinted(), false);
    fields.write(names.modified, properties.getModified(), true);
    fields.write(names.revision, properties.getRevision());
    fields.write(names.subject, properties.getSubject());
    fields.write(names.title, properties.getTitle());
    fields.write(names.version, properties.getVersion());
    try {
        XercesHelper::writeDocumentToStream(with.writer.get(), document.get(), stream);
    } catch (const InvalidXMLDocument& e) {
        throw translated<InvalidPartContent>(e, e.what());
    }
}

} // namespace opc::model

#include "xml/EventParsing.hpp"

#include "xml/DocumentLimits.hpp"
#include "xml/ErrorHandlerAttachment.hpp"
#include "xml/ParserSettings.hpp"
#include "xml/ReusedParser.hpp"
#include "xml/SchemaParsers.hpp"
#include "xml/XercesFailures.hpp"
#include "xml/XercesSource.hpp"

#include <opc/model/XercesGuard.hpp>

#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <string_view>
#include <vector>

namespace opc::model {

namespace {

std::u16string_view viewOf(const XMLCh* text) {
    return text == nullptr ? std::u16string_view() : std::u16string_view(text);
}

/// A start tag as the scanner tells it.
class ScannedElement final : public XmlElement {
public:
    ScannedElement(const xercesc::XMLScanner& scanner, const xercesc::XMLElementDecl& element,
                   unsigned int uriId, const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& all,
                   XMLSize_t count)
        : scanner(scanner), element(element), uriId(uriId), ownPrefix(prefix) {
        for (XMLSize_t i = 0; i < count; ++i) {
            const xercesc::XMLAttr* const one = all.elementAt(i);
            (isDeclaration(*one) ? declarations : attributes).push_back(one);
        }
    }

    std::u16string_view namespaceURI() const override { return uriOf(uriId); }
    std::u16string_view localName() const override { return viewOf(element.getBaseName()); }
    std::u16string_view prefix() const override { return viewOf(ownPrefix); }
    std::size_t attributeCount() const override { return attributes.size(); }
    XmlAttribute attribute(std::size_t index) const override {
        const xercesc::XMLAttr& found = *attributes.at(index);
        const bool hasPrefix = !viewOf(found.getPrefix()).empty();
        return {hasPrefix ? uriOf(found.getURIId()) : std::u16string_view(), viewOf(found.getName()),
                viewOf(found.getValue()), viewOf(found.getPrefix())};
    }
    std::size_t declarationCount() const override { return declarations.size(); }
    XmlNamespaceDeclaration declaration(std::size_t index) const override {
        const xercesc::XMLAttr& found = *declarations.at(index);
        const bool hasPrefix = !viewOf(found.getPrefix()).empty();
        return {hasPrefix ? viewOf(found.getName()) : std::u16string_view(), viewOf(found.getValue())};
    }

private:
    static bool isDeclaration(const xercesc::XMLAttr& attribute) {
        const std::u16string_view prefix = viewOf(attribute.getPrefix());
        return prefix.empty() ? viewOf(attribute.getName()) == u"xmlns" : prefix == u"xmlns";
    }

    std::u16string_view uriOf(unsigned int id) const { return viewOf(scanner.getURIText(id)); }

    const xercesc::XMLScanner& scanner;
    const xercesc::XMLElementDecl& element;
    const unsigned int uriId;
    const XMLCh* const ownPrefix;
    std::vector<const xercesc::XMLAttr*> attributes;
    std::vector<const xercesc::XMLAttr*> declarations;
};

/// Stands in front of the parser's builder of trees, and tells events in place of it: no tree is made.
class EventsLink final : public DocumentHandlerLink {
public:
    EventsLink(xercesc::DOMLSParser* parser, XmlEvents& events)
        : DocumentHandlerLink(parser), events(events) {}

    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh*, const XMLCh*) override {
        events.onVersion(viewOf(version));
        events.onDeclaration(viewOf(encoding));
    }
    void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uriId, const XMLCh* prefix,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t attributeCount,
                      bool isEmpty, bool) override {
        const xercesc::Locator* const place = scanner().getLocator();
        events.onStart(ScannedElement(scanner(), declaration, uriId, prefix, attributes, attributeCount),
                       {place->getLineNumber(), place->getColumnNumber()});
        if (isEmpty) // its end isn't told
            events.onEnd();
    }
    void endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) override {
        events.onEnd();
    }
    void docCharacters(const XMLCh* text, XMLSize_t length, bool) override {
        if (length != 0)
            events.onText({text, length});
    }
    void ignorableWhitespace(const XMLCh*, XMLSize_t, bool) override {} // outside the root
    void docComment(const XMLCh* text) override { events.onComment(viewOf(text)); }
    void docPI(const XMLCh* target, const XMLCh* data) override {
        events.onInstruction(viewOf(target), viewOf(data));
    }
    void startEntityReference(const xercesc::XMLEntityDecl&) override {}
    void endEntityReference(const xercesc::XMLEntityDecl&) override {}

private:
    XmlEvents& events;
};

/// Keeps what a caller throws from running through Xerces, which leaks then.
class GuardedEvents final : public XmlEvents {
public:
    explicit GuardedEvents(XmlEvents& events) : events(events) {}

    void onVersion(std::u16string_view version) override {
        guard([&] { events.onVersion(version); });
    }
    void onDeclaration(std::u16string_view encoding) override {
        guard([&] { events.onDeclaration(encoding); });
    }
    void onStart(const XmlElement& element, const XmlPlace& behind) override {
        guard([&] { events.onStart(element, behind); });
    }
    void onEnd() override {
        guard([&] { events.onEnd(); });
    }
    void onText(std::u16string_view text) override {
        guard([&] { events.onText(text); });
    }
    void onComment(std::u16string_view text) override {
        guard([&] { events.onComment(text); });
    }
    void onInstruction(std::u16string_view target, std::u16string_view data) override {
        guard([&] { events.onInstruction(target, data); });
    }

    void rethrowIfFailed() const {
        if (failure)
            std::rethrow_exception(failure);
    }

private:
    /// Xerces knows `InvalidXMLDocument` from `DocumentLimits`: it ends the parse.
    template <typename Operation>
    void guard(Operation&& operation) {
        if (failure)
            return;
        try {
            operation();
        } catch (...) {
            failure = std::current_exception();
            throw InvalidXMLDocument("The reading was ended");
        }
    }

    XmlEvents& events;
    std::exception_ptr failure;
};

void parse(xercesc::DOMLSParser* parser, InputStream& stream, XmlEvents& events) {
    XercesErrorHandler handler;
    SourceState source;
    GuardedEvents guarded(events);
    try {
        translateXercesFailures([&] {
            const xercesc::Wrapper4InputSource input(new InputStreamXercesSource(stream, source));
            configureParser(parser->getDomConfig(), false, false);
            const ErrorHandlerAttachment attachment(parser->getDomConfig(), handler);
            const EventsLink link(parser, guarded);
            const DocumentLimits limits(parser, source.bytesSinceLastToken);
            parser->parse(&input);
        });
    } catch (const InvalidXMLDocument&) {
        guarded.rethrowIfFailed();
        if (!source.failure)
            throw;
    }
    if (source.failure)
        std::rethrow_exception(source.failure);
    handler.throwIfError();
}

} // namespace

void parseXmlDocument(InputStream& stream, XmlEvents& events) {
    const XercesGuard guard;
    ReusedParser parser(parsersWithoutSchema());
    parser.use(stream, [&events](xercesc::DOMLSParser* owned, InputStream& counted) {
        parse(owned, counted, events);
    });
}

} // namespace opc::model

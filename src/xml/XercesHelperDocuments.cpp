#include <opc/model/XercesHelper.hpp>

#include "xml/DocumentLimits.hpp"
#include "xml/DocumentOutput.hpp"
#include "xml/DocumentUnits.hpp"
#include "xml/ErrorHandlerAttachment.hpp"
#include "xml/ParserSettings.hpp"
#include "xml/XercesFailures.hpp"
#include "xml/XercesSource.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/model/XercesGuard.hpp>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/Wrapper4InputSource.hpp>
#include <xercesc/framework/XMLFormatter.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <algorithm>

namespace opc::model {

namespace {

using xercesc::DOMConfiguration;
using xercesc::DOMDocument;
using xercesc::DOMLSParser;
using xercesc::DOMLSSerializer;
using xercesc::XMLPlatformUtils;
using xercesc::XMLUni;

/// Receives what Xerces writes, in many small pieces.
class StringTarget final : public xercesc::XMLFormatTarget {
public:
    void writeChars(const XMLByte* toWrite, XMLSize_t count, xercesc::XMLFormatter*) override {
        bytes.append(reinterpret_cast<const char*>(toWrite), count);
    }

    const std::string& written() const { return bytes; }

private:
    std::string bytes;
};

/// Sets the place of a further schema in a parser while this object lives.
class SchemaLocation {
public:
    SchemaLocation(DOMConfiguration* configuration, const std::u16string& location,
                   const std::u16string& namespaceURI)
        : configuration(configuration) {
        const bool inNamespace = !namespaceURI.empty();
        const char16_t* const name = inNamespace ? XMLUni::fgXercesSchemaExternalSchemaLocation
                                                 : XMLUni::fgXercesSchemaExternalNoNameSpaceSchemaLocation;
        const std::u16string value = inNamespace ? namespaceURI + u' ' + location : location;
        if (location.empty() || !configuration->canSetParameter(name, value.c_str()))
            return;
        configuration->setParameter(name, value.c_str());
        parameter = name;
    }
    SchemaLocation(const SchemaLocation&) = delete;
    SchemaLocation& operator=(const SchemaLocation&) = delete;
    ~SchemaLocation() {
        if (parameter)
            configuration->setParameter(parameter, static_cast<const void*>(nullptr));
    }

private:
    DOMConfiguration* configuration;
    const char16_t* parameter = nullptr;
};

xercesc::DOMImplementation* implementation() {
    return xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
}

} // namespace

std::unique_ptr<DOMDocument, XercesDeleter> XercesHelper::createDocument() {
    const XercesGuard guard;
    return translateLackOfMemory([] {
        return std::unique_ptr<DOMDocument, XercesDeleter>(
            implementation()->createDocument(XMLPlatformUtils::fgMemoryManager));
    });
}

std::unique_ptr<DOMLSParser, XercesDeleter> XercesHelper::createParser() {
    const XercesGuard guard;
    return translateLackOfMemory([] {
        return std::unique_ptr<DOMLSParser, XercesDeleter>(
            implementation()->createLSParser(xercesc::DOMImplementationLS::MODE_SYNCHRONOUS, nullptr,
                                             XMLPlatformUtils::fgMemoryManager, nullptr));
    });
}

std::unique_ptr<DOMLSSerializer, XercesDeleter> XercesHelper::createWriter() {
    const XercesGuard guard;
    return translateLackOfMemory([] {
        return std::unique_ptr<DOMLSSerializer, XercesDeleter>(
            implementation()->createLSSerializer(XMLPlatformUtils::fgMemoryManager));
    });
}

std::unique_ptr<DOMLSSerializer, XercesDeleter> XercesHelper::createPrettyPrintingWriter() {
    const XercesGuard guard;
    auto writer = createWriter();
    translateLackOfMemory([&writer] {
        writer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        writer->getDomConfig()->setParameter(XMLUni::fgDOMWRTXercesPrettyPrint, false);
    });
    return writer;
}

DOMDocument* XercesHelper::readDocumentFromStream(DOMLSParser* parser, InputStream& stream, bool validate,
                                                  const std::u16string& schemaLocation,
                                                  const std::u16string& schemaNamespace) {
    return readDocumentHelper(parser, stream, validate, schemaLocation, schemaNamespace,
                              XercesEncoding::UTF8);
}

DOMDocument* XercesHelper::readDocumentFromString(DOMLSParser* parser, const std::u16string& text,
                                                  bool validate, const std::u16string& schemaLocation,
                                                  const std::u16string& schemaNamespace) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(text.data());
    const std::vector<unsigned char> bytes(begin, begin + text.size() * sizeof(char16_t));
    ByteArrayInAdaptor stream(bytes);
    return readDocumentHelper(parser, stream, validate, schemaLocation, schemaNamespace,
                              XercesEncoding::UTF16);
}

DOMDocument* XercesHelper::readDocumentHelper(DOMLSParser* parser, InputStream& stream, bool validate,
                                              const std::u16string& schemaLocation,
                                              const std::u16string& schemaNamespace,
                                              const XercesEncoding& encoding) {
    const XercesGuard guard;
    XercesErrorHandler handler;
    SourceState source;
    DOMDocument* document = nullptr;
    try {
        document = translateXercesFailures([&] {
            xercesc::Wrapper4InputSource input(new InputStreamXercesSource(stream, source));
            if (encoding == XercesEncoding::UTF16)
                input.setEncoding(XMLUni::fgUTF16EncodingString);
            DOMConfiguration* const configuration = parser->getDomConfig();
            configureParser(configuration, validate, !schemaLocation.empty());
            const ErrorHandlerAttachment attachment(configuration, handler);
            const SchemaLocation location(configuration, schemaLocation, schemaNamespace);
            const DocumentLimits limits(parser, source.bytesSinceLastToken);
            return parser->parse(&input);
        });
    } catch (const InvalidXMLDocument&) {
        if (!source.failure)
            throw;
    }
    if (source.failure)
        std::rethrow_exception(source.failure);
    handler.throwIfError();
    throwIfUnsupportedEncoding(document);
    throwIfDTDIsPresent(document);
    return document;
}

void XercesHelper::writeDocumentToStream(DOMLSSerializer* serializer, const DOMDocument* document,
                                         OutputStream& stream) {
    writeDocumentHelper(serializer, document, stream, XercesEncoding::UTF8, XmlDeclaration::Include);
}

void XercesHelper::writeDocumentToString(DOMLSSerializer* serializer, const DOMDocument* document,
                                         std::u16string& result, const XmlDeclaration& declaration) {
    std::vector<unsigned char> bytes;
    ByteArrayOutAdaptor stream(bytes);
    writeDocumentHelper(serializer, document, stream, XercesEncoding::UTF16, declaration);
    result.resize(bytes.size() / sizeof(char16_t));
    std::copy_n(bytes.begin(), result.size() * sizeof(char16_t),
                reinterpret_cast<unsigned char*>(result.data()));
}

void XercesHelper::writeDocumentHelper(DOMLSSerializer* serializer, const DOMDocument* document,
                                       OutputStream& stream, const XercesEncoding& encoding,
                                       const XmlDeclaration& declaration) {
    const XercesGuard guard;
    throwIfDTDIsPresent(document);
    StringTarget target;
    XercesErrorHandler handler;
    try {
        translateXercesFailures([&] {
            const ErrorHandlerAttachment attachment(serializer->getDomConfig(), handler);
            if (declaration == XmlDeclaration::Omit)
                serializer->getDomConfig()->setParameter(XMLUni::fgDOMXMLDeclaration, false);
            const std::unique_ptr<xercesc::DOMLSOutput, XercesDeleter> output(
                implementation()->createLSOutput(XMLPlatformUtils::fgMemoryManager));
            output->setByteStream(&target);
            if (encoding == XercesEncoding::UTF16)
                output->setEncoding(XMLUni::fgUTF16EncodingString);
            serializer->write(document, output.get());
        });
    } catch (const InvalidXMLDocument&) {
        handler.throwIfError(); // the handler's error is more exact than a later exception
        throw;
    }
    handler.throwIfError();
    writeDocument(target.written(), stream); // only now: the writing has succeeded
}

void XercesHelper::throwIfUnsupportedEncoding(const DOMDocument* document) {
    const char16_t* const encoding = document->getXmlEncoding();
    if (!encoding || !*encoding)
        return;
    for (const char16_t* allowed : {u"UTF-8", u"utf-8", u"UTF-16", u"utf-16"}) {
        if (xercesc::XMLString::equals(encoding, allowed))
            return;
    }
    throw InvalidXMLDocument(OTHER_ENCODING);
}

void XercesHelper::throwIfDTDIsPresent(const DOMDocument* document) {
    if (document->getDoctype())
        throw InvalidXMLDocument("XML content can not contain a DTD");
}

} // namespace opc::model

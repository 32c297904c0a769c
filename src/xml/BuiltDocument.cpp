#include "xml/XmlDocument.hpp"

#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

#include <map>
#include <string>

namespace opc::model {

namespace {

using xercesc::DOMElement;

/// The names of a document, which has few, as Xerces takes them.
class Names {
public:
    const XercesString& operator[](std::u16string_view name) {
        auto found = names.find(name);
        if (found == names.end()) {
            std::u16string key(name);
            found = names.try_emplace(key, key).first;
        }
        return found->second;
    }

private:
    std::map<std::u16string, XercesString, std::less<>> names;
};

class BuiltDocument final : public XmlDocument {
public:
    explicit BuiltDocument(Form form) : form(form), document(XercesHelper::createDocument()) {
        document->setXmlStandalone(form == Form::Part);
    }

    void open(std::u16string_view namespaceURI, std::u16string_view qualifiedName) override {
        const XercesString& name = names[qualifiedName];
        if (namespaceURI.data() == nullptr)
            innermost = innermost ? XercesHelper::appendElement(innermost, name)
                                  : XercesHelper::appendElement(document.get(), name);
        else
            innermost = innermost ? XercesHelper::appendElementNS(innermost, names[namespaceURI], name)
                                  : XercesHelper::appendElementNS(document.get(), names[namespaceURI], name);
    }

    void close() override { innermost = dynamic_cast<DOMElement*>(innermost->getParentNode()); }

    void setAttribute(std::u16string_view namespaceURI, std::u16string_view qualifiedName,
                      std::u16string_view value) override {
        const std::u16string text(value);
        if (namespaceURI.data() == nullptr)
            XercesHelper::setElementAttribute(innermost, names[qualifiedName], text);
        else
            XercesHelper::setElementAttributeNS(innermost, names[namespaceURI], names[qualifiedName], text);
    }

    void setText(std::u16string_view text) override {
        XercesHelper::setElementText(innermost, std::u16string(text));
    }

    void write(OutputStream& stream) const override {
        const auto writer =
            form == Form::Part ? XercesHelper::createPrettyPrintingWriter() : XercesHelper::createWriter();
        XercesHelper::writeDocumentToStream(writer.get(), document.get(), stream);
    }

private:
    const XercesGuard guard;
    const Form form;
    Names names;
    const std::unique_ptr<xercesc::DOMDocument, XercesDeleter> document;
    DOMElement* innermost = nullptr;
};

} // namespace

std::unique_ptr<XmlDocument> makeXmlDocument(XmlDocument::Form form) {
    return std::make_unique<BuiltDocument>(form);
}

} // namespace opc::model

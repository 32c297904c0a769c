#include "module/XercesModule.hpp"

#include "ModuleLoading.hpp"

#include <opc/model/Errors.hpp>

namespace opc::model {

namespace {

/// @throws XmlParserNotLoaded  the module isn't there. A later call looks for it again
const XercesModule& module() {
    static const auto& loaded = bedrock::loadModule<XercesModule, XmlParserNotLoaded>(
        OPCMODEL_XERCES_MODULE, "opcmodelXerces", "The XML parser can't be loaded: ");
    return loaded;
}

} // namespace

std::unique_ptr<ElementReader> makeElementReader(ElementReader::Kind kind) {
    return module().elements(kind);
}

std::unique_ptr<XmlDocument> makeXmlDocument(XmlDocument::Form form) {
    return module().document(form);
}

std::unique_ptr<SchemaType> makeSchemaType(SchemaType::Name name) {
    return module().type(name);
}

void parseCoreProperties(InputStream& stream, CoreProperties& properties, DocumentShare& share) {
    module().coreProperties(stream, properties, share);
}

std::unique_ptr<SignatureXml> makeSignatureXml() {
    return module().signatures();
}

void parseXmlDocument(InputStream& stream, XmlEvents& events) {
    module().events(stream, events);
}

void XmlRules::check(InputStream& stream) {
    module().rules(stream);
}

} // namespace opc::model

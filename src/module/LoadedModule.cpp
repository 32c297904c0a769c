#include "module/XercesModule.hpp"

#include <opc/model/Errors.hpp>

#include <dlfcn.h>

#include <string>

namespace opc::model {

namespace {

[[noreturn]] void fail() {
    const char* const cause = dlerror();
    throw XmlParserNotLoaded(std::string("The XML parser can't be loaded: ") +
                             (cause ? cause : "unknown cause"));
}

/// It stays loaded until the process ends, as Xerces stays initialised.
const XercesModule& load() {
    void* const module = dlopen(OPCMODEL_XERCES_MODULE, RTLD_LAZY | RTLD_LOCAL);
    if (module == nullptr)
        fail();
    const auto* const functions = static_cast<const XercesModule*>(dlsym(module, "opcmodelXerces"));
    if (functions == nullptr)
        fail();
    return *functions;
}

/// @throws XmlParserNotLoaded  the module isn't there. A later call looks for it again
const XercesModule& module() {
    static const XercesModule& loaded = load();
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

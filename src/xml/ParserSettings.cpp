#include "xml/ParserSettings.hpp"

#include <xercesc/util/XMLUni.hpp>

#include <initializer_list>

namespace opc::model {

using xercesc::DOMConfiguration;
using xercesc::XMLUni;

namespace {

/// Asks first: that takes half the time of setting a value that is already set.
void setIfPossible(DOMConfiguration* configuration, const char16_t* name, bool value) {
    if ((configuration->getParameter(name) != nullptr) != value &&
        configuration->canSetParameter(name, value))
        configuration->setParameter(name, value);
}

} // namespace

void configureParser(DOMConfiguration* configuration, bool validate, bool loadSchemas) {
    if (validate) {
        for (const char16_t* name : {XMLUni::fgDOMValidate, XMLUni::fgXercesSchema, XMLUni::fgDOMNamespaces,
                                     XMLUni::fgDOMDatatypeNormalization})
            setIfPossible(configuration, name, true);
    }
    setIfPossible(configuration, XMLUni::fgXercesUseCachedGrammarInParse, true);
    configuration->setParameter(XMLUni::fgDOMDisallowDoctype, true);
    setIfPossible(configuration, XMLUni::fgXercesLoadExternalDTD, false);
    setIfPossible(configuration, XMLUni::fgXercesSkipDTDValidation, true);
    // Otherwise the xsi:schemaLocation of a document opens files and connections.
    setIfPossible(configuration, XMLUni::fgXercesLoadSchema, loadSchemas);
}

} // namespace opc::model

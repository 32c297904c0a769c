#include "module/XercesModule.hpp"

/// What the module exports.
extern "C" __attribute__((visibility("default"))) const opc::model::XercesModule opcmodelXerces;

const opc::model::XercesModule opcmodelXerces = {
    &opc::model::makeElementReader,   &opc::model::makeXmlDocument,  &opc::model::makeSchemaType,
    &opc::model::parseCoreProperties, &opc::model::makeSignatureXml, &opc::model::parseXmlDocument,
    &opc::model::XmlRules::check,
};

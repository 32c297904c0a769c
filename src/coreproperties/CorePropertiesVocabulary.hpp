#pragma once

#include <opc/model/XercesString.hpp>

#include <string>

namespace opc::model {

/// The namespaces and names of the core properties part, for as long as a `XercesGuard` lives.
struct CorePropertiesVocabulary {
    /// The name of an element or an attribute: with its prefix in writing, and without in reading.
    struct Name {
        Name(const XercesString& uri, const std::u16string& qualifiedName)
            : namespaceURI(uri), qualified(qualifiedName),
              local(qualifiedName.substr(qualifiedName.find(u':') + 1)) {}

        const XercesString& namespaceURI;
        const XercesString qualified;
        const XercesString local;
    };

    CorePropertiesVocabulary() = default;
    CorePropertiesVocabulary(const CorePropertiesVocabulary&) = delete;
    CorePropertiesVocabulary& operator=(const CorePropertiesVocabulary&) = delete;

    const XercesString xmlns{u"http://www.w3.org/2000/xmlns/"};
    const XercesString xml{u"http://www.w3.org/XML/1998/namespace"};
    const XercesString coreProperties{
        u"http://schemas.openxmlformats.org/package/2006/metadata/core-properties"};
    const XercesString dublinCoreElements{u"http://purl.org/dc/elements/1.1/"};
    const XercesString dublinCoreTerms{u"http://purl.org/dc/terms/"};
    const XercesString dcmiTypes{u"http://purl.org/dc/dcmitype/"};
    const XercesString xmlSchemaInstance{u"http://www.w3.org/2001/XMLSchema-instance"};
    const XercesString markupCompatibility{u"http://schemas.openxmlformats.org/markup-compatibility/2006"};

    const Name root{coreProperties, u"cp:coreProperties"};
    const Name dcPrefix{xmlns, u"xmlns:dc"};
    const Name dctermsPrefix{xmlns, u"xmlns:dcterms"};
    const Name dcmitypePrefix{xmlns, u"xmlns:dcmitype"};
    const Name xsiPrefix{xmlns, u"xmlns:xsi"};
    const Name type{xmlSchemaInstance, u"xsi:type"};
    const Name lang{xml, u"xml:lang"};

    const Name category{coreProperties, u"cp:category"};
    const Name contentStatus{coreProperties, u"cp:contentStatus"};
    const Name created{dublinCoreTerms, u"dcterms:created"};
    const Name creator{dublinCoreElements, u"dc:creator"};
    const Name description{dublinCoreElements, u"dc:description"};
    const Name identifier{dublinCoreElements, u"dc:identifier"};
    const Name keywords{coreProperties, u"cp:keywords"};
    const Name value{coreProperties, u"cp:value"};
    const Name language{dublinCoreElements, u"dc:language"};
    const Name lastModifiedBy{coreProperties, u"cp:lastModifiedBy"};
    const Name lastPrinted{coreProperties, u"cp:lastPrinted"};
    const Name modified{dublinCoreTerms, u"dcterms:modified"};
    const Name revision{coreProperties, u"cp:revision"};
    const Name subject{dublinCoreElements, u"dc:subject"};
    const Name title{dublinCoreElements, u"dc:title"};
    const Name version{coreProperties, u"cp:version"};

    const std::u16string w3cdtf = u"dcterms:W3CDTF";
};

} // namespace opc::model

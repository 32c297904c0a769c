#include "checks/DocumentChecks.hpp"

#include "subject/Names.hpp"

namespace opc::inspection {

namespace {

void addFault(const DocumentFault& fault, const Place& document, Findings& findings) {
    const Place place = placeAt(document, fault.line, fault.column);
    switch (fault.kind) {
    case DocumentFault::Kind::Element:
        findings.add("M1.20", place, "The element " + fault.name + " can't stand here");
        break;
    case DocumentFault::Kind::Attribute:
        findings.add("M1.20", place, "The attribute " + fault.name + " can't stand here");
        break;
    case DocumentFault::Kind::Text:
        findings.add("M1.20", place, "Text can't stand here");
        break;
    case DocumentFault::Kind::XmlAttribute:
    case DocumentFault::Kind::SchemaInstanceAttribute:
        findings.add("M1.21", fault.name == "xml:base" ? Severity::Error : Severity::Warning, place,
                     "The attribute " + fault.name + " can't stand here");
        break;
    }
}

/// @return whether there was none
bool checkReading(const DocumentState& document, const Place& place, Findings& findings) {
    const Place failure = placeAt(place, document.failureLine, document.failureColumn);
    if (isWrongEncoding(document))
        findings.add("M1.17", place, "The document declares the encoding " + document.declaredEncoding);
    if (document.hasDocumentType)
        findings.add("M1.18", failure, "The document has a document type declaration");
    if (document.failure.empty())
        return true;
    if (document.isBeyondLimit)
        findings.add("SEC-54", findings.ofUnread(), failure, document.failure);
    else if (!document.isDamaged && !document.hasDocumentType && !isWrongEncoding(document))
        findings.add("M1.20", failure, "The XML isn't well-formed: " + document.failure);
    return false;
}

} // namespace

bool isWrongEncoding(const DocumentState& document) {
    const std::string& encoding = document.declaredEncoding;
    return !encoding.empty() && !equalsCaseless(encoding, "UTF-8") && !equalsCaseless(encoding, "UTF-16");
}

Place placeAt(Place document, std::uint64_t line, std::uint64_t column) {
    document.line = line;
    document.column = column;
    return document;
}

bool checkDocument(const DocumentState& document, const Place& place, std::string_view namespaceURI,
                   std::string_view root, Findings& findings) {
    const bool isRead = checkReading(document, place, findings);
    if (document.rootName.empty())
        return false;
    if (document.rootName != root || document.rootNamespace != namespaceURI) {
        findings.add("M1.20", place,
                     "The root is {" + document.rootNamespace + "}" + document.rootName + " instead of {" +
                         std::string(namespaceURI) + "}" + std::string(root));
        return false;
    }
    for (const DocumentFault& fault : document.faults)
        addFault(fault, place, findings);
    return isRead;
}

void checkForm(const DocumentState& document, const Place& place, Findings& findings) {
    if (!document.rootPrefix.empty())
        findings.add("SEC-36", place, "The names have the prefix " + document.rootPrefix);
    else if (document.isUTF16)
        findings.add("SEC-36", place, "The document is in UTF-16");
}

} // namespace opc::inspection

#pragma once

#include <opc/editing/Properties.hpp>

#include <string>
#include <string_view>

namespace opc::editing::properties {

/// What is written of a kind of properties in one of the two conformance classes.
struct Vocabulary {
    PropertyKind kind;
    bool isStrict;
    std::u16string_view relationshipType;
    std::u16string_view namespaceURI;
    std::u16string_view variantTypes; ///< the namespace of typed values
};

constexpr Vocabulary VOCABULARIES[] = {
    {PropertyKind::Custom, false,
     u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
     u"http://schemas.openxmlformats.org/officeDocument/2006/custom-properties",
     u"http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes"},
    {PropertyKind::Custom, true, u"http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties",
     u"http://purl.oclc.org/ooxml/officeDocument/customProperties",
     u"http://purl.oclc.org/ooxml/officeDocument/docPropsVTypes"},
    {PropertyKind::Extended, false,
     u"http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
     u"http://schemas.openxmlformats.org/officeDocument/2006/extended-properties",
     u"http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes"},
    {PropertyKind::Extended, true,
     u"http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties",
     u"http://purl.oclc.org/ooxml/officeDocument/extendedProperties",
     u"http://purl.oclc.org/ooxml/officeDocument/docPropsVTypes"},
};

constexpr std::u16string_view ROOT = u"Properties";
constexpr std::u16string_view PROPERTY = u"property";

/// The type of an extended property; empty if it isn't known.
std::string_view typeOfExtended(std::string_view name);

/// What is wrong with a value of a type, as words behind it; empty if nothing is.
std::string findDefectOfValue(std::string_view type, const std::string& text);

/// Whether values of a type are texts, whose white space counts.
bool isText(std::string_view type);

} // namespace opc::editing::properties

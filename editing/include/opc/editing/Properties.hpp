#pragma once

#include <opc/editing/Export.hpp>

#include <string>
#include <vector>

namespace opc::model {
class Package;
}

namespace opc::editing {

class Editor;

/// The properties that office documents have beside the core properties (ECMA-376 Part 1 §15.2.12): what a person or a
/// system has added, and what the program tells of itself and the document.
enum class PropertyKind { Custom, Extended };

/// A value as the documents hold it. Texts are UTF-8.
struct PropertyValue {
    /// The name of its type in the vocabulary of variants: `lpwstr`, `i4`, `bool`, `filetime` …; of a list `vector` or
    /// `array`. Extended properties have `lpwstr`, `i4`, `bool` and `vector`, and what isn't known of them `unknown`.
    std::string type;

    std::string text; ///< as it stands in the document, without white space around it unless it is a text

    std::vector<PropertyValue> items; ///< of a list
};

struct Property {
    std::string name;
    PropertyValue value;
    std::string
        linkTarget{}; ///< of a custom property: the place in the document that its value comes from; empty if none
};

/// Changes of one kind of properties, made in the order of the members.
struct PropertyChanges {
    bool clear = false;             ///< all are taken out first
    std::vector<std::string> unset; ///< names; one that isn't there does nothing
    std::vector<Property> set;      ///< `linkTarget` is that of the old property
};

/// Reads the properties of a package, in the order of the document, in transitional and in strict documents. The first
/// relationship of their type leads to them. Names of custom properties are compared without regard to the case of ASCII
/// letters, as office programs do.
/// @return empty if there is no such relationship
/// @throws PackageNotOpen
/// @throws InvalidPartContent  the document can't be read; `details()` names the part
/// @throws PartNotFound, InvalidPartName, and the exceptions of `Relationship::getTargetURI`: the relationship doesn't
///         lead to a part
OPC_EDITING_EXPORT std::vector<Property> readProperties(const model::Package& package, PropertyKind kind);

/// Changes properties in their document: every other byte of it stays, also properties of unknown types. If there is no
/// document, it is made with its relationship, as /docProps/custom.xml or /docProps/app.xml if that name is free.
/// @throws as `readProperties`; and the document stays as it was
/// @throws InvalidPartContent  a name or a value can't be written: see `findDefect`. Nothing has changed
/// @throws as `Editor::createPart`, `Editor::addRelationship` and `Editor::replaceContent`
OPC_EDITING_EXPORT void changeProperties(Editor& editor, PropertyKind kind, const PropertyChanges& changes);

/// What is wrong with a property that is to be set, as a sentence; empty if nothing is. The type of an extended property
/// follows from its name, and `value.type` doesn't count.
///
/// Custom properties can be set with the types lpwstr, lpstr, bstr, i1, i2, i4, i8, int, ui1, ui2, ui4, ui8, uint, r4, r8,
/// decimal, bool, date and filetime, and extended ones that aren't lists.
OPC_EDITING_EXPORT std::string findDefect(PropertyKind kind, const Property& property);

/// A label of a document management system that says how confidential a document is, as custom properties keep it.
struct SensitivityLabel {
    std::string id;                 ///< the GUID in the names `MSIP_Label_GUID_…`
    std::vector<Property> settings; ///< by the last words of the names: Name, SetDate, Method, SiteId …
};

/// The labels among custom properties, in their order.
OPC_EDITING_EXPORT std::vector<SensitivityLabel> findLabels(const std::vector<Property>& custom);

} // namespace opc::editing

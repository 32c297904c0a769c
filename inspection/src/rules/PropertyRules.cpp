#include "rules/RuleTable.hpp"

namespace opc::inspection {

namespace {

constexpr Rule PROPERTY_RULES[] = {
    {"M4.1", "Core properties part", Severity::Error, OPC, "M4.1",
     "A package has at most one core properties relationship. It leads to a part in the package that has the "
     "content type "
     "of core properties.",
     "A program added core properties without looking for those that are there.",
     "Old office programs wrote two relationships.",
     "Most take the first relationship; some refuse the package.",
     "Keep one relationship, and give its target the type of core properties."},
    {"M4.2", "Markup compatibility in core properties", Severity::Error, OPC, "M4.2",
     "Core properties don't use or declare the namespace of markup compatibility.",
     "A program declares the same namespaces in all its documents.", "",
     "Strict readers refuse the core properties.",
     "Take the declaration and the names of that namespace out."},
    {"M4.3", "Dublin Core refinements", Severity::Error, OPC, "M4.3",
     "Of the Dublin Core terms, core properties have created and modified alone.",
     "A program writes further terms, such as dcterms:issued.", "",
     "Strict readers refuse the core properties.", "Take the element out, or put it in a part of its own."},
    {"M4.4", "Languages of core properties", Severity::Error, OPC, "M4.4",
     "No core property has xml:lang but keywords and its values.",
     "A program writes properties in several languages.", "", "Strict readers refuse the core properties.",
     "Take the attribute out; dc:language tells the language."},
    {"M4.5", "Types of times in core properties", Severity::Error, OPC, "M4.5",
     "The properties created and modified have xsi:type=\"dcterms:W3CDTF\", and no other element has "
     "xsi:type.",
     "The attribute was left out, or its prefix isn't declared.", "",
     "Strict readers refuse the core properties; others drop the time.",
     "Write the attribute, and declare its prefix as http://purl.org/dc/terms/."},
    {"CORE-SCHEMA", "Validity of core properties", Severity::Error, OPC, "M1.20",
     "Core properties contain the known elements alone, each once at most, with valid times.",
     "A program writes a property twice, its own elements, or times in the form of its system.", "",
     "Strict readers refuse the core properties; others drop the value.",
     "Correct the element; put further properties in the custom properties."},
    {"P1-2", "Relationships of core properties", Severity::Warning, OFFICE, "",
     "In office documents, the core properties part has no relationships.",
     "A program treated all parts alike.", "", "Readers pass over them.", "Take the relationships part out."},
    {"M5.1", "Thumbnails", Severity::Warning, OPC, "M5.1",
     "A thumbnail relationship leads to an image in the package.",
     "The image was taken out, or its extension has another type.", "", "File managers show no preview.",
     "Take the relationship out, or correct the part and its type."},
    {"SEC-60", "Names of people and programs", Severity::Info, SECURITY, "",
     "Properties that name people, companies, templates or programs are listed, so that one can look before "
     "one publishes.",
     "Programs fill them from their settings.", "Word writes author, company and template.",
     "Anybody can read them.", "Clear the properties before the document is published."},
    {"SEC-61", "Preview image", Severity::Info, SECURITY, "O5.1",
     "A thumbnail is listed: it can show what the document once contained.", "The program saved a preview.",
     "", "File managers show it.", "Take the thumbnail out before the document is published."},
    {"SEC-62", "Custom properties and custom XML", Severity::Info, SECURITY, "",
     "Custom properties and custom XML are listed: they can hold data that no program shows.",
     "Document management systems and add-ins store their data there, such as sensitivity labels "
     "(MSIP_Label_).",
     "", "They stay through every save.", "Take out what isn't meant for others."},
};

} // namespace

RuleRows propertyRules() {
    return {PROPERTY_RULES, sizeof PROPERTY_RULES / sizeof *PROPERTY_RULES};
}

} // namespace opc::inspection

#include "rules/RuleTable.hpp"

namespace opc::inspection {

namespace {

constexpr Rule RELATIONSHIP_RULES[] = {
    {"M1.30", "Type of relationships parts", Severity::Error, OPC, "M1.30",
     "A part with a name of the form /_rels/x.rels has the content type of relationships.",
     "The Default for rels is missing or wrong, or an Override gives another type.", "",
     "Readers that go by type don't see the relationships.",
     "Write <Default Extension=\"rels\" "
     "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>."},
    {"M1.30b", "Names of relationships parts", Severity::Warning, OPC, "M1.30",
     "A part with the content type of relationships has a name of the form /_rels/x.rels.",
     "The relationships part was renamed, or its folder is missing.", "",
     "No reader finds the relationships.", "Rename the part, or correct its content type."},
    {"M1.25", "Relationships of relationships", Severity::Error, OPC, "M1.25",
     "A relationships part has no relationships, and no relationship leads to it.",
     "A program treated all parts of the package alike.", "", "Strict readers refuse the package.",
     "Take the relationships part or the relationship out."},
    {"M1.26", "Ids of relationships", Severity::Error, OPC, "M1.26",
     "Each relationship has an Id that is an xsd:ID and unique in its part; letter case counts.",
     "Relationships of two documents were put together, or a program numbers them without the letters in "
     "front.",
     "", "Strict readers refuse the package; others take the first or the last of two.",
     "Give the relationship another Id, and use it in the markup too."},
    {"M1.27", "Types of relationships", Severity::Error, OPC, "M1.27",
     "The type of a relationship is an absolute URI. Types are compared as texts.",
     "The type was left empty or shortened.", "",
     "Readers refuse the part without a type, and pass over relationships whose type they don't know.",
     "Write the type in full."},
    {"M1.28", "Targets of relationships", Severity::Error, OPC, "M1.28",
     "The target of a relationship is a URI or a relative reference by RFC 3986. Blanks in targets outside "
     "the package "
     "aren't reported.",
     "A file name or a path was taken as it is.",
     "Office programs write some targets outside the package as users type them.",
     "Readers differ: some refuse the package, others encode the characters.",
     "Percent-encode what a URI can't have: %20 for a blank."},
    {"M1.29", "Internal targets", Severity::Error, OPC, "M1.29",
     "The target of an internal relationship is a relative reference, resolved against the source part.",
     "A hyperlink was written without TargetMode=\"External\".", "", "Many readers refuse the package.",
     "Add TargetMode=\"External\", or name the part."},
    {"M7.1", "URIs of parts of other packages", Severity::Warning, OPC, "M7.1, M7.2, M7.4",
     "A URI of the scheme pack has the URI of a package as its authority, with commas for slashes and an "
     "encoded colon, and the name of a part as its path.",
     "A program put the two together without encoding the first.", "",
     "Readers look for another package, or pass over the target.",
     "Write it as in pack://http%3A,,example.com,a.docx/word/document.xml."},
    {"SEC-17", "Targets that are no part", Severity::Warning, OPC | SECURITY, "",
     "An internal target is the name of a part, without a query, and doesn't lead above the root of the "
     "package.",
     "The part was taken out, or the target is a placeholder such as NULL.", "",
     "Readers differ: LibreOffice drops such relationships, others warn or refuse the package.",
     "Take the relationship and what uses it out, or add the part."},
    {"O1.6", "Fragments in internal targets", Severity::Info, OPC, "O1.6, M1.32",
     "An internal target can have a fragment if the format says what it means. It always leads to the whole "
     "part.",
     "A hyperlink leads to a place in a part.", "",
     "Readers that don't know the format pass over the fragment.",
     "Nothing needs mending if the format allows it."},
    {"O1.7", "Markup compatibility in relationships", Severity::Info, OPC, "O1.7",
     "Relationships parts can use markup compatibility.", "A program writes alternatives for newer readers.",
     "", "Many readers refuse such a relationships part.", "Write the relationships without it."},
    {"SEC-34", "Relationships without a source", Severity::Warning, OPC | SECURITY, "",
     "The part that a relationships part belongs to is in the package.",
     "The part was taken out or renamed, and its relationships were left behind.", "",
     "Some readers refuse the package, the others never look at the relationships.",
     "Take the relationships part out, or add the part that it belongs to."},
    {"SEC-33", "Parts that nothing leads to", Severity::Warning, SECURITY, "",
     "From the package, relationships lead to every part.",
     "A relationship was taken out and its target was left, or somebody hides content in the package.", "",
     "Readers don't see the part. Office programs drop it when they save.",
     "Take the part out, or add a relationship that leads to it."},
    {"SEC-37", "Relationships that stand twice", Severity::Error, SECURITY | OFFICE, "",
     "Of types such as styles, settings or theme, a part of an office document has one relationship at most.",
     "Two documents were put together, or somebody wants two readers to see two contents.", "",
     "Each reader picks one of them: the first, or the last.", "Keep the one that belongs to the document."},
    {"SEC-38", "Parts that are two things", Severity::Warning, SECURITY, "",
     "Relationships of different types don't lead to the same part if it can only be one of both.",
     "A relationship leads to the wrong part, or somebody wants two readers to see two contents.", "",
     "Each reader takes the part for what its own relationship says.", "Correct the target of one of them."},
};

} // namespace

RuleRows relationshipRules() {
    return {RELATIONSHIP_RULES, sizeof RELATIONSHIP_RULES / sizeof *RELATIONSHIP_RULES};
}

} // namespace opc::inspection

#include "rules/RuleTable.hpp"

#include <iterator>

namespace opc::inspection {

namespace {

constexpr std::string_view BY_HAND = "A program or a person edited the XML and didn't know the rule";
constexpr std::string_view MENDS_XML = "Correct the XML of the part";

// Fields: id, title, severity, profiles, standard, statement, cause, writers, readers, remedy.
constexpr Rule OFFICE_RULES[] = {
    {"P1-1", "Parts in pieces", Severity::Error, OFFICE, "ECMA-376 Part 1",
     "Documents of office programs don't store parts in pieces", "The package was written for streaming", "",
     "Office programs may not find the part", "Store each part as one item"},
    {"P1-4", "Main part", Severity::Error, OFFICE, "ECMA-376 Part 1",
     "A relationship of the package leads to the main part, which lies in the package and has the type of "
     "one",
     "The relationship or the part was lost, or the part has the content type of plain XML", "",
     "Office programs call the file damaged", "Restore the main part, its relationship and its content type"},
    {"P1-5", "Relationships that markup names", Severity::Error, OFFICE, "ECMA-376 Part 1",
     "Each relationship that the markup of a part names by its id exists, and has the type that the element "
     "asks for",
     "Markup was copied from another part without its relationships, or a relationship was removed", "",
     "Office programs call the file damaged, or show nothing in this place",
     "Add the relationship, or remove the element that names it"},
    {"OFFICE-XML", "XML that can't be read", Severity::Warning, OFFICE | SECURITY, "",
     "A part that is XML is well-formed",
     "The part was cut off, written with unescaped characters, or edited by hand", "",
     "Office programs call the file damaged", "Correct the XML at the place that the message names"},
    {"MCE-1", "Prefixes that aren't declared", Severity::Error, OFFICE, "ECMA-376 Part 3",
     "Prefixes in Ignorable, MustUnderstand, ProcessContent and Requires are declared",
     "An XML library dropped declarations of namespaces that no element uses", "",
     "Word doesn't open the document; LibreOffice does",
     "Declare the prefixes, or take them out of the attribute"},
    {"MCE-2", "Order of alternatives", Severity::Error, OFFICE, "ECMA-376 Part 3",
     "An AlternateContent holds one or more Choice elements, and then at most one Fallback", BY_HAND, "",
     "Office programs can refuse the part", MENDS_XML},
    {"MCE-3", "Alternatives within alternatives", Severity::Error, OFFICE, "ECMA-376 Part 3",
     "An AlternateContent isn't a child of an AlternateContent", BY_HAND, "",
     "Office programs can refuse the part", "Put the inner one into a Choice or the Fallback"},
    {"MCE-4", "Choice without condition", Severity::Warning, OFFICE, "ECMA-376 Part 3",
     "A Choice says in Requires which namespaces a reader must understand", BY_HAND, "",
     "Office programs can refuse the part", MENDS_XML},
    {"MCE-5", "Attributes of alternatives", Severity::Error, OFFICE, "ECMA-376 Part 3",
     "AlternateContent and Fallback have no attributes without prefix, and Choice has only Requires", BY_HAND,
     "", "Office programs can refuse the part", MENDS_XML},
    {"MCE-6", "xml:lang and xml:space of alternatives", Severity::Error, OFFICE, "ECMA-376 Part 3",
     "AlternateContent, Choice and Fallback have neither xml:lang nor xml:space", BY_HAND, "",
     "Office programs can refuse the part", MENDS_XML},
    {"MCE-7", "Namespaces that must be understood", Severity::Info, OFFICE, "ECMA-376 Part 3",
     "A reader that doesn't understand a namespace in MustUnderstand refuses the document",
     "The document uses something that has no meaning without that namespace", "",
     "A reader without it says that the document can't be read",
     "Use the feature only where all readers have it"},
    {"MCE-8", "Foreign namespaces", Severity::Info, OFFICE, "ECMA-376 Part 3",
     "Elements and attributes of namespaces that readers don't know are declared ignorable",
     "A program put own elements into the markup", "", "Office programs can refuse the part",
     "Name the prefix in Ignorable"},
    {"MCE-9", "ProcessContent of other namespaces", Severity::Warning, OFFICE, "ECMA-376 Part 3",
     "ProcessContent names only elements of ignorable namespaces", BY_HAND, "",
     "Office programs can refuse the part", "Name the prefix in Ignorable"},
    {"MCE-10", "PreserveElements and PreserveAttributes", Severity::Info, OFFICE, "ECMA-376 Part 3",
     "The attributes PreserveElements and PreserveAttributes aren't used",
     "The markup was made for an old reader", "", "Newer readers don't know them", "Remove the attributes"},
    {"MCE-11", "Alternatives with different texts", Severity::Info, OFFICE, "ECMA-376 Part 3",
     "The alternatives of an AlternateContent say the same",
     "One alternative was edited by a program that doesn't know the others, or something is hidden in one",
     "", "Readers that choose different alternatives show different texts",
     "Give all alternatives the same text"},
};

} // namespace

RuleRows officeRules() {
    return {OFFICE_RULES, std::size(OFFICE_RULES)};
}

} // namespace opc::inspection

#include "rules/RuleTable.hpp"

namespace opc::inspection {

namespace {

constexpr Rule CONTENT_TYPE_RULES[] = {
    {"M3.10", "Content types stream", Severity::Error, OPC, "M3.10",
     "A package has exactly one content types stream, in the item [Content_Types].xml or in its pieces.",
     "The archive was packed by hand without it, or it was added twice.", "",
     "Readers refuse the package without it. Of two streams each reader takes another one.",
     "Write one item [Content_Types].xml in the root of the archive."},
    {"M1.17", "Encoding", Severity::Error, OPC, "M1.17",
     "Content types, relationships, core properties and signatures are XML documents in UTF-8 or UTF-16, and "
     "declare no "
     "other encoding.",
     "A program wrote the document in the encoding of its system.", "", "Strict readers refuse the document.",
     "Write the document in UTF-8."},
    {"M1.18", "Document type", Severity::Error, OPC | SECURITY, "M1.18",
     "Content types, relationships, core properties and signatures have no document type declaration.",
     "The declaration was put in to define entities: that lets a document expand without limit, or read "
     "files.",
     "", "Readers refuse the document. A naive one expands the entities, and opens what they name.",
     "Take the declaration out, and write out what its entities stand for."},
    {"M1.20", "Schema", Severity::Error, OPC, "M1.20",
     "Content types, relationships, core properties and signatures are well-formed, and valid by their "
     "published schemas.",
     "The document was edited by hand, or written by a program that builds XML from strings.",
     "Test versions of Office from 2005 and 2006 wrote other namespaces.",
     "Strict readers refuse the document; others pass over what they don't know.",
     "Correct the element or the attribute at this place."},
    {"M1.21", "Names of XML and XML Schema", Severity::Error, OPC, "M1.21",
     "Content types and relationships have no attributes like xml:base or xsi:schemaLocation.",
     "A general XML tool added them.", "",
     "A reader that heeds xml:base resolves every target against it. Others refuse the document, or pass "
     "over it.",
     "Take the attribute out."},
    {"M2.10", "Markup compatibility in content types", Severity::Error, OPC, "M2.10",
     "The content types stream doesn't use markup compatibility.",
     "A program treated the stream like the markup of an office document.", "", "Readers refuse the stream.",
     "Write the entries without alternatives and without attributes of that namespace."},
    {"M2.6", "Default entries", Severity::Error, OPC, "M2.6",
     "Each Default has an extension that isn't empty and doesn't begin with a dot, and a content type.",
     "A program took the extension of a file with its dot, or of a file that has none.", "",
     "Strict readers refuse the stream. Others never find the entry.", "Write the extension without a dot."},
    {"M2.7", "Override entries", Severity::Error, OPC, "M2.7",
     "Each Override has the name of a part, by the rules for such names, and a content type.",
     "A program took the path of a file as it is.", "",
     "Strict readers refuse the stream. Others never find the entry.",
     "Write the name of the part, percent-encoded where needed."},
    {"M1.4", "Names without a slash", Severity::Error, OPC, "M1.4", "A part name begins with a slash.",
     "A program wrote the name of the item in place of the part name.", "",
     "Strict readers refuse the content types stream; others don't find the entry.",
     "Write the name with a slash in front."},
    {"M1.13", "Form of content types", Severity::Error, OPC, "M1.13",
     "A content type is a media type by RFC 2616 section 3.7: a type, a slash, a subtype and perhaps "
     "parameters.",
     "The type was left empty, or an extension was put in its place.", "",
     "Strict readers refuse the stream.",
     "Write a media type; application/octet-stream will do for unknown content."},
    {"M1.14", "White space in content types", Severity::Error, OPC, "M1.14",
     "A content type has no white space at its ends, or round its slash or an equals sign. White space round "
     "a semicolon "
     "is allowed.",
     "The type was copied with a blank or a line break.", "", "Strict readers refuse the stream.",
     "Take the white space out."},
    {"M1.15", "Comments in content types", Severity::Error, OPC, "M1.15",
     "A content type has no comments in parentheses.", "A type was copied from the header of a mail.", "",
     "Strict readers refuse the stream.", "Take the comment out."},
    {"M1.22", "Parameters of the standard's own types", Severity::Error, OPC, "M1.22",
     "The content types of relationships, core properties and digital signatures have no parameters.",
     "A program added charset=utf-8 to all XML types.", "",
     "Strict readers refuse the part, or don't know it for what it is.", "Take the parameters out."},
    {"M2.5", "Entries that repeat", Severity::Error, OPC, "M2.5",
     "There is at most one Default for an extension and one Override for a part, letter case aside.",
     "Two programs, or two steps of one, each added an entry.", "",
     "Some refuse the package; the others take the first or the last entry, and so see other types.",
     "Keep one of the entries."},
    {"M2.1", "The content types stream is no part", Severity::Warning, OPC, "M2.1, M3.11",
     "The content types stream isn't a part: no Override names it, and no relationship leads to it.",
     "A program listed all files of the archive as parts.", "", "Most readers pass over the entry.",
     "Take the entry or the relationship out."},
    {"M1.2", "Parts without a content type", Severity::Error, OPC, "M1.2, M2.4, M3.5",
     "Every part has a content type, from an Override of its name or from a Default of its extension.",
     "A file was added to the archive without an entry in the content types stream.", "",
     "Most readers refuse the package; others leave the part out.",
     "Add a Default for the extension, or an Override for the part."},
    {"SEC-32", "Items without a content type", Severity::Warning, OPC | SECURITY, "",
     "The archive has no items that nothing in the package knows of: without content type, and without a "
     "relationship.",
     "A file manager or a packing program left a file behind, such as .DS_Store or Thumbs.db, or another "
     "system keeps its "
     "own data there, such as AppxSignature.p7x.",
     "", "Some readers refuse the package, others pass over the item and lose it when they save.",
     "Take the item out, or give it a content type."},
    {"S2.3", "Order for reading from a stream", Severity::Info, OPC, "S2.3",
     "In a package with interleaved parts, which is meant to be read while it comes, the content types stand "
     "in "
     "front of the parts.",
     "The program wrote the content types when it knew all parts.", "",
     "Readers of streams have to wait for the end.", "Put [Content_Types].xml first."},
    {"SEC-35", "Entries without parts", Severity::Info, SECURITY, "",
     "Each Override names a part, and each Default gives a part its type.",
     "Parts were taken out, or a program writes the same entries into all packages.",
     "Word writes a Default for xml even where each such part has an Override.",
     "Readers pass over the entry. It can tell what the package once contained.", "Take the entry out."},
    {"SEC-36", "Documents in an unusual form", Severity::Warning, SECURITY, "",
     "Content types and relationships stand in items with the usual letter case, in UTF-8 and without "
     "namespace prefixes.",
     "A general XML library wrote the document, or somebody hides its entries from simple readers.", "",
     "The form is valid, but some readers don't see the entries: LibreOffice doesn't read relationships with "
     "a prefix.",
     "Write the document in the usual form."},
    {"SEC-42", "Odd types for extensions", Severity::Warning, SECURITY, "",
     "No Default covers an extension of programs, and those for bin and xml have types that fit.",
     "A program collected the extensions of all its files, or somebody hides content behind a harmless name.",
     "", "Programs that go by extension take the part for something else than those that go by type.",
     "Give the parts a type that fits their content, or take them out."},
};

} // namespace

RuleRows contentTypeRules() {
    return {CONTENT_TYPE_RULES, sizeof CONTENT_TYPE_RULES / sizeof *CONTENT_TYPE_RULES};
}

} // namespace opc::inspection

#include "rules/RuleTable.hpp"

#include <iterator>

namespace opc::inspection {

namespace {

constexpr Rule NAME_RULES[] = {
    {"M1.1", "Empty name", Severity::Error, OPC, "M1.1", "A part has a name.",
     "A faulty program wrote the archive.", "", "Readers refuse the package or pass over the item.",
     "Give the item a name, or remove it."},
    {"M1.3", "Empty segments", Severity::Error, OPC, "M1.3",
     "A part name has no empty segment: neither two slashes in a row, nor a slash at the start of the item's "
     "name.",
     "A program joined paths, one of which ended in a slash.", "",
     "Readers pass over the item, or refuse the package.", "Rename the item with single slashes."},
    {"M1.6", "Characters of part names", Severity::Error, OPC, "M1.6",
     "The segments of a part name have only characters that RFC 3986 allows in a path, or letters beyond "
     "ASCII; others are percent-encoded.",
     "A program took the name of a file as it is, with blanks or brackets.", "",
     "Strict readers pass over the item. Others find the part only by one of its spellings.",
     "Rename the part, or percent-encode the character, in the item and wherever it is referred to."},
    {"M1.7", "Encoded slashes", Severity::Error, OPC, "M1.7",
     "A part name has no percent-encoded slash or backslash.",
     "A program encoded a whole path, or the name was made to mean another path once it is decoded.", "",
     "Readers pass over the item.", "Rename the part."},
    {"M1.8", "Needless encoding", Severity::Error, OPC, "M1.8",
     "A part name has no percent-encoded letters, digits, hyphens, dots, underscores or tildes.",
     "A program encoded more than it has to.", "",
     "Readers pass over the item, or take it for another part, as the name has two spellings.",
     "Write the character itself."},
    {"M1.9", "Dots at the end", Severity::Error, OPC, "M1.9", "No segment of a part name ends in a dot.",
     "A program shortened the name of a file.", "",
     "Readers pass over the item. Windows drops the dot when the item is extracted.", "Rename the part."},
    {"M1.10", "Segments of dots", Severity::Error, OPC, "M1.10",
     "Each segment of a part name has a character that isn't a dot.",
     "A program wrote a relative path; or the archive was made to write outside the folder that it is "
     "extracted "
     "to.",
     "", "Word refuses the file. LibreOffice opens it.", "Write the path from the root of the package."},
    {"M3.2", "Names of items", Severity::Error, OPC, "M3.2",
     "The name of an item is a relative path with slashes.",
     "A program for Windows took the path of a file as it is, with backslashes.", "",
     "LibreOffice doesn't find parts behind backslashes. Other programs read them as slashes.",
     "Write the names with slashes."},
    {"M1.12", "Equivalent names", Severity::Error, OPC | SECURITY, "M1.12, M2.14, M2.17",
     "No two parts have names that differ only in the case of ASCII letters, or in the way they are encoded.",
     "A program wrote a part anew under another spelling.", "",
     "Readers refuse the package, or take one of the two parts.", "Keep the part that was meant."},
    {"M1.11", "Names that continue others", Severity::Error, OPC, "M1.11",
     "No part name is the beginning of another one, cut off at a slash.",
     "A program uses the name of a part as a folder.", "",
     "Strict readers refuse the package. On a disk the part can't be a file and a folder.",
     "Rename one of the two."},
    {"S3.1", "Names for file systems", Severity::Info, OPC, "S3.1",
     "Names suit common file systems: they are short, and have neither special characters nor names of "
     "devices.",
     "The writer doesn't think of extracting.", "", "Programs that extract archives rename or skip the item.",
     "Rename the part if the package is to be extracted."},
    {"SEC-55", "Dangerous names", Severity::Error, SECURITY, "",
     "No name leads out of the folder that the archive is extracted to, onto another item, or looks like "
     "another one.",
     "The archive was made to overwrite files, or to hide what an item is.", "",
     "Readers of packages refuse most of these names. Programs that extract archives may follow them.",
     "Don't extract the archive. Rename the items if you know what they are."},
    {"SEC-56", "Names that differ in letters alone", Severity::Warning, SECURITY, "",
     "No two names differ only in the case of letters beyond ASCII, or in how their accents are composed.",
     "Names came from file systems that compose accents in other ways.", "",
     "macOS and Windows take the two for one file.", "Rename one of the two."},
};

} // namespace

RuleRows nameRules() {
    return {NAME_RULES, std::size(NAME_RULES)};
}

} // namespace opc::inspection

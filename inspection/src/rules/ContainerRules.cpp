#include "rules/RuleTable.hpp"

#include <iterator>

namespace opc::inspection {

namespace {

constexpr unsigned BOTH = OPC | SECURITY;

constexpr Rule CONTAINER_RULES[] = {
    {"SEC-45", "Encrypted document", Severity::Info, BOTH, "",
     "A package that can be checked isn't encrypted.",
     "The document was saved with a password. It is an OLE2 file then, which holds the encrypted package.",
     "Office programs.",
     "Programs ask for the password. Some documents use a well-known one, and open without asking.",
     "Open the document with its password and save it without one."},
    {"SEC-57", "File that is no package", Severity::Error, BOTH, "",
     "A package is a ZIP archive with a content types stream.",
     "The file has the name of a package, but is in another format: OpenDocument, EPUB, PDF, an older Office "
     "format, or a package in one XML document.",
     "", "Some programs open the other format whatever the file is called. Others refuse it.",
     "Name the file by its format, or save it as a package."},
    {"M3.16", "Records of the archive", Severity::Error, OPC, "M3.16, M3.18",
     "An archive has an end record, a directory and a local header for each item, all complete.",
     "The file was cut off on its way, or a program that wrote it ended too early.", "",
     "Readers refuse the archive. Repair tools scan for local headers.",
     "Get the file again; a repair tool may save part of it."},
    {"M3.17", "Records that packages don't have", Severity::Error, OPC, "M3.17",
     "A package is one archive, without the records of the ZIP format for encryption and signatures.",
     "A general ZIP tool split, signed or encrypted the archive.", "", "Readers refuse the archive.",
     "Write one archive without these records."},
    {"SEC-50", "End records that disagree", Severity::Error, BOTH, "",
     "There is one end record, and all records agree on where the directory is and what it holds.",
     "Two archives were joined, or the file was made to show each program other content.", "",
     "Programs differ on which record counts, and so on what the package holds.", "Write the archive anew."},
    {"SEC-46", "Bytes outside the archive", Severity::Error, BOTH, "",
     "Nothing stands before the first item, or behind the end of the archive.",
     "A download or a tool added bytes; or the file was made to be of two formats, such as a program or an "
     "HTML page in front of a package.",
     "", "Strict readers refuse the file. Others read the package, or the other format.",
     "Remove the bytes, or write the archive anew."},
    {"SEC-48", "Hidden items and gaps", Severity::Error, BOTH, "",
     "Each byte in front of the directory belongs to an item that the directory lists.",
     "A program deleted an item by taking it out of the directory alone, or somebody hid data.", "",
     "Programs that read an archive from its start see the hidden items; all others don't.",
     "Write the archive anew."},
    {"SEC-59", "Records that some programs read in another way", Severity::Warning, BOTH, "",
     "No field and no data has the mark of another record where a program can take it for one, and whoever "
     "reads an archive from its start finds the end of each item.",
     "The file was made to show some programs other content, or hide some. In small files such marks hardly "
     "stand "
     "there by chance.",
     "",
     "Programs that go by the directory notice nothing. Those that read from the start, or look for records "
     "themselves, show something else.",
     "Write the archive anew, without comments."},
    {"SEC-49", "Items that overlap", Severity::Error, BOTH, "", "No two items share bytes of the archive.",
     "The file was made to expand to far more than its size, or to show each program other content.", "",
     "Careful readers refuse the archive.", "Write the archive anew; don't expand this one."},
    {"M3.3", "Two items of one name", Severity::Error, BOTH, "M2.14, M3.3, M3.13",
     "No two items have the same name.", "A program added an item to replace another, and left that in.", "",
     "Some readers take the first item, some the last one, some refuse the archive.",
     "Keep the item that was meant, and remove the other."},
    {"M3.14", "Agreement of headers and content", Severity::Error, OPC, "M3.13, M3.14",
     "Local header, data descriptor and directory say the same of an item, and its content has the size and "
     "the checksum that they say.",
     "The file was damaged, or made so that each program reads something else.", "",
     "Strict readers refuse the item. Others go by one of the records.", "Write the archive anew."},
    {"M3.8", "Length of an entry", Severity::Error, OPC, "M3.8",
     "The name, the extra fields and the comment of an item have at most 65,535 bytes together.",
     "A program stored data in extra fields or comments.", "", "Readers may refuse the archive.",
     "Shorten the name, the extra fields or the comment."},
    {"M3.9", "Encryption of items", Severity::Error, OPC, "M3.9", "No item is encrypted.",
     "A general ZIP tool packed the files with a password.", "",
     "Readers refuse the package, or can't read the item.",
     "Pack the items without a password. Office encrypts a document as a whole."},
    {"ZIP-METHOD", "Compression method", Severity::Error, OPC, "Annex C",
     "Items are stored, or compressed by Deflate.", "A general ZIP tool chose another method.", "",
     "Readers refuse the package, or can't read the item.", "Compress the items by Deflate."},
    {"ZIP-VERSION", "Version of the ZIP format", Severity::Warning, OPC, "Annex C",
     "An item needs version 1.0, 1.1, 2.0 or 4.5 of the ZIP format.",
     "The writer states its own version instead of the one that a reader needs.", "",
     "Most readers pass over the number.", "Write 2.0, or 4.5 for an item with ZIP64 sizes."},
    {"ZIP-FLAGS", "Flags of items", Severity::Warning, OPC, "Annex C",
     "Of the flags of an item only those for compression levels, data descriptors and UTF-8 are set.",
     "The writer used a feature of the ZIP format that packages don't have.", "",
     "Most readers pass over unknown flags.", "Clear the other bits."},
    {"M3.7", "Folders with content", Severity::Warning, OPC, "M1.5, M3.7",
     "An item whose name ends in a slash is a folder, and has no content.",
     "A program gave a file the name of a folder, or the file was made to hide data.", "",
     "Readers pass over the item.", "Give the item the name of a part, or remove it."},
    {"M2.11", "Part whole and in pieces", Severity::Error, BOTH, "M2.11, M3.1",
     "A part is stored as one item or in pieces, not in both ways.",
     "A program replaced an interleaved part and left the pieces in.", "",
     "Strict readers refuse the package.", "Remove the pieces, or the whole item."},
    {"M2.15", "Two pieces of one number", Severity::Error, BOTH, "M2.15",
     "No two pieces of a part have the same number.", "A program added a piece twice.", "",
     "Strict readers refuse the package.", "Keep the piece that was meant."},
    {"M2.16", "Missing pieces", Severity::Error, OPC, "M2.16, M2.18",
     "The pieces of a part are numbered from 0 without a gap, and the last one is called so.",
     "The package wasn't written to its end, or a piece was removed.", "",
     "Readers don't see the part at all, or refuse the package.", "Write the part anew, as one item."},
    {"S2.5", "Order of pieces", Severity::Info, OPC, "S2.5",
     "The pieces of a part stand in the order of their numbers.", "A program rewrote one of the pieces.", "",
     "A reader that goes from start to end must keep the pieces that come too early.",
     "Write the pieces in order."},
    {"O1.1", "Growth hint", Severity::Info, SECURITY, "O1.1",
     "An item may reserve room for its part to grow, in an extra field.",
     "The writer expects the part to be changed in place.", "Microsoft Office.",
     "Readers pass over the field.", "Nothing needs to be done."},
    {"S3.2", "Place of the growth hint", Severity::Info, OPC, "S3.2",
     "The growth hint of an interleaved part stands at its first piece.",
     "A program wrote the hint at another piece.", "", "Readers may miss the hint.",
     "Write the hint at piece 0."},
    {"SEC-54", "Limits", Severity::Error, BOTH, "",
     "The archive is within the limits for items, names, sizes and ratio of compression.",
     "The package is extremely large, or made to use up memory or disk.", "",
     "Careful readers refuse the archive.",
     "Raise the limit if the package comes from somebody whom you trust."},
    {"SEC-47", "Links, devices and folders", Severity::Error, BOTH, "",
     "By its attributes no item is a symbolic link, a device, a program with the rights of its owner, or a "
     "folder "
     "that hasn't the name of one.",
     "The archive was packed from a folder with such files, or made to write outside the folder that it is "
     "extracted to.",
     "", "Readers of packages pass over the attributes. Programs that extract archives may make the link.",
     "Pack the file that the link leads to."},
    {"SEC-51", "Comments of the archive", Severity::Info, SECURITY, "",
     "Neither the archive nor an item has a comment.", "A general ZIP tool or a person wrote it.", "",
     "Readers of packages don't show comments, and saves may keep them.", "Remove the comment."},
    {"SEC-52", "Second name of an item", Severity::Error, BOTH, "",
     "A Unicode Path field has the name that the header has.",
     "The file was made to show each program another name, or a program renamed the item without the field.",
     "", "Programs differ on which name counts.", "Remove the field."},
    {"SEC-53", "Data in extra fields", Severity::Warning, SECURITY, "",
     "Growth hints are empty, and extra fields are of known kinds.",
     "A program stored data of its own, or somebody hid some.", "",
     "Readers pass over the fields, and saves may keep them.", "Write the archive anew."},
    {"SEC-58", "Traces of the writer", Severity::Info, SECURITY, "",
     "Headers tell the system and the times at which the items were written.", "Most programs write them.",
     "", "Whoever has the file can read them.", "Write the items with fixed times."},
};

} // namespace

RuleRows containerRules() {
    return {CONTAINER_RULES, std::size(CONTAINER_RULES)};
}

} // namespace opc::inspection

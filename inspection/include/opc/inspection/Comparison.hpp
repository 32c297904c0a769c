#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace opc::inspection {

/// @file
/// What differs between two packages. Packages are compared by what they hold: the content and the content types of their
/// parts, their relationships, and the items of the archive that are no parts. The order of the archive, compression, times,
/// folders, and how relationships and content types are written don't count. A document of relationships or content types
/// that can't be read in full counts with its bytes, too.
///
/// The packages may break the standard. Names compare without regard to the case of ASCII letters [M1.12]. Texts are UTF-8.

/// A content in one of the two packages.
struct ContentVersion {
    const Archive* archive;                ///< the package
    std::vector<const ArchiveItem*> items; ///< one, or the pieces of a part in their order
    std::string name;                      ///< of the part, or of the item that is no part
    std::string contentType;               ///< as declared; empty if none is
    std::uint64_t size;                    ///< as the archive states it
};

/// A part, or an item that is no part, that is in one package only or differs.
struct ContentDifference {
    enum class Kind {
        Added,
        Removed,
        Moved,  ///< the same content under another name, and no longer under the old one
        Changed ///< under the same name
    } kind = Kind::Changed;
    std::optional<ContentVersion> before; ///< not for `Added`
    std::optional<ContentVersion> now;    ///< not for `Removed`
    bool hasOtherContent = false;         ///< `Changed`: the bytes differ; if not, the content type alone
    bool hasOtherType = false;
    std::string unreadable; ///< why the contents can't be compared, which counts as a change; else empty

    /// The name that it has, or had if it is removed.
    const std::string& name() const { return (now ? now : before)->name; }
};

/// A relationship as it stands. Missing texts are empty.
struct RelationshipVersion {
    std::string id, type, target;
    std::string
        resolved; ///< of an internal one: the name of the part that it leads to, with query and fragment; or empty
    bool isExternal = false;
};

/// A relationship that is in one package only, or leads elsewhere. Relationships are the same if source and id are; a moved
/// part keeps its relationships.
struct RelationshipDifference {
    std::string source;                        ///< the name of the source part; "/" for the package
    std::optional<RelationshipVersion> before; ///< nothing if it was added
    std::optional<RelationshipVersion> now;    ///< nothing if it was removed
    bool lacksSource = false; ///< there is no such part in the package that has the relationship
};

/// A core property that differs.
struct PropertyDifference {
    std::string name; ///< of its element, without prefix: `title`, `creator`, `modified` …
    std::optional<std::string> before, now;
};

/// What differs, sorted by name.
struct Comparison {
    std::vector<ContentDifference> parts;
    std::vector<ContentDifference> items; ///< of the archives that are no parts: ignored, hidden …
    std::vector<RelationshipDifference> relationships;
    std::vector<PropertyDifference>
        properties; ///< what differs in the parts of core properties, field by field

    bool isEmpty() const { return parts.empty() && items.empty() && relationships.empty(); }
};

struct ComparisonOptions {
    /// Only parts, sources and items with these names; all if there are none. In a name `*` stands for any characters within
    /// a segment, `**` for any characters; `/` is the package.
    std::vector<std::string> names;
    bool findsMoves = true; ///< if not, a part that has moved is one that was removed and one that was added
};

/// Compares two packages. Time is linear in their size, and contents are read piece by piece.
/// @param before, now  must outlive the result
/// @throws opc::Exception  one of them has nothing that can be compared, a name occurs in neither package, or the bytes of an
///                         archive can't be read
OPC_INSPECTION_EXPORT Comparison compare(const Archive& before, const Archive& now,
                                         const ComparisonOptions& options = {});

/// The SHA-256 digest of a content, in hexadecimal.
/// @throws opc::Exception  it can't be read
OPC_INSPECTION_EXPORT std::string digestOf(const ContentVersion& content);

/// A line of a hunk.
struct HunkLine {
    char mark; ///< ' ' in both, '-' before, '+' now
    std::string text;
};

/// Lines that differ, and those around them. Lines count from 1; of no lines, the number is that of the line in front.
struct Hunk {
    std::size_t beforeLine, beforeCount, nowLine, nowCount;
    std::vector<HunkLine> lines;
};

/// How two XML documents differ, line by line.
struct TextDifference {
    enum class Outcome {
        Lines,    ///< in their lines
        SameText, ///< in their form alone: elements, attributes, text, comments and instructions are the same
        NotXml,   ///< one isn't XML that can be read
        TooLarge  ///< to be compared by lines
    } outcome = Outcome::NotXml;
    std::vector<Hunk> hunks;
    std::size_t removedLines = 0, addedLines = 0;
};

/// Compares the two versions of a content as XML documents. Each is written with one element a line; the order of elements
/// counts, while the order of attributes, prefixes, and white space between elements don't. The namespaces follow behind the
/// document. Documents of more than 32 MiB in this form are too large. Among very many differences not the least
/// number may be found.
/// @param difference  has both versions
/// @param context     how many lines that are the same a hunk shows around those that differ
/// @throws opc::Exception  a content can't be read
OPC_INSPECTION_EXPORT TextDifference compareText(const ContentDifference& difference,
                                                 std::size_t context = 3);

} // namespace opc::inspection

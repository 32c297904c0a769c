#pragma once

#include <opc/inspection/Export.hpp>
#include <opc/inspection/Format.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Texts are UTF-8 throughout. A document of the package's own is read by namespace, without regard to prefixes, and
/// without regard to case where the standard compares so; what can't be read is left out and told by the checks.

/// A part as a lenient reader sees it: relationships parts are parts too.
struct PartView {
    std::string name;                      ///< as its item spells it
    std::vector<const ArchiveItem*> items; ///< one, or its pieces in their order
    std::string contentType;               ///< as declared, empty if none covers it
    enum class TypeFrom { Nothing, Override, Default } typeFrom = TypeFrom::Nothing;
    std::uint64_t size = 0;
    bool hasRelationshipsName = false; ///< `/_rels/x.rels`, in any letter case
    bool isKnownWhole = false;         ///< its content was read to the end already, and isn't damaged

    bool isRelationships() const { return hasRelationshipsName; }
    OPC_INSPECTION_EXPORT std::string_view
    extension() const; ///< behind the last dot of the last segment, as it stands
    OPC_INSPECTION_EXPORT std::string
    mediaType() const; ///< the content type without parameters, in lower case
};

/// An entry of the content types stream, also one that breaks rules.
struct ContentTypeEntry {
    enum class Kind { Default, Override } kind;
    std::string key; ///< the extension or the part name, as it stands; empty if missing
    std::string contentType;
    bool hasKey, hasContentType;
    std::uint64_t line, column;
};

/// Something in a document of the package's own that its schema doesn't know.
struct DocumentFault {
    enum class Kind { Element, Attribute, XmlAttribute, SchemaInstanceAttribute, Text } kind;
    std::string
        name; ///< of the element or the attribute, with its namespace in braces if that isn't the document's
    std::uint64_t line, column;
};

/// How far a document of the package's own could be read.
struct DocumentState {
    const ArchiveItem* item = nullptr; ///< null: there is none
    std::string failure;               ///< why it can't be read to its end; empty if it can
    std::uint64_t failureLine = 0, failureColumn = 0;
    bool isDamaged =
        false; ///< the archive doesn't give its bytes: `failure` is about the item, not about XML
    bool isBeyondLimit = false; ///< it has more elements than are read; `failure` says so
    std::string declaredEncoding;
    std::string rootNamespace, rootName, rootPrefix;
    bool isUTF16 = false, hasDocumentType = false;
    bool usesMarkupCompatibility =
        false; ///< has a name in its namespace; `declaresMarkupCompatibility`: only a prefix
    bool declaresMarkupCompatibility = false;
    std::vector<DocumentFault> faults; ///< in the order of the document, at most `MOST_FAULTS`

    static constexpr std::size_t MOST_FAULTS = 100;
};

/// One relationship, also one that breaks rules.
struct RelationshipView {
    std::string id, type, target, targetMode; ///< as they stand; empty if missing
    bool hasId = false, hasType = false, hasTarget = false;
    std::uint64_t line = 0, column = 0;
    bool isExternal = false;
    std::string
        resolved; ///< internal: the part name that it leads to, without fragment and query; else empty
    const PartView* part = nullptr; ///< internal: the part there; null if there is none
    OPC_INSPECTION_EXPORT std::string_view lastSegment() const; ///< of the type, behind the last slash
};

/// Whether a relationship of the package leads to its main part, by its type: the format follows from it.
OPC_INSPECTION_EXPORT bool leadsToMainPart(const RelationshipView& entry);

/// A relationships part and what stands in it.
struct RelationshipsView {
    std::string source;                   ///< the name of the source part; "/" for the package
    const PartView* sourcePart = nullptr; ///< null for the package, and where the source is gone
    const PartView* part = nullptr;       ///< the relationships part
    DocumentState document;
    std::vector<RelationshipView> entries;
};

/// A package as the checks see it: whatever can be made out of its archive, whether or not the model opens it.
/// All views live as long as this object.
class OPC_INSPECTION_EXPORT Subject {
public:
    /// @param archive  must outlive this object
    Subject(const Archive& archive, const physical::ZipOptions& limits);
    ~Subject();

    const Archive& archive() const;

    const DocumentState& contentTypesDocument() const;
    const std::vector<ContentTypeEntry>& contentTypes() const;
    /// The items of the content types stream: one, or its pieces in their order; none if there is no stream.
    const std::vector<const ArchiveItem*>& contentTypesItems() const;

    const std::vector<PartView>& parts() const;
    const PartView* findPart(std::string_view name) const; ///< without regard to the case of ASCII letters

    /// Whether there are pieces of such a part, but not all of them.
    bool isIncomplete(std::string_view name) const;

    const std::vector<RelationshipsView>& relationships() const;
    const RelationshipsView*
    relationshipsOf(std::string_view source) const; ///< "/" for the package; null if there are none

    /// Whether a path of internal relationships leads from the package to the part. A relationships part is reached with
    /// its source.
    bool isReached(const PartView& part) const;

    /// The format, as `detectFormat` names it: `docx`, `xlsx`, `opc` …
    const std::string& format() const;
    const Format& detectedFormat() const;
    /// The part that the main relationship of the format leads to; null if there is none.
    const PartView* mainPart() const;

    /// The content, with its pieces joined, ready to read. Reading throws `opc::Exception` where it is damaged.
    std::unique_ptr<InputStream> open(const PartView& part) const;

    /// The first bytes of the content, at most `most`; fewer too where it is damaged.
    std::string read(const PartView& part, std::size_t most) const;

private:
    class Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace opc::inspection

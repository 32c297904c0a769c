#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <string>
#include <string_view>

namespace opc::model {

/// The name of a part: a URI that keeps the part name rules [M1.1] to [M1.10], or that names the package
/// root, "/". Rule [M1.6], which characters a segment may hold, is kept as far as `URI` keeps it.
///
/// Tells the names of relationships parts from others, and leads from a part to its relationships part and
/// back. It knows no package: a part of that name need not exist. Compared without regard to case, as URIs
/// are.
///
/// An immutable value; copies share the URI's body.
class OPC_MODEL_EXPORT PartName {
public:
    /// Any URI whose path is a single slash is the package root, to which no rule applies.
    /// @throws InvalidURI       if `name` is no URI
    /// @throws InvalidPartName  if it breaks a rule; the message names the first
    explicit PartName(std::u16string name);
    /// @throws InvalidPartName  as above
    explicit PartName(const URI& name);
    /// @param name  ends in a zero; null counts as the empty text, which breaks [M1.1]
    /// @throws InvalidURI, InvalidPartName  as above
    explicit PartName(const char16_t* name);

    URI getURI() const;
    /// The text as it was given.
    std::u16string toString() const;
    /// What follows the last dot of the last segment, without the dot; empty if there is none.
    std::u16string getExtension() const;

    /// Whether this is the name of a relationships part: a segment "_rels" stands before the last one, which
    /// ends in ".rels". Case counts. Never so for the package root.
    bool isRelationshipName() const;

    /// The name of the relationships part of this part or of the package: "/a/_rels/b.xml.rels" for
    /// "/a/b.xml".
    /// @throws InvalidPartName  if this is the name of a relationships part
    std::u16string getRelationshipPartName() const;

    /// The name of the part that this relationships part belongs to, or "/" for the package.
    /// @throws InvalidPartName  if this isn't the name of a relationships part
    std::u16string getSourcePartName() const;

    bool operator==(const PartName& other) const;
    bool operator!=(const PartName& other) const;
    bool operator<(const PartName& other) const;

private:
    static constexpr char16_t FORWARD_SLASH_STRING[] = u"/";
    static constexpr char16_t PACKAGE_RELATIONSHIPS_ROOT_NAME[] = u"/_rels/.rels";
    static constexpr char16_t RELATIONSHIP_PART_SEGMENT_NAME[] = u"_rels";
    static constexpr char16_t RELATIONSHIP_PART_EXTENSION_NAME[] = u".rels";

    void init();

    static bool isPackageRootUri(const URI& uri);
    static bool isRelationshipUri(const URI& uri);

    static void throwExceptionIfInvalidPartUri(const URI& uri);
    static void throwExceptionIfEmptyURI(const URI& uri);
    static void throwExceptionIfAbsoluteUri(const URI& uri);
    static void throwExceptionIfPartNameDoesNotStartWithForwardSlash(const URI& uri);
    static void throwExceptionIfPartNameEndsWithForwardSlash(const URI& uri);
    static void throwExceptionIfPartNameHasInvalidSegments(const URI& uri);
    static void checkPCharCompliance(std::u16string_view segment);

    URI uri;
    bool isPackageRoot = false;
    bool isRelationship = false;
};

/// These compare the name with a string, which may be anything: it isn't checked.
OPC_MODEL_EXPORT bool operator==(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator!=(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator<(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator==(const std::u16string& left, const PartName& right);
OPC_MODEL_EXPORT bool operator!=(const std::u16string& left, const PartName& right);
OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const PartName& right);

} // namespace opc::model

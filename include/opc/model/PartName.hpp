#pragma once

#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <string>
#include <string_view>

namespace opc::model {

/// The name of a part: a URI that follows the part name rules [M1.1] to [M1.10], or the package root, "/". Rule [M1.6]
/// about the characters in a segment is checked only as far as `URI` checks it; `Package::createPart` checks it fully.
///
/// It distinguishes the names of relationships parts from others, and converts the name of a part to the name of its
/// relationships part and back. It doesn't belong to a package: a part with this name need not exist. Comparisons ignore
/// letter case, as those of URIs do.
///
/// An immutable value type.
class OPC_MODEL_EXPORT PartName {
public:
    /// A URI whose path is a single slash is the package root. No rule applies to it.
    /// @throws InvalidURI       `name` isn't a URI
    /// @throws InvalidPartName  `name` breaks a rule; the message contains the first one
    explicit PartName(std::u16string name);
    /// @throws InvalidPartName  as above
    explicit PartName(const URI& name);
    /// @param name  zero-terminated; null counts as the empty text, which breaks [M1.1]
    /// @throws InvalidURI, InvalidPartName  as above
    explicit PartName(const char16_t* name);

    URI getURI() const;
    /// The text as it was given.
    std::u16string toString() const;
    /// Whether that is this text: here letter case counts.
    bool hasText(std::u16string_view text) const noexcept;
    /// The text after the last dot of the last segment, without the dot; empty if there is no dot.
    std::u16string getExtension() const;

    /// Whether this is the name of a relationships part: its last segment ends in ".rels", and a segment before is
    /// "_rels". Letter case matters. The package root isn't such a name.
    bool isRelationshipName() const;

    /// The name of the relationships part of this part or of the package: "/a/_rels/b.xml.rels" for "/a/b.xml".
    /// @throws InvalidPartName  this is the name of a relationships part itself
    std::u16string getRelationshipPartName() const;

    /// The name of the part that this relationships part belongs to, or "/" for the package.
    /// @throws InvalidPartName  this isn't the name of a relationships part
    std::u16string getSourcePartName() const;

    bool operator==(const PartName& other) const;
    bool operator!=(const PartName& other) const;
    bool operator<(const PartName& other) const;

private:
    friend OPC_MODEL_EXPORT bool operator==(const PartName& left, const std::u16string& right);
    friend OPC_MODEL_EXPORT bool operator<(const PartName& left, const std::u16string& right);
    friend OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const PartName& right);

    static constexpr char16_t FORWARD_SLASH_STRING[] = u"/";
    static constexpr char16_t PACKAGE_RELATIONSHIPS_ROOT_NAME[] = u"/_rels/.rels";
    static constexpr char16_t RELATIONSHIP_PART_SEGMENT_NAME[] = u"_rels";
    static constexpr char16_t RELATIONSHIP_PART_EXTENSION_NAME[] = u".rels";

    void init();

    static bool isRelationshipPath(std::u16string_view path);

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

/// These compare the name with any string; the string need not be a part name.
OPC_MODEL_EXPORT bool operator==(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator!=(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator<(const PartName& left, const std::u16string& right);
OPC_MODEL_EXPORT bool operator==(const std::u16string& left, const PartName& right);
OPC_MODEL_EXPORT bool operator!=(const std::u16string& left, const PartName& right);
OPC_MODEL_EXPORT bool operator<(const std::u16string& left, const PartName& right);

} // namespace opc::model

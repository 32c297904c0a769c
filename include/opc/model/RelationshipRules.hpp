#pragma once

#include <opc/model/Export.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace opc::model {

/// Checks single relationships of a relationships part. A store can use it to leave out those that make a part
/// unreadable, so that the other relationships can be read.
///
/// The checks are the same as when the part is read: the schema, and the rules beyond the schema. The caller must check
/// that the IDs of one part differ.
class OPC_MODEL_EXPORT RelationshipRules {
public:
    /// The attributes of a `Relationship` element, with entities and character references replaced. An attribute that
    /// the element doesn't have is empty.
    struct Attributes {
        std::optional<std::u16string_view> id;
        std::optional<std::u16string_view> type;
        std::optional<std::u16string_view> target;
        std::optional<std::u16string_view> targetMode;
    };

    /// @return what is wrong, in English ("Target is empty"); empty if the relationship can be read
    static std::string findDefect(const Attributes& attributes);

    /// Whether a whole document has the plain form that nearly all documents have, contains only relationships, and can be
    /// read. This takes much less time than parsing.
    static bool isPlain(std::string_view document);

    /// @return an ID, type or target as it is read: each run of white space becomes one blank, and white space at both
    ///         ends is removed
    static std::u16string read(std::u16string_view value);
};

} // namespace opc::model

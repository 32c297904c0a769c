#pragma once

#include <opc/model/Export.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace opc::model {

/// Tells of single relationships whether a relationships part that has them can be read. For stores that leave out
/// what can't, so that the other relationships of the part can be read.
///
/// The checks are those of reading itself, by the schema of relationships parts and beyond it. That IDs differ within
/// one part is for the caller to see to.
class OPC_MODEL_EXPORT RelationshipRules {
public:
    /// The attributes of a `Relationship` element, with their entities and character references replaced; nothing
    /// where it has none.
    struct Attributes {
        std::optional<std::u16string_view> id;
        std::optional<std::u16string_view> type;
        std::optional<std::u16string_view> target;
        std::optional<std::u16string_view> targetMode;
    };

    /// @return what is wrong, in English ("Target is empty"); empty if the relationship can be read
    static std::string findDefect(const Attributes& attributes);

    /// Whether a whole document is in the plain form that nearly all have, and can be read: all its relationships can, and
    /// it has nothing else. Takes a small part of the time that parsing takes.
    static bool isPlain(std::string_view document);

    /// An ID, type or target as reading gives it: runs of white space are one blank each, and none stands at the ends.
    static std::u16string read(std::u16string_view value);
};

} // namespace opc::model

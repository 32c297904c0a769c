#pragma once

#include "Markup.hpp"

#include <string_view>
#include <vector>

namespace opc::physical::lenient {

inline constexpr std::u16string_view COMPATIBILITY_NAMESPACE =
    u"http://schemas.openxmlformats.org/markup-compatibility/2006";

/// What a document is for a program that processes markup compatibility (ECMA-376 Part 3), as one that reads relationships
/// does [M1.31].
class MarkupCompatibility {
public:
    /// What becomes of an element.
    enum class Role {
        Content, ///< it counts
        Wrapper, ///< what is in it counts, in its place
        Ignored, ///< neither counts
    };

    /// @param markup      must outlive this object
    /// @param understood  the namespaces that the program knows
    /// @throws Exception  the document says that a program must understand more than that, or uses markup compatibility
    ///                    wrongly
    MarkupCompatibility(const Markup& markup, const std::vector<std::u16string_view>& understood);

    Role role(std::size_t element) const { return found[element].role; }

    /// The element that one that counts stands in, among those that count; `Element::NO_PARENT` for the root.
    std::size_t parent(std::size_t element) const { return found[element].parent; }

    /// Whether an attribute of an element that counts is one to ignore.
    bool isIgnored(const Element& element, std::size_t attribute) const {
        return !ignoredAttributes.empty() && ignoredAttributes[element.firstAttribute + attribute];
    }

    /// Whether there is anything that another program may read otherwise: to ignore, or to read in place of what it
    /// stands in.
    bool ignoresAny() const { return anyIgnored; }

private:
    friend class CompatibilityWalk;

    struct Found {
        std::size_t parent;
        Role role;
    };

    std::vector<Found> found;
    std::vector<bool> ignoredAttributes; ///< empty if the document has no markup compatibility
    bool anyIgnored = false;
};

} // namespace opc::physical::lenient

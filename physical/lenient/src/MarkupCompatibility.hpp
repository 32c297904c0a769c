#pragma once

#include "Markup.hpp"

#include <string_view>
#include <vector>

namespace opc::physical::lenient {

inline constexpr std::u16string_view COMPATIBILITY_NAMESPACE =
    u"http://schemas.openxmlformats.org/markup-compatibility/2006";

/// What a document means to a program that processes markup compatibility (ECMA-376 Part 3), as readers of
/// relationships do [M1.31].
class MarkupCompatibility {
public:
    /// How an element is treated.
    enum class Role {
        Content, ///< it counts
        Wrapper, ///< its content counts in its place
        Ignored, ///< neither the element nor its content counts
    };

    /// @param markup      must outlive this object
    /// @param understood  the namespaces that the program knows
    /// @throws Exception  the document requires a program to understand more than that, or uses markup compatibility
    ///                    wrongly
    MarkupCompatibility(const Markup& markup, const std::vector<std::u16string_view>& understood);

    Role role(std::size_t element) const { return found[element].role; }

    /// The parent of an element that counts, among those that count; `Element::NO_PARENT` for the root.
    std::size_t parent(std::size_t element) const { return found[element].parent; }

    /// Whether an attribute of an element that counts is ignored.
    bool isIgnored(const Element& element, std::size_t attribute) const {
        return !ignoredAttributes.empty() && ignoredAttributes[element.firstAttribute + attribute];
    }

    /// Whether another program may read something else: something that is ignored here, or another alternative.
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

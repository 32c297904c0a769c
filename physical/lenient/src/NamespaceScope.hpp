#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

/// The namespaces that are declared where a walk through a document stands (Namespaces in XML 1.0). The texts
/// aren't owned.
class NamespaceScope {
public:
    NamespaceScope();

    /// Begins an element, whose declarations follow.
    void enter() { counts.push_back(0); }

    /// @param prefix  empty for the default namespace
    void declare(std::u16string_view prefix, std::u16string_view namespaceURI);

    /// Ends the element, and takes its declarations back.
    void leave();

    /// The namespace that a prefix stands for; empty if for none.
    std::u16string_view find(std::u16string_view prefix) const;

private:
    // A tree, since nobody can choose prefixes that make it slow.
    using Declarations = std::map<std::u16string_view, std::vector<std::u16string_view>>;

    Declarations declarations;                 // the innermost one last
    std::vector<Declarations::iterator> inUse; // in the order in which they were declared
    std::vector<std::size_t> counts;           // of each open element
};

} // namespace opc::physical::lenient

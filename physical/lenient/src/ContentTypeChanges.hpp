#pragma once

#include "ContentTypeEntries.hpp"
#include "Document.hpp"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace opc::physical::lenient {

/// The facts of an open package that decide how its content types can be written.
struct ContentTypesContext {
    /// Names of parts that were created or deleted since the document was read, in lower case. Only needed for names
    /// whose entries don't count.
    std::set<std::u16string> renewed;
    /// Extensions that must get no Default, because it would also cover hidden items or parts with an odd entry.
    std::set<std::u16string> withheld;
};

/// Applies the model's changes of the content types to the document that they were read from. Entries that were left
/// out stay, and so does a Default that no part uses any more: it does no harm. But if the model has changed an
/// entry, or its part is new, nothing in the document contradicts that.
/// @param original  the document of the package
/// @param wanted    the document that the model has written
/// @param parts     gives the names of all parts that aren't hidden; called only if needed
/// @return nothing if the document doesn't change
std::optional<Bytes> carryContentTypes(const Bytes& original, const Bytes& wanted,
                                       const ContentTypesContext& context,
                                       const std::function<std::vector<std::u16string>()>& parts);

} // namespace opc::physical::lenient

#pragma once

#include "ContentTypeEntries.hpp"
#include "Document.hpp"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace opc::physical::lenient {

/// What has happened in an open package that says how its content types can be written.
struct ContentTypesContext {
    /// Names of parts that have come or gone since the document was read, in lower case. Only those that have entries
    /// which don't count are needed.
    std::set<std::u16string> renewed;
    /// Extensions that must get no Default, since it would cover hidden items too, or parts with an odd entry.
    std::set<std::u16string> withheld;
};

/// Carries what the model has changed in the content types into the document that it was read from. Entries that were
/// left out stay, and so does a Default that no part rests on any more: it does no harm. But where the model has
/// changed an entry, or its part is a new one, nothing in the document says otherwise.
/// @param original  the document of the package
/// @param wanted    the document that the model writes
/// @param parts     gives the names of all parts that aren't hidden; called if they are needed
/// @return nothing if the document needn't change
std::optional<Bytes> carryContentTypes(const Bytes& original, const Bytes& wanted,
                                       const ContentTypesContext& context,
                                       const std::function<std::vector<std::u16string>()>& parts);

} // namespace opc::physical::lenient

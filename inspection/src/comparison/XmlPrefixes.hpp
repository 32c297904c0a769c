#pragma once

#include "hash/TextHash.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::inspection {

/// Gives each namespace one prefix: mostly that of the document that used it first. Documents that share this object can be
/// compared as texts, whatever their own prefixes.
class XmlPrefixes {
public:
    struct Namespace {
        std::u16string uri;
        std::u16string prefix; ///< empty for one namespace at most
    };

    /// Notes a prefix of a document. The first one of a namespace counts.
    void suggest(std::u16string_view uri, std::u16string_view prefix);

    /// @return the place among `all()`
    std::size_t find(std::u16string_view uri);

    const std::vector<Namespace>& all() const { return namespaces; }

private:
    std::u16string makePrefix(const std::u16string& uri);

    std::unordered_map<std::u16string, std::u16string, TextHash> suggestions;
    std::unordered_map<std::u16string, std::size_t, TextHash> places;
    std::unordered_set<std::u16string, TextHash> taken;
    std::vector<Namespace> namespaces;
    std::size_t made = 0;
};

} // namespace opc::inspection

#pragma once

#include "memory/Arena.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

namespace opc::model {

/// A prefix of names, and what it stands for.
struct ScannedPrefix {
    std::u16string name;                           ///< empty for names without a prefix
    std::vector<const std::u16string*> namespaces; ///< the innermost last; empty: it is undeclared

    /// Valid if there is one, or for names without a prefix.
    std::u16string_view namespaceURI() const {
        return namespaces.empty() ? std::u16string_view() : *namespaces.back();
    }
};

/// A name of an element or an attribute, as it stands in the document.
struct ScannedName {
    std::string_view text;
    std::u16string_view local;
    ScannedPrefix* prefix;

    bool hasPrefix() const { return !prefix->name.empty(); }
};

/// The different names of a document: each is looked at once.
class ScannedNames {
public:
    ScannedNames();
    ScannedNames(const ScannedNames&) = delete;
    ScannedNames& operator=(const ScannedNames&) = delete;

    /// @param text  of name characters in ASCII, and colons
    /// @return null if it isn't a name with one prefix at most, or there are too many
    ScannedName* find(std::string_view text);

    ScannedPrefix& prefix(std::u16string_view name);

private:
    static constexpr std::size_t TABLE_SIZE = 2048; ///< a power of two
    static constexpr std::size_t MOST_NAMES = 1000; ///< far below what the parser refuses

    ScannedName* add(std::string_view text);

    std::array<std::uint16_t, TABLE_SIZE> table{}; ///< of places in `names`, from 1
    std::array<ScannedName*, MOST_NAMES> names;    ///< the first `count`
    std::size_t count = 0;
    std::forward_list<ScannedPrefix> prefixes;
    std::array<std::byte, 2048> usualMemory; ///< most documents need no more
    Arena memory{usualMemory.data(), usualMemory.size()};
};

} // namespace opc::model

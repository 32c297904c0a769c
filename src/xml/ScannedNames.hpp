#pragma once

#include "memory/Arena.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace opc::model {

/// A prefix of names, and what it stands for.
struct ScannedPrefix {
    std::u16string_view name;         ///< empty for names without a prefix
    std::u16string_view namespaceURI; ///< that is in force; a view of null if it is undeclared
    ScannedPrefix* next;              ///< another one of the document

    bool isDeclared() const { return namespaceURI.data() != nullptr; }
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

    /// @param name  must outlive this object if it isn't a prefix of a name that was found
    ScannedPrefix& prefix(std::u16string_view name);

    /// Keeps the name of a namespace, once.
    /// @param uri  in UTF-16 or ASCII
    template <typename Text>
    std::u16string_view keepNamespace(Text uri);

    std::size_t namespaceCount() const { return keptNamespaces; }

private:
    static constexpr std::size_t TABLE_SIZE = 2048; ///< a power of two
    static constexpr std::size_t MOST_NAMES = 1000; ///< far below what the parser refuses

    struct Namespace {
        std::u16string_view uri;
        Namespace* next;
    };

    ScannedName* add(std::string_view text);

    template <typename Text>
    std::u16string_view keep(Text text);

    std::array<std::uint16_t, TABLE_SIZE> table{}; ///< of places in `names`, from 1
    std::array<ScannedName*, MOST_NAMES> names;    ///< the first `count`
    std::size_t count = 0;
    ScannedPrefix xml;
    ScannedPrefix* prefixes = &xml;  ///< the first one
    Namespace* namespaces = nullptr; ///< the first one that was declared
    std::size_t keptNamespaces = 0;
    std::array<std::byte, 2048> usualMemory; ///< most documents need no more
    Arena memory{usualMemory.data(), usualMemory.size()};
};

} // namespace opc::model

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace opc::standard_signatures {

/// A canonical form while it is written. It has room for many short pieces, which a string looks for piece by piece.
class CanonicalText {
public:
    /// @param room  for as many bytes, before it grows
    explicit CanonicalText(std::size_t room = 4096) : text(room, '\0') {}

    std::size_t size() const { return used; }

    void put(char c) {
        if (used == text.size())
            grow(1);
        text[used++] = c;
    }

    void put(std::string_view piece) {
        if (text.size() - used < piece.size())
            grow(piece.size());
        used += piece.copy(text.data() + used, piece.size());
    }

    /// A name with its prefix, if it has one.
    void putName(std::string_view prefix, std::string_view name) {
        put(prefix);
        if (!prefix.empty())
            put(':');
        put(name);
    }

    /// The content of a text node (Canonical XML 1.0 section 2.3).
    void putText(std::string_view value) { putEscaped(value, TEXT); }

    /// The value of an attribute (Canonical XML 1.0 section 2.3).
    void putValue(std::string_view value) { putEscaped(value, VALUE); }

    /// What was written. Nothing is written behind it.
    std::string take() {
        text.resize(used);
        return std::move(text);
    }

private:
    /// By byte: whether it can't stand as it is.
    using Specials = std::array<bool, 256>;

    static constexpr Specials specialsOf(std::string_view characters) {
        Specials all{};
        for (const char c : characters)
            all[static_cast<unsigned char>(c)] = true;
        return all;
    }

    static const Specials TEXT, VALUE;

    void grow(std::size_t least) { text.resize(text.size() + std::max(text.size(), least)); }

    void putEscaped(std::string_view value, const Specials& specials);

    std::string text; ///< with room behind what was written
    std::size_t used = 0;
};

} // namespace opc::standard_signatures

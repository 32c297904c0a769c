#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// Finds out which elements stand in an XML document, from its bytes as they come. It costs a small part of a parse, and
/// answers whether one is worth it: it may take a tag in a comment for an element, and never overlooks one.
class TagNames {
public:
    /// @param names  local names of elements to look for, at most 64; they live as long as this object
    explicit TagNames(std::vector<std::string_view> names);

    /// Forgets the last document.
    /// @param head  the first bytes of the next one
    void begin(std::string_view head);

    void add(std::string_view piece);

    /// Whether one of the names stood in a tag, or may have: a document that isn't in UTF-8 or ASCII isn't looked into.
    bool any() const { return seen != 0 || isOpaque; }

    /// Whether only `some` of the names stood in tags.
    bool only(std::initializer_list<std::string_view> some) const;

private:
    void addName(std::string_view text);

    const std::vector<std::string_view> names;
    std::uint32_t firstLetters[8] = {}; // a bit for each byte that a name begins with
    std::uint64_t seen = 0;
    std::string cut; // a tag's name that the last piece ended in
    bool isOpaque = false;
};

/// Whether content is XML by its first bytes. Also true for UTF-16 and UTF-32.
bool looksLikeXml(std::string_view head);

/// Whether the bytes of a document are its ASCII characters, as far as it has any: not so in UTF-16, UTF-7 or EBCDIC.
bool isAsciiCompatible(std::string_view head);

} // namespace opc::inspection

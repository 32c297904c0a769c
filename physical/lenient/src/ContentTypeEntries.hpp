#pragma once

#include "Markup.hpp"

#include <opc/interfaces/Oddity.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace opc::model {
class ContentTypeRules;
}

namespace opc::physical::lenient {

/// An entry of a content types stream: an element `Default` or `Override`, valid or not.
struct ContentTypeEntry {
    enum class Kind { Default, Override };
    enum class Standing {
        Counts,  ///< the first valid one with its extension or part name
        Repeats, ///< a further one with that key
        LeftOut, ///< can't be read
    };

    static std::u16string_view elementName(Kind kind);

    /// Where the attribute with the key is.
    static std::u16string_view keyName(Kind kind);

    Kind kind;
    Standing standing;
    bool lacksSlash;            ///< at the start of its part name
    std::u16string key;         ///< the extension, or the part name with its slash, in lower case
    std::u16string contentType; ///< as in the document
    std::size_t element;        ///< its index in the markup
    std::string defect;         ///< why it is left out, in English
};

/// The entries of a content types stream, each read by itself.
class ContentTypeEntries {
public:
    using Kind = ContentTypeEntry::Kind;
    using Standing = ContentTypeEntry::Standing;

    /// The entries with one kind and key. The first one counts, the others repeat it.
    struct Group {
        const ContentTypeEntry* first;
        const ContentTypeEntry* last;
        const ContentTypeEntry* begin() const { return first; }
        const ContentTypeEntry* end() const { return last; }
    };

    /// @param markup  needed only during this call
    /// @throws Exception  the root isn't that of a content types stream
    ContentTypeEntries(const Markup& markup, model::ContentTypeRules& rules);

    /// Sorted by kind and key.
    const std::vector<ContentTypeEntry>& all() const { return entries; }

    /// The first entry of a group; null if there is none.
    /// @param key  in lower case
    const ContentTypeEntry* findFirst(Kind kind, std::u16string_view key) const;

    /// The entry that counts; null if all were left out, or there are none.
    const ContentTypeEntry* find(Kind kind, std::u16string_view key) const {
        const ContentTypeEntry* const first = findFirst(kind, key);
        return first != nullptr && first->standing == Standing::Counts ? first : nullptr;
    }

    /// The end of the group that begins with an entry.
    Group groupOf(const ContentTypeEntry& first) const;

    /// What breaks the standard, ordered by line.
    const std::vector<interfaces::Oddity>& oddities() const { return found; }

    /// How many of the oddities other programs may read in another way.
    std::size_t countDisputed() const { return disputed; }

    /// Whether the model reads the same from the document itself.
    bool areReadAsTheyAre() const { return readAsTheyAre; }

    /// The document for the model: a plain one with all entries except those that were left out.
    /// @param additions  more elements
    std::string toDocument(std::u16string_view additions) const;

private:
    friend class ContentTypesReader;

    std::vector<ContentTypeEntry> entries;
    std::vector<interfaces::Oddity> found;
    std::size_t disputed = 0;
    bool readAsTheyAre = true;
};

} // namespace opc::physical::lenient

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

/// An entry of a content types stream: an element `Default` or `Override`, good or not.
struct ContentTypeEntry {
    enum class Kind { Default, Override };
    enum class Standing {
        Counts,  ///< the first good one for its extension or part name
        Repeats, ///< one more for the same
        LeftOut, ///< what can't be read
    };

    static std::u16string_view elementName(Kind kind);

    /// Of the attribute that says what the entry is for.
    static std::u16string_view keyName(Kind kind);

    Kind kind;
    Standing standing;
    bool lacksSlash;            ///< in front of its part name
    std::u16string key;         ///< the extension, or the part name with its slash, in lower case
    std::u16string contentType; ///< as it is written
    std::size_t element;        ///< its place in the markup
    std::string defect;         ///< why it is left out, in English
};

/// The entries of a content types stream, each read by itself.
class ContentTypeEntries {
public:
    using Kind = ContentTypeEntry::Kind;
    using Standing = ContentTypeEntry::Standing;

    /// The entries of one kind and key. That which counts stands first, then those that repeat it.
    struct Group {
        const ContentTypeEntry* first;
        const ContentTypeEntry* last;
        const ContentTypeEntry* begin() const { return first; }
        const ContentTypeEntry* end() const { return last; }
    };

    /// @param markup  is needed no longer than this takes
    /// @throws Exception  the root isn't that of a content types stream
    ContentTypeEntries(const Markup& markup, model::ContentTypeRules& rules);

    /// Sorted by kind and key.
    const std::vector<ContentTypeEntry>& all() const { return entries; }

    /// The first entry of a group; null if there is none.
    /// @param key  in lower case
    const ContentTypeEntry* findFirst(Kind kind, std::u16string_view key) const;

    /// The one that counts; null if all have been left out, or there are none.
    const ContentTypeEntry* find(Kind kind, std::u16string_view key) const {
        const ContentTypeEntry* const first = findFirst(kind, key);
        return first != nullptr && first->standing == Standing::Counts ? first : nullptr;
    }

    /// The group that begins with an entry.
    Group groupOf(const ContentTypeEntry& first) const;

    /// What breaks the standard, in the order of lines.
    const std::vector<interfaces::Oddity>& oddities() const { return found; }

    /// How many of the oddities other programs may read otherwise.
    std::size_t countDisputed() const { return disputed; }

    /// Whether the model reads the same from the document itself.
    bool areReadAsTheyAre() const { return readAsTheyAre; }

    /// What the model is to read in place of the document: a plain one with all entries that aren't left out.
    /// @param additions  elements to be added
    std::string toDocument(std::u16string_view additions) const;

private:
    friend class ContentTypesReader;

    std::vector<ContentTypeEntry> entries;
    std::vector<interfaces::Oddity> found;
    std::size_t disputed = 0;
    bool readAsTheyAre = true;
};

} // namespace opc::physical::lenient

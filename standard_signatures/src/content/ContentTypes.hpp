#pragma once

#include "hash/TextHash.hpp"

#include <opc/core/InputStream.hpp>

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace opc::standard_signatures {

/// The content types stream, read by namespace. In it nothing is left to interpretation.
class ContentTypes {
public:
    /// @param stream  open, at its first byte
    /// @throws Refusal  with `ContentTypeChanged`: it has something foreign, or two entries for the same parts
    /// @throws model::InvalidXMLDocument
    /// @throws the exceptions of the stream
    static ContentTypes read(InputStream& stream);

    /// The content type of a part as it stands; null if it has none, or if the entry writes its name or extension in another
    /// way, so that not all programs find it. An extension in lower case is what all look for.
    /// @param partKey  what `partKeyOf` makes of the name
    /// @param isOwn    gets whether it is in an entry for this part alone
    const std::string* find(const std::string& partName, const std::string& partKey, bool& isOwn);

    /// Those of all entries that were found for no part, but for the extension of relationships, which always has one.
    std::set<std::string> unused() const;

    /// The name or extension in an entry from which some programs may read another one, and which was found for no part; null
    /// if there is none.
    const std::string* findOddName() const;

private:
    class Reader;

    struct Entry {
        std::string written; ///< the name of the part, or the extension
        std::string contentType;
        bool isFound = false; ///< for a part

        const std::string* take() {
            isFound = true;
            return &contentType;
        }
    };
    /// By what some programs take for the same name.
    using Entries = std::unordered_map<std::string, Entry, TextHash>;

    Entries overrides, defaults;
};

} // namespace opc::standard_signatures

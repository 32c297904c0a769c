#pragma once

#include "contenttypes/ContentTypesScanner.hpp"
#include "package/PartKeys.hpp"

#include <string_view>
#include <vector>

namespace opc::model {

/// The content types of a stream in the plain form, found by the keys of part names.
class ContentTypeTable {
public:
    /// Takes the entries of a stream.
    /// @param scanned  must outlive this object, with the stream
    /// @param keys     makes the keys of the entries, and must outlive this object
    /// @return false if a part name isn't usual, two entries are for the same, or relationships parts get another type.
    ///         Ignore the object then
    bool take(const ScannedContentTypes& scanned, PartKeys& keys);

    /// @param key  of a part name
    /// @return the content type of the part; empty if there is none
    std::string_view find(std::string_view key) const;

private:
    struct Entry {
        std::string_view key; ///< of a part name, or an extension in lower case
        std::string_view contentType;
    };
    using Entries = std::vector<Entry>;

    static Entries sorted(const std::vector<ScannedContentType>& scanned, PartKeys& keys);
    static bool hasTwins(const Entries& entries);
    static std::string_view find(const Entries& entries, std::string_view key);

    Entries defaults;
    Entries overrides;
};

} // namespace opc::model

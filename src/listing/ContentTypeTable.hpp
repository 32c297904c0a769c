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
    /// @return false if two entries are for the same, or relationships parts get another type. Ignore the object then
    bool take(const ScannedContentTypes& scanned, PartKeys& keys);

    /// Finds the content type of a part.
    /// @param key  of its name. The keys of calls ascend
    /// @return the content type; empty if there is none
    std::string_view findNext(std::string_view key);

    /// Whether a relationships part has a content type.
    /// @param key  of its name
    bool coversRelationships(std::string_view key) const;

    /// Whether the entries of parts that weren't found are for usual names, after all parts.
    bool hasUsualRest();

private:
    struct Entry {
        std::string_view key; ///< of a part name, or an extension in lower case
        std::string_view written;
        std::string_view contentType;
    };
    using Entries = std::vector<Entry>;

    static Entries sorted(const std::vector<ScannedContentType>& scanned, PartKeys& keys);
    static bool hasTwins(const Entries& entries);
    static bool isUsual(const Entry& entry);
    static std::string_view find(const Entries& entries, std::string_view key);

    Entries defaults;
    Entries overrides;
    Entries ofRelationships; ///< overrides of relationships parts
    Entries::const_iterator next =
        overrides.end();  ///< the first override that wasn't compared with a part yet
    bool areUsual = true; ///< those that were compared and belong to none
};

} // namespace opc::model

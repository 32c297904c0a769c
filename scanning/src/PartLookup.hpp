#pragma once

#include <opc/scanning/Result.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::scanning {

/// Says for the targets of nearly all relationships whether they are parts, in a fraction of the time that it takes to
/// resolve a URI.
class PartLookup {
public:
    /// @param parts  sorted by name, ignoring the case of ASCII letters; must outlive this object
    explicit PartLookup(const std::vector<ScannedPart>& parts) : parts(parts) {}

    /// Whose relationships come next: a part name, or "/". It must outlive the calls that follow.
    void setSource(std::string_view source);

    /// @param target  of an internal relationship, as it stands
    bool leadsToPart(std::string_view target);

    /// The same, by plain segments alone.
    /// @return nothing if the source or the target has more than plain segments, after `..` at its begin
    std::optional<bool> find(std::string_view target);

private:
    bool resolvesToPart(std::string_view target) const;
    bool isPart(std::string_view partName) const;

    const std::vector<ScannedPart>& parts;
    std::string_view sourceName;
    std::string_view folder; ///< of the source, without the slash at its end
    bool isPlainFolder = true;
    std::string name; ///< that a target leads to; it keeps its room for the next one
};

} // namespace opc::scanning

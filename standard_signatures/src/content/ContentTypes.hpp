#pragma once

#include <opc/core/InputStream.hpp>

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

    /// The content type of a part as it stands; null if it has none.
    const std::string* find(std::string_view partName) const;

private:
    class Reader;

    std::unordered_map<std::string, std::string> overrides; ///< by the keys of part names
    std::unordered_map<std::string, std::string> defaults;  ///< by extensions in lower case
};

} // namespace opc::standard_signatures

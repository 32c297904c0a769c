#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>

namespace opc::model {

class ContentTypeMap;

/// Reads and writes the XML document in the content types stream. One in the plain form that nearly all have is
/// scanned, and Xerces not woken for it; any other goes to a validating parser.
class ContentTypeSerializer {
public:
    /// Replaces what `map` holds. Of entries with the same key the first counts.
    /// @throws InvalidPartContent  the document isn't valid
    /// @throws InvalidContentType, InvalidURI
    void read(ContentTypeMap& map, InputStream& stream) const;

    /// The same by the validating parser alone, whatever the form, into a map that is empty.
    void parse(ContentTypeMap& map, InputStream& stream) const;

    /// Writes the entries that count: all `Override`, and each `Default` that a part rests on.
    /// @throws InvalidPartContent
    void write(const ContentTypeMap& map, OutputStream& stream) const;

    /// The same by Xerces alone, whatever the values.
    void writeByXerces(const ContentTypeMap& map, OutputStream& stream) const;
};

} // namespace opc::model

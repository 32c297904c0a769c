#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/core/OutputStream.hpp>
#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesString.hpp>

namespace opc::model {

class ContentTypeMap;

/// Reads and writes the XML document in the content types stream.
class ContentTypeSerializer {
public:
    ContentTypeSerializer();

    /// Replaces what `map` holds. Of entries with the same key the first counts.
    /// @throws InvalidPartContent  the document isn't valid
    /// @throws InvalidContentType, InvalidURI
    void read(ContentTypeMap& map, InputStream& stream) const;

    /// Writes the entries that count: all `Override`, and each `Default` that a part rests on.
    /// @throws InvalidPartContent
    void write(ContentTypeMap& map, OutputStream& stream) const;

private:
    void parse(ContentTypeMap& map, InputStream& stream) const;

    XercesGuard guard;
    XercesString namespaceURI;
    XercesString typesName;
    XercesString defaultName;
    XercesString extensionName;
    XercesString contentTypeName;
    XercesString overrideName;
    XercesString partNameName;
};

} // namespace opc::model

#pragma once

#include <opc/model/ContentType.hpp>
#include <opc/model/Export.hpp>
#include <opc/model/URI.hpp>

#include <string>

namespace opc::model {

/// What the Open Packaging Conventions fix for every package: names, content types and relationship types.
///
/// Static operations without state, free for any thread. Each call builds a new value.
class OPC_MODEL_EXPORT PackageHelper {
public:
    PackageHelper() = delete;

    /// "/", the source of the package's own relationships.
    static URI getPackageRootURI();

    /// Where the core properties stand unless an application chooses another name.
    static URI getCorePropertiesURI();

    static ContentType getCorePropertiesContentType();
    static std::u16string getCorePropertiesRelationshipType();

    /// The content type of every relationships part.
    static ContentType getRelationshipContentType();

    static std::u16string getThumbnailRelationshipType();

    /// "/metadata/thumbnail" with an extension.
    /// @param extension  with or without its dot; empty for none
    /// @throws InvalidURI  if the extension makes no URI
    static URI getThumbnailURI(const std::u16string& extension);
};

} // namespace opc::model

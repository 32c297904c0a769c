#pragma once

#include <opc/inspection/Archive.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace opc::inspection {

/// What makes an office program turn to the target of an external relationship.
enum class ExternalEffect {
    LoadsOnOpen,  ///< opening the document is enough; some programs ask first
    OpensOnClick, ///< a person follows a link
    Other         ///< the relationship has a type that is neither
};

/// Where the target of an external relationship lies.
enum class ExternalPlace {
    Web, ///< on a server: `http:`, `https:`, `ftp:` …
    Share, ///< on a file server: `\\host\…`, `file://host/…`; asking for it can hand over the user's credentials
    File, ///< on the machine, or beside the package: `file:///…`, `C:\…`, a relative reference
    Mail, ///< `mailto:`
    Other ///< another scheme, a place within the document, or nothing
};

/// A relationship that leads out of the package. Texts are UTF-8, as they stand in the package.
struct External {
    std::string source; ///< the name of the source part; "/" for the package
    std::string id;
    std::string type;
    std::string target;
    ExternalEffect effect;
    ExternalPlace place;
};

/// The effect of a relationship type. The last segment of the type decides, so that types of the transitional and the
/// strict form, and those under other bases, are classed alike.
OPC_INSPECTION_EXPORT ExternalEffect effectOf(std::string_view type);

/// The place of a target.
/// @param target  as it stands in the relationship, in UTF-8; any text
OPC_INSPECTION_EXPORT ExternalPlace placeOf(std::string_view target);

/// What leads out of a package.
struct Externals {
    /// A relationships part that can't be read to its end: what stands behind that place isn't known.
    struct Unread {
        std::string part;
        std::string reason;
    };

    std::vector<External> found; ///< in the order of the relationships parts
    std::vector<Unread> unread;
};

/// Lists the external relationships of a package, also where it breaks rules. Nothing is fetched.
/// @throws opc::Exception  there is no ZIP archive, or its bytes can't be read
OPC_INSPECTION_EXPORT Externals listExternals(const Archive& archive,
                                              const physical::ZipOptions& limits = {});

/// `loads`, `click`, `other`.
OPC_INSPECTION_EXPORT std::string_view toString(ExternalEffect effect);
/// `web`, `share`, `file`, `mail`, `other`.
OPC_INSPECTION_EXPORT std::string_view toString(ExternalPlace place);

} // namespace opc::inspection

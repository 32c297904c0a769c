#pragma once

#include <opc/inspection/Export.hpp>

#include <string_view>

namespace opc::inspection {

/// What content is by its first bytes.
enum class ContentKind {
    Unknown,
    Png,
    Jpeg,
    Gif,
    Tiff,
    Bmp,
    Emf,
    Wmf,
    Pdf,
    Ole,
    Zip,
    Html,
    Xml,
    Program,
    Script,
    Shortcut
};

OPC_INSPECTION_EXPORT ContentKind kindOf(std::string_view head);

/// What a content type promises.
/// @param mediaType  without parameters, in lower case
/// @return Unknown if the type doesn't say
ContentKind kindOfType(std::string_view mediaType);

bool isImage(ContentKind kind);

/// Whether opening a file of this kind runs it.
bool isRun(ContentKind kind);

/// With an article, for messages: `a PNG image`.
std::string_view describe(ContentKind kind);

} // namespace opc::inspection

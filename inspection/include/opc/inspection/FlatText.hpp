#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/inspection/Export.hpp>

#include <iosfwd>

namespace opc::inspection {

struct FlatTextOptions {
    bool namesPart = false; ///< each line begins with the name of the part
};

/// Writes the whole package as one text in UTF-8, for tools that compare and search lines. The order is always the same:
/// relationships of the package, then the parts by name, each with its content type and its relationships by id, then
/// items that are no parts. A part that is XML stands there with one element a line, any other as its size and SHA-256
/// digest. What can't be read is said in the text. A file that is no ZIP archive is one line.
///
/// Characters that could control a terminal are written as references, or become blanks. Contents are read piece by piece.
/// @throws opc::Exception  the archive's bytes can't be read
OPC_INSPECTION_EXPORT void writeFlatText(const Archive& archive, std::ostream& output,
                                         const FlatTextOptions& options = {});

} // namespace opc::inspection

#pragma once

#include <cstddef>

namespace opc::model {

constexpr char OTHER_ENCODING[] =
    "XML content must be UTF-8 or UTF-16 or empty (i.e., absent XML declaration)";

/// How the bytes of a document make units of its encoding.
struct DocumentUnits {
    std::size_t size = 1; ///< how many bytes the encoding takes at a time
    bool isHighFirst = false;

    /// @param bytes  the first ones of the document, four if there are so many
    static DocumentUnits of(const unsigned char* bytes, std::size_t count);
};

} // namespace opc::model

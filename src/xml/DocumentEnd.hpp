#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace opc::model {

/// Finds what Xerces takes for the end of a document although more bytes follow: the character U+0000, and a character that
/// lacks bytes.
class DocumentEnd {
public:
    /// @param bytes  the next ones of the document; at first, enough of them to tell the encoding
    /// @throws InvalidXMLDocument
    void pass(const unsigned char* bytes, std::size_t count);

    /// Call it when all bytes were passed.
    /// @throws InvalidXMLDocument
    void finish() const;

private:
    std::size_t unitSize = 1; ///< how many bytes the encoding takes at a time
    std::uint64_t total = 0;  ///< bytes that were passed
    std::size_t zeros = 0;    ///< of them, the last ones
    std::string tail;         ///< the last bytes
};

} // namespace opc::model

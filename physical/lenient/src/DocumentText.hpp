#pragma once

#include <opc/physical/LenientExport.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace opc::physical::lenient {

using Bytes = std::vector<unsigned char>;

/// The text of a document, and its encoding: UTF-8 or UTF-16, with or without a byte order mark.
class OPC_LENIENT_EXPORT DocumentText {
public:
    /// @return nothing if the bytes aren't well-formed in the encoding that their beginning indicates
    static std::optional<DocumentText> decode(const Bytes& bytes);

    /// Without the byte order mark.
    const std::u16string& text() const { return decoded; }

    /// Encodes another text in the same way. What both texts have in common keeps its bytes.
    Bytes encode(std::u16string_view other) const;

private:
    enum class Encoding { UTF8, UTF16LittleEndian, UTF16BigEndian };

    void findEncoding(const Bytes& bytes);
    bool decodeUTF8(const Bytes& bytes, std::size_t begin);
    bool decodeUTF16(const Bytes& bytes, std::size_t begin);

    Encoding encoding = Encoding::UTF8;
    bool hasMark = false;
    std::u16string decoded;
};

} // namespace opc::physical::lenient

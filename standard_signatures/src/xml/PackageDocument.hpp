#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/XmlEvents.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace opc::standard_signatures {

/// Receives what stands in a document of a package in which all programs read the same characters: it is XML 1.0, in UTF-8 or
/// in UTF-16 behind its byte order mark [M1.17], and if it names its encoding, it is the one that its bytes have.
class PackageDocument : public model::XmlEvents {
public:
    static constexpr std::uint64_t MOST_BYTES = 32U << 20;

    /// @param stream  open, at its first byte
    /// @throws model::InvalidXMLDocument
    /// @throws the exceptions of the stream, and of the functions that receive what stands in the document
    void read(InputStream& stream, std::uint64_t mostBytes = MOST_BYTES);

    /// Refuses documents in UTF-16, and those in which some programs see other values (`UsualSpelling`).
    void requireUsualSpelling() { needsUsualSpelling = true; }

    void onVersion(std::u16string_view version) final;
    void onDeclaration(std::u16string_view encoding) final;

protected:
    /// Whether a text is white space, of which the document has at most 1 MiB in all: some programs stop at more of it.
    bool isLittleSpace(std::u16string_view text);

    [[noreturn]] static void refuse(const std::string& reason);

private:
    class CheckedBytes;

    bool isUTF16 = false;
    bool needsUsualSpelling = false;
    std::size_t spaceLeft = 1U << 20;
};

} // namespace opc::standard_signatures

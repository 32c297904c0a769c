#pragma once

#include <opc/core/InputStream.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace opc::model {

/// A stream over the bytes of a text that are digested or signed: its code units, low byte first. The stream makes them
/// as they are read, since the text of a package object can be large.
class SignedText final : public InputStream {
public:
    /// @param beginning  the beginning of the text
    /// @param remainder  the rest of the text. The characters of both must outlive this object
    explicit SignedText(std::u16string_view beginning, std::u16string_view remainder = {})
        : piece(beginning), next(remainder) {}

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;

private:
    std::u16string_view piece; // the text that hasn't been read to its end
    std::u16string_view next;
    bool isInsideUnit = false; // whether the low byte of the first unit in the piece was already read
};

/// The bytes of a text at once.
std::vector<unsigned char> toSignedBytes(std::u16string_view text);

} // namespace opc::model

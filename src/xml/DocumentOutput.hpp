#pragma once

#include "xml/DocumentBudget.hpp"

#include <opc/core/OutputStream.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace opc::model {

/// Appends what is written to a text.
class StringOutput : public OutputStream {
public:
    explicit StringOutput(std::string& text) : text(text) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        text.append(buffer, buffer + count);
        return count;
    }
    bool isDone() const override { return false; }
    void flush() override {}
    void close() override {}

private:
    std::string& text;
};

/// Writes a whole document, and flushes the stream. Stops when the stream says that it is done.
void writeDocument(std::string_view document, OutputStream& stream);

/// Writes a document that replaces the one that was read or written before, and counts it towards the limits in its
/// place.
/// @param share   a share of no document
/// @param holder  keeps the share of the document
/// @throws InvalidPartContent  a limit is exceeded; the share of the old document has been returned
template <typename Holder>
void writeInPlaceOfOld(std::string_view document, std::uint64_t elements, DocumentShare share,
                       const Holder& holder, OutputStream& stream) {
    holder.keepShare({});
    share.addBytes(document.size());
    share.addElements(elements);
    writeDocument(document, stream);
    holder.keepShare(std::move(share));
}

} // namespace opc::model

#pragma once

#include "support/PackageContent.hpp"

#include <opc/core/InputStream.hpp>
#include <opc/model/XmlEvents.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace opc::test {

/// Writes down the events of a document.
class EventLog final : public model::XmlEvents {
public:
    void onVersion(std::u16string_view version) override;
    void onDeclaration(std::u16string_view encoding) override;
    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override;
    void onEnd() override;
    void onText(std::u16string_view text) override;
    void onComment(std::u16string_view text) override;
    void onInstruction(std::u16string_view target, std::u16string_view data) override;

    /// In UTF-8: a line for each event, with pieces of text put together.
    std::string lines;

private:
    bool isInText = false;
};

/// The bytes of a vector, some at a time.
class SlowStream final : public InputStream {
public:
    SlowStream(const std::vector<unsigned char>& bytes, std::size_t most) : bytes(bytes), most(most) {}

    void open() override { position = 0; }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return position == bytes.size(); }
    void close() override {}

private:
    const std::vector<unsigned char>& bytes;
    const std::size_t most;
    std::size_t position = 0;
};

/// The events of a document, and the failure behind them.
struct LoggedEvents {
    std::string lines;
    std::string failure; ///< class, message and details; empty if there is none

    std::string whole() const { return lines + (failure.empty() ? "" : "\n" + failure); }
};
LoggedEvents eventsOf(const Bytes& document, std::size_t bytesAtATime = 1U << 20);

/// Compares what `readXmlDocument` tells with what the parser alone does. Of a document that fails, one can tell more
/// events than the other in front of the failure: the parser decodes ahead.
/// @return both, if they differ
std::string findEventDifference(const Bytes& document, std::size_t bytesAtATime = 1U << 20);

/// Whether the whole document is scanned, and not parsed.
bool isScanned(const Bytes& document);

} // namespace opc::test

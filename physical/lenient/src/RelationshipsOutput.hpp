#pragma once

#include "RelationshipsDocument.hpp"

#include <opc/interfaces/IPhysicalOutputStream.hpp>

namespace opc::interfaces {
class IPhysicalPart;
}

namespace opc::physical::lenient {

/// Receives the relationships part that the model writes. At `close`, applies the changes to the part's own document.
/// If nothing has changed, the part isn't written.
class RelationshipsOutput : public interfaces::IPhysicalOutputStream {
public:
    /// @param part  must outlive this object
    /// @param old   the part's own document
    /// @throws Exception  it can't be read
    RelationshipsOutput(interfaces::IPhysicalPart& part, const Bytes& old,
                        RelationshipsDocument::Source source)
        : part(part), document(old, source) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        written.insert(written.end(), buffer, buffer + count);
        return count;
    }
    bool isDone() const override { return false; }
    void flush() override {}
    void close() override;

    /// Whether the store may have an incomplete document after a failure.
    bool hasFailed() const { return state == State::Writing; }

    /// Drops what the model has written, so that it can be written again.
    void restart() { written.clear(); }

private:
    enum class State { Collecting, Writing, Written };

    interfaces::IPhysicalPart& part;
    const RelationshipsDocument document;
    Bytes written;
    State state = State::Collecting;
};

} // namespace opc::physical::lenient

#pragma once

#include "RelationshipsDocument.hpp"

#include <opc/interfaces/IPhysicalOutputStream.hpp>

namespace opc::interfaces {
class IPhysicalPart;
}

namespace opc::physical::lenient {

/// Takes the document of a relationships part that the model writes, and carries into the part's own document what has
/// changed, when it is closed. If nothing has, the part isn't written.
class RelationshipsOutput : public interfaces::IPhysicalOutputStream {
public:
    /// @param part  must outlive this object
    /// @param old   the part's own document
    /// @throws Exception  it can't be read
    RelationshipsOutput(interfaces::IPhysicalPart& part, const Bytes& old, WellFormedness& wellFormedness,
                        RelationshipsDocument::Source source)
        : part(part), document(old, wellFormedness, source) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        written.insert(written.end(), buffer, buffer + count);
        return count;
    }
    bool isDone() const override { return false; }
    void flush() override {}
    void close() override;

    /// Whether a failure may have left a part of the document in the store.
    bool hasFailed() const { return state == State::Writing; }

    /// Forgets what the model has written, to be written again.
    void restart() { written.clear(); }

private:
    enum class State { Collecting, Writing, Written };

    interfaces::IPhysicalPart& part;
    const RelationshipsDocument document;
    Bytes written;
    State state = State::Collecting;
};

} // namespace opc::physical::lenient

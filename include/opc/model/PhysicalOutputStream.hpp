#pragma once

#include <opc/core/OutputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalOutputStream;
}

namespace opc::model {

/// A stream of the physical layer in the form of the core library: each operation forwards to the one of the
/// same name, without a buffer or a test of its own.
///
/// The physical stream isn't owned, and must outlive the adapter. Belongs to the thread that uses the part.
class OPC_MODEL_EXPORT PhysicalOutputStream : public OutputStream {
public:
    explicit PhysicalOutputStream(interfaces::IPhysicalOutputStream* stream) noexcept
        : physicalStream(stream) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void flush() override;
    void close() override;
    ~PhysicalOutputStream() override;

private:
    interfaces::IPhysicalOutputStream* physicalStream;
};

} // namespace opc::model

#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalInputStream;
}

namespace opc::model {

/// A stream of the physical layer in the form of the core library: each operation forwards to the one of the
/// same name, without a buffer or a test of its own.
///
/// The physical stream isn't owned, and must outlive the adapter. Belongs to the thread that uses the part.
class OPC_MODEL_EXPORT PhysicalInputStream : public InputStream {
public:
    explicit PhysicalInputStream(interfaces::IPhysicalInputStream* stream) noexcept
        : physicalStream(stream) {}

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;
    ~PhysicalInputStream() override;

private:
    interfaces::IPhysicalInputStream* physicalStream;
};

} // namespace opc::model

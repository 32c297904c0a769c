#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalInputStream;
}

namespace opc::model {

/// A stream of the physical layer in the form of the core library: each operation forwards to the one of the
/// same name, without a buffer of its own.
///
/// The physical stream isn't owned, and must outlive the adapter; those that a `Part` hands out raise
/// `InvalidPartStream` once its content has been deleted. Belongs to the thread that uses the part.
class OPC_MODEL_EXPORT PhysicalInputStream : public InputStream {
public:
    /// @throws InvalidPartStream  `stream` is null
    explicit PhysicalInputStream(interfaces::IPhysicalInputStream* stream);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;
    ~PhysicalInputStream() override;

private:
    friend class Part;

    /// The physical stream is there no longer.
    void disconnect() noexcept { physicalStream = nullptr; }
    interfaces::IPhysicalInputStream& connected() const;

    interfaces::IPhysicalInputStream* physicalStream;
};

} // namespace opc::model

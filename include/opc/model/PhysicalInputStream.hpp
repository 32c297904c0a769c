#pragma once

#include <opc/core/InputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalInputStream;
}

namespace opc::model {

/// Adapts a stream of a store to the interface `opc::InputStream`. Each operation calls the operation with the same name,
/// without a buffer.
///
/// It doesn't own the stream of the store, which must outlive it. The adapters that a `Part` returns throw
/// `InvalidPartStream` after the content of the part was deleted. Use them in the thread of the package.
class OPC_MODEL_EXPORT PhysicalInputStream : public InputStream {
public:
    /// @throws InvalidPartStream  `physicalStream` is null
    explicit PhysicalInputStream(interfaces::IPhysicalInputStream* physicalStream);

    void open() override;
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void close() override;
    ~PhysicalInputStream() override;

private:
    friend class Part;

    /// Says that the stream of the store no longer exists.
    void disconnect() noexcept { physicalStream = nullptr; }
    interfaces::IPhysicalInputStream& connected() const;

    interfaces::IPhysicalInputStream* physicalStream;
};

} // namespace opc::model

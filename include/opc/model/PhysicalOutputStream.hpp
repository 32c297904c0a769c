#pragma once

#include <opc/core/OutputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalOutputStream;
}

namespace opc::model {

/// Adapts a stream of a store to the interface `opc::OutputStream`. Each operation calls the operation with the same name,
/// without a buffer.
///
/// It doesn't own the stream of the store, which must outlive it. The adapters that a `Part` returns throw
/// `InvalidPartStream` after the content of the part was deleted. Use them in the thread of the package.
class OPC_MODEL_EXPORT PhysicalOutputStream : public OutputStream {
public:
    /// @throws InvalidPartStream  `physicalStream` is null
    explicit PhysicalOutputStream(interfaces::IPhysicalOutputStream* physicalStream);

    /// @throws opc::Exception  with the code 5 (input/output error): the stream of the store has written another number
    ///                         of bytes and hasn't thrown
    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void flush() override;
    void close() override;
    ~PhysicalOutputStream() override;

private:
    friend class Part;

    /// Continues with another stream of the store.
    /// @throws InvalidPartStream  `stream` is null
    void connect(interfaces::IPhysicalOutputStream* stream);

    /// Says that the stream of the store no longer exists.
    void disconnect() noexcept { physicalStream = nullptr; }
    interfaces::IPhysicalOutputStream& connected() const;

    interfaces::IPhysicalOutputStream* physicalStream = nullptr;
};

} // namespace opc::model

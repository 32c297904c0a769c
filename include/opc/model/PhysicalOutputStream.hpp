#pragma once

#include <opc/core/OutputStream.hpp>
#include <opc/model/Export.hpp>

namespace opc::interfaces {
class IPhysicalOutputStream;
}

namespace opc::model {

/// A stream of the physical layer in the form of the core library: each operation forwards to the one of the
/// same name, without a buffer of its own.
///
/// The physical stream isn't owned, and must outlive the adapter; those that a `Part` hands out raise
/// `InvalidPartStream` once its content has been deleted. Belongs to the thread that uses the part.
class OPC_MODEL_EXPORT PhysicalOutputStream : public OutputStream {
public:
    /// @throws InvalidPartStream  `stream` is null
    explicit PhysicalOutputStream(interfaces::IPhysicalOutputStream* stream);

    /// @throws opc::Exception  with the code 5 (input/output error): the physical stream has written fewer
    ///                         bytes without raising
    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override;
    void flush() override;
    void close() override;
    ~PhysicalOutputStream() override;

private:
    friend class Part;

    /// The physical stream is there no longer.
    void disconnect() noexcept { physicalStream = nullptr; }
    interfaces::IPhysicalOutputStream& connected() const;

    interfaces::IPhysicalOutputStream* physicalStream;
};

} // namespace opc::model

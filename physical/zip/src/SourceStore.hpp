#pragma once

#include "SpooledStore.hpp"

#include <opc/physical/RandomAccessSource.hpp>

namespace opc::physical::zip {

class OPC_ZIP_EXPORT SourceBytes : public WindowedBytes {
public:
    /// @param bytes  must outlive this object
    explicit SourceBytes(RandomAccessSource& bytes) : application(bytes), sizeAtOpen(bytes.size()) {}

    std::uint64_t size() const noexcept override { return sizeAtOpen; }

private:
    int fetch(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) override;

    RandomAccessSource& application;
    const std::uint64_t sizeAtOpen;
};

/// An archive whose bytes the application brings.
class SourceStore : public SpooledStore {
public:
    /// @param bytes  must outlive this object
    SourceStore(RandomAccessSource& bytes, const ZipOptions& options)
        : SpooledStore(options), application(bytes) {}

    std::string place() const override { return "archive of the application"; }
    std::shared_ptr<ByteSource> read() override;
    bool isSlow() const override { return !kept(); }

private:
    RandomAccessSource& application;
};

} // namespace opc::physical::zip

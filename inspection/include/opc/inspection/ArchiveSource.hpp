#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/physical/RandomAccessSource.hpp>

namespace opc::inspection {

/// The bytes of an archive for a `ZipPackage`, so that the model opens what was mended or made without a file of its own.
class ArchiveSource : public physical::RandomAccessSource {
public:
    /// @param archive  must outlive this object
    explicit ArchiveSource(const Archive& archive) : archive(archive) {}

    std::uint64_t size() override { return archive.size(); }
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) override {
        return archive.read(offset, buffer, count);
    }

private:
    const Archive& archive;
};

} // namespace opc::inspection

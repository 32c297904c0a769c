#pragma once

#include <opc/inspection/Archive.hpp>
#include <opc/physical/RandomAccessSource.hpp>

namespace opc::editing::archive {

/// The bytes of an archive, for those that read archives in another way.
class ArchiveSource : public physical::RandomAccessSource {
public:
    /// @param archive  must outlive this object
    explicit ArchiveSource(const inspection::Archive& archive) : archive(archive) {}

    std::uint64_t size() override { return archive.size(); }
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) override {
        return archive.read(offset, buffer, count);
    }

private:
    const inspection::Archive& archive;
};

} // namespace opc::editing::archive

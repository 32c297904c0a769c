#include "archive/Ambiguities.hpp"

#include "zip/src/ArchiveReader.hpp"

#include <opc/core/Exception.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <memory>

namespace opc::inspection::archive {

using namespace physical::zip;

namespace {

/// The bytes of an archive that is open.
class OpenArchive final : public ByteSource {
public:
    explicit OpenArchive(const Archive& archive) : archive(archive) {}

    std::uint64_t size() const noexcept override { return archive.size(); }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) override {
        got = archive.read(offset, buffer, count);
        return 0;
    }

private:
    const Archive& archive;
};

} // namespace

std::vector<Ambiguity> findAmbiguities(const Archive& archive) {
    physical::ZipOptions options;
    options.lenient = true;
    try {
        ArchiveReader reader(std::make_shared<OpenArchive>(archive), archive.place(), options,
                             ArchiveReader::HeaderCheck::Now);
        reader.searchContents();
        return reader.ambiguities();
    } catch (const Exception&) {
        return {};
    }
}

} // namespace opc::inspection::archive

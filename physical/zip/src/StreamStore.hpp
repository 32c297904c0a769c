#pragma once

#include "ArchiveStore.hpp"
#include "Spool.hpp"

#include <iosfwd>

namespace opc::physical {
struct ZipOptions;
}

namespace opc::physical::zip {

/// An archive that comes from a stream. The stream is read once, from its position to its end, when the archive is
/// first needed. Its bytes, and those of a new archive, are kept in memory while they are few, otherwise in a
/// temporary file without a name.
class StreamStore : public ArchiveStore {
public:
    StreamStore(std::istream& stream, const ZipOptions& options);

    std::string place() const override { return "archive from a stream"; }
    std::shared_ptr<ByteSource> read() override;
    void checkWritable() const override {}
    void replace(const ByteSource* old, const std::function<void(ByteTarget&)>& write) override;
    std::filesystem::path temporaryFolder() const override { return folder; }

private:
    void readStream();

    std::istream* input; ///< null after it was read
    std::filesystem::path folder;
    std::uint64_t sizeLimit;
    std::shared_ptr<SpoolStore> spools;
    std::shared_ptr<Spool> archive;
};

} // namespace opc::physical::zip

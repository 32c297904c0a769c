#pragma once

#include "ArchiveStore.hpp"
#include "Spool.hpp"

#include <iosfwd>

namespace opc::physical {
struct ZipOptions;
}

namespace opc::physical::zip {

/// An archive that comes from a stream. The stream is read once, from where it stands to its end, when the
/// archive is asked for; what is read, and what replaces it, is kept in memory while it is small and in a
/// temporary file without a name otherwise.
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

    std::istream* input; ///< null once it has been read
    std::filesystem::path folder;
    std::uint64_t sizeLimit;
    std::shared_ptr<SpoolStore> spools;
    std::shared_ptr<Spool> archive;
};

} // namespace opc::physical::zip

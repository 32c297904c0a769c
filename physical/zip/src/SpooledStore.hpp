#pragma once

#include "ArchiveStore.hpp"
#include "Spool.hpp"

#include <cstdint>

namespace opc::physical {
struct ZipOptions;
}

namespace opc::physical::zip {

/// An archive without a file of its own. New archives are kept in memory while they are small, otherwise in a temporary
/// file without a name.
class OPC_ZIP_EXPORT SpooledStore : public ArchiveStore {
public:
    void checkWritable() const override {}
    void replace(const FileState& old, const std::function<void(ByteTarget&)>& write) override;
    std::filesystem::path temporaryFolder() const override { return folder; }

protected:
    explicit SpooledStore(const ZipOptions& options);

    /// The archive that was saved last, or that `keep` was given; null before.
    const std::shared_ptr<Spool>& kept() const { return archive; }
    std::shared_ptr<Spool> makeSpool() const { return std::make_shared<Spool>(spools); }
    void keep(std::shared_ptr<Spool> spool) { archive = std::move(spool); }

private:
    std::filesystem::path folder;
    std::shared_ptr<SpoolStore> spools;
    std::shared_ptr<Spool> archive;
};

} // namespace opc::physical::zip

#include "SpooledStore.hpp"

#include <opc/core/Exception.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <cerrno>
#include <exception>

namespace opc::physical::zip {

namespace {

class SpoolTarget : public ByteTarget {
public:
    explicit SpoolTarget(Spool& spool) noexcept : spool(spool) {}

    int writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) noexcept override {
        try {
            spool.writeAt(offset, buffer, count);
            return 0;
        } catch (const Exception& failure) {
            return failure.code().value();
        } catch (const std::exception&) {
            return ENOMEM;
        }
    }

private:
    Spool& spool;
};

} // namespace

SpooledStore::SpooledStore(const ZipOptions& options)
    : folder(options.temporaryFolder.empty() ? systemTemporaryFolder() : options.temporaryFolder),
      spools(std::make_shared<SpoolStore>(folder, options.memoryForWrittenParts)) {
}

void SpooledStore::replace(const FileState& /*old*/, const std::function<void(ByteTarget&)>& write) {
    std::shared_ptr<Spool> spool = makeSpool();
    SpoolTarget target(*spool);
    write(target);
    keep(std::move(spool));
}

} // namespace opc::physical::zip

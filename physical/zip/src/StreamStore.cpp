#include "StreamStore.hpp"

#include "Failure.hpp"

#include <opc/core/Exception.hpp>
#include <opc/physical/ZipOptions.hpp>

#include <cerrno>
#include <istream>

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

StreamStore::StreamStore(std::istream& stream, const ZipOptions& options)
    : input(&stream),
      folder(options.temporaryFolder.empty() ? systemTemporaryFolder() : options.temporaryFolder),
      sizeLimit(options.maxTotalSize),
      spools(std::make_shared<SpoolStore>(folder, options.memoryForWrittenParts)) {
}

std::shared_ptr<ByteSource> StreamStore::read() {
    if (input)
        readStream();
    if (!archive || archive->size() == 0)
        failSystem(place(), "can't open", ENOENT);
    return archive;
}

void StreamStore::readStream() {
    auto spool = std::make_shared<Spool>(spools);
    std::vector<char> block(std::size_t{64} * 1024);
    while (*input) {
        input->read(block.data(), static_cast<std::streamsize>(block.size()));
        spool->write(reinterpret_cast<const unsigned char*>(block.data()),
                     static_cast<std::size_t>(input->gcount()));
        if (spool->size() > sizeLimit)
            fail(place(), "longer than the limit of " + std::to_string(sizeLimit) + " bytes", EFBIG);
    }
    if (!input->eof())
        fail(place(), "can't read the stream", EIO);
    archive = std::move(spool);
    input = nullptr;
}

void StreamStore::replace(const ByteSource* /*old*/, const std::function<void(ByteTarget&)>& write) {
    auto spool = std::make_shared<Spool>(spools);
    SpoolTarget target(*spool);
    write(target);
    archive = std::move(spool);
    input = nullptr;
}

} // namespace opc::physical::zip

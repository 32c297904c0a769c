#include "archive/TemporaryArchive.hpp"

#include "zip/src/Failure.hpp"
#include "zip/src/SpooledStore.hpp"

#include <opc/physical/RandomAccessSource.hpp>

#include <cerrno>
#include <memory>
#include <utility>

namespace opc::editing::archive {

using namespace physical::zip;

namespace {

class NewArchiveStore : public SpooledStore {
public:
    explicit NewArchiveStore(const physical::ZipOptions& options) : SpooledStore(options) {}

    std::string place() const override { return "temporary archive"; }
    std::shared_ptr<ByteSource> read() override { return kept(); }
};

class Bytes : public physical::RandomAccessSource {
public:
    explicit Bytes(std::shared_ptr<ByteSource> source) : source(std::move(source)) {}

    std::uint64_t size() override { return source->size(); }
    std::size_t read(std::uint64_t offset, unsigned char* buffer, std::size_t count) override {
        std::size_t got = 0;
        if (const int error = source->readAt(offset, buffer, count, got))
            failSystem("temporary archive", "can't read", error);
        return got;
    }

private:
    std::shared_ptr<ByteSource> source;
};

} // namespace

inspection::Archive makeTemporaryArchive(const physical::ZipOptions& options,
                                         const std::function<void(ByteTarget&)>& write) {
    NewArchiveStore store(options);
    store.replace({}, write);
    return inspection::Archive(std::make_shared<Bytes>(store.read()), options);
}

} // namespace opc::editing::archive

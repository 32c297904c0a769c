#include "StreamStore.hpp"

#include "Failure.hpp"

#include <opc/physical/ZipOptions.hpp>

#include <cerrno>
#include <istream>
#include <vector>

namespace opc::physical::zip {

StreamStore::StreamStore(std::istream& stream, const ZipOptions& options)
    : SpooledStore(options), input(&stream), sizeLimit(options.maxTotalSize) {
}

std::shared_ptr<ByteSource> StreamStore::read() {
    if (input && !kept())
        readStream();
    if (!kept() || kept()->size() == 0)
        failSystem(place(), "can't open", ENOENT);
    return kept();
}

void StreamStore::readStream() {
    std::shared_ptr<Spool> spool = makeSpool();
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
    keep(std::move(spool));
    input = nullptr;
}

} // namespace opc::physical::zip

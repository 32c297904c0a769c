#pragma once

#include "SpooledStore.hpp"

#include <iosfwd>

namespace opc::physical::zip {

/// An archive that comes from a stream. The stream is read once, from its position to its end, when the archive is
/// first needed.
class StreamStore : public SpooledStore {
public:
    StreamStore(std::istream& stream, const ZipOptions& options);

    std::string place() const override { return "archive from a stream"; }
    std::shared_ptr<ByteSource> read() override;

private:
    void readStream();

    std::istream* input; ///< null after it was read
    std::uint64_t sizeLimit;
};

} // namespace opc::physical::zip

#pragma once

#include "SpooledStore.hpp"

namespace opc::physical {
class RandomAccessSource;
}

namespace opc::physical::zip {

/// An archive whose bytes the application brings.
class SourceStore : public SpooledStore {
public:
    /// @param bytes  must outlive this object
    SourceStore(RandomAccessSource& bytes, const ZipOptions& options)
        : SpooledStore(options), application(bytes) {}

    std::string place() const override { return "archive of the application"; }
    std::shared_ptr<ByteSource> read() override;
    bool isSlow() const override { return !kept(); }

private:
    RandomAccessSource& application;
};

} // namespace opc::physical::zip

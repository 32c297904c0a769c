#pragma once

#include "zip/src/ZipContentReader.hpp"

#include <opc/core/InputStream.hpp>

#include <optional>
#include <vector>

namespace opc::inspection::archive {

/// Reads one item, or pieces as one content.
class ItemStream : public InputStream {
public:
    /// @param reader  must outlive this object
    /// @throws opc::Exception  the first item can't be read
    ItemStream(physical::zip::ArchiveReader& reader, std::vector<physical::zip::ItemIndex> items)
        : reader(reader), items(std::move(items)) {
        ItemStream::open();
    }

    void open() override {
        content.emplace(reader, physical::zip::ItemRange{items.data(), items.data() + items.size()});
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        return content->read(buffer, count);
    }
    bool isDone() const override { return !content || content->isDone(); }
    void close() override { content.reset(); }

private:
    physical::zip::ArchiveReader& reader;
    std::vector<physical::zip::ItemIndex> items;
    std::optional<physical::zip::ItemReader> content;
};

} // namespace opc::inspection::archive

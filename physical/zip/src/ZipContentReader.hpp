#pragma once

#include "ArchiveReader.hpp"
#include "Spool.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace opc::physical::zip {

/// Reads a content once, from its first byte to its last.
class ZipContentReader {
public:
    virtual ~ZipContentReader() = default;
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;
    virtual bool isDone() const = 0;
};

/// Reads one item of an archive, or several that are the pieces of one content. Holds an inflater only while
/// it stands within an item.
class ItemReader : public ZipContentReader {
public:
    ItemReader(ArchiveReader& reader, std::vector<ItemIndex> pieces);
    ItemReader(const ItemReader&) = delete;
    ItemReader& operator=(const ItemReader&) = delete;
    ~ItemReader() override;

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return current == items.size(); }

private:
    void enterItem();
    void startItem();
    void endItem();
    std::size_t copy(unsigned char* buffer, std::size_t count);
    std::size_t expand(unsigned char* buffer, std::size_t count);

    ArchiveReader& archive;
    std::vector<ItemIndex> items;
    std::size_t current = 0;            ///< which of `items`
    std::uint64_t left = 0;             ///< bytes of it that haven't been read
    std::uint64_t compressedOffset = 0; ///< of what hasn't been read or given to the inflater
    std::uint64_t compressedEnd = 0;
    std::uint32_t checksum = 0;
    std::unique_ptr<Inflater> inflater; ///< null for a stored item
    bool started = false;
    bool damaged = false;
};

/// Reads what has been written; more may be written meanwhile.
class SpoolReader : public ZipContentReader {
public:
    SpoolReader(std::shared_ptr<Spool> content, std::string contentPlace)
        : spool(std::move(content)), place(std::move(contentPlace)) {}

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return position >= spool->size(); }

private:
    std::shared_ptr<Spool> spool;
    std::string place;
    std::uint64_t position = 0;
};

} // namespace opc::physical::zip

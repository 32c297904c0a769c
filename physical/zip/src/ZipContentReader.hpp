#pragma once

#include "ArchiveReader.hpp"
#include "Spool.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// Items of an archive that are the pieces of one content, in order; or the one item that is a content.
struct ItemRange {
    const ItemIndex* first;
    const ItemIndex* last; ///< behind the last one

    const ItemIndex* begin() const { return first; }
    const ItemIndex* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
};

/// Reads a content once, from its first byte to its last.
class OPC_ZIP_EXPORT ZipContentReader {
public:
    virtual ~ZipContentReader() = default;
    virtual std::uint64_t read(unsigned char* buffer, std::uint64_t count) = 0;
    virtual bool isDone() const = 0;

    /// Done, and nothing more can come: the reader is of no use any longer.
    virtual bool isAtEnd() const = 0;
};

/// Reads one item of an archive, or several that are the pieces of one content. Holds an inflater, or a small
/// content as a whole, only while it stands within an item.
class OPC_ZIP_EXPORT ItemReader : public ZipContentReader {
public:
    /// @param items  must outlive the reader
    ItemReader(ArchiveReader& archive, ItemRange items);
    ItemReader(const ItemReader&) = delete;
    ItemReader& operator=(const ItemReader&) = delete;
    ~ItemReader() override;

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return items.first == items.last; }
    bool isAtEnd() const override { return isDone(); }

private:
    ItemIndex item() const { return *items.first; }
    void enterItem();
    void startItem();
    void endItem();
    void endStream();
    std::size_t readFirst(unsigned char* buffer, std::size_t room);
    std::size_t readOn(unsigned char* buffer, std::size_t room);
    std::size_t readKept(unsigned char* buffer, std::size_t room);
    void loadInput();
    std::size_t copy(unsigned char* buffer, std::size_t count);
    std::size_t expand(unsigned char* buffer, std::size_t count);

    ArchiveReader& archive;
    ItemRange items;                    ///< that haven't been read to their end
    std::uint64_t left = 0;             ///< bytes of the first one that haven't been read
    std::uint64_t compressedOffset = 0; ///< of what hasn't been read or given to the inflater
    std::uint64_t compressedEnd = 0;
    std::unique_ptr<Inflater> inflater;
    std::vector<unsigned char> kept; ///< the content as a whole; empty if it is inflated as it is read
    std::uint32_t checksum = 0;
    bool isDeflated = false;
    bool started = false;
    bool ended = false;      ///< the compressed stream has said that it ends
    bool unfinished = false; ///< it doesn't, or needn't, although all of the content has come out
    bool damaged = false;
};

/// Reads what has been written; more may be written meanwhile.
class SpoolReader : public ZipContentReader {
public:
    /// @param owner  whose content `spool` is; must outlive the reader
    SpoolReader(std::shared_ptr<Spool> spool, const ZipContent& owner)
        : spool(std::move(spool)), owner(owner) {}

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override;
    bool isDone() const override { return position >= spool->size(); }
    bool isAtEnd() const override { return false; }

private:
    std::shared_ptr<Spool> spool;
    const ZipContent& owner;
    std::uint64_t position = 0;
};

} // namespace opc::physical::zip

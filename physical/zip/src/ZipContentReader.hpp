#pragma once

#include "ArchiveReader.hpp"
#include "Spool.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace opc::physical::zip {

class ZipContent;

/// The items of an archive that are the pieces of one content, in order; or the only item of a content.
struct ItemRange {
    const ItemIndex* first;
    const ItemIndex* last; ///< after the last one

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

    /// Ended for good: nothing more can come, and the reader can be dropped.
    virtual bool isAtEnd() const = 0;
};

/// Reads one item of an archive, or several that are the pieces of one content. It has an inflater, or a small
/// content as a whole, only while it is within an item.
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
    ItemRange items;                    ///< those that weren't read to their end
    std::uint64_t left = 0;             ///< the unread bytes of the first one
    std::uint64_t compressedOffset = 0; ///< the offset of what wasn't read or passed to the inflater yet
    std::uint64_t compressedEnd = 0;
    std::unique_ptr<Inflater> inflater;
    std::vector<unsigned char> kept; ///< the content as a whole; empty if it is inflated while it is read
    std::uint32_t checksum = 0;
    bool isDeflated = false;
    bool started = false;
    bool ended = false;      ///< the compressed stream has ended
    bool unfinished = false; ///< all content is there, and the stream doesn't end or need not end
    bool damaged = false;
};

/// Reads what was written. More may be written meanwhile.
class SpoolReader : public ZipContentReader {
public:
    /// @param owner  the content of `spool`; must outlive the reader
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

#pragma once

#include "ByteSource.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace opc::physical::zip {

/// What all parts share that are written to one open package: the allowed memory, and the temporary file for the
/// rest. The file has no name, so it never outlives the process. It is divided into chunks, so that many parts can
/// grow at the same time with one descriptor.
class OPC_ZIP_EXPORT SpoolStore {
public:
    static constexpr std::size_t CHUNK = 1U << 20;

    SpoolStore(std::filesystem::path place, std::uint64_t memoryLimit)
        : place(std::move(place)), memoryLeft(memoryLimit) {}

    /// @return whether that much memory is left; then it is taken
    bool takeMemory(std::uint64_t count) noexcept;
    void giveMemory(std::uint64_t count) noexcept { memoryLeft += count; }

    /// @return the offset of a chunk in the file
    std::uint64_t takeChunk();
    void giveChunk(std::uint64_t offset) noexcept;

    const FileDescriptor& file() const noexcept { return descriptor; }
    std::string name() const { return place.string(); }

private:
    void makeFile();

    std::filesystem::path place;
    std::uint64_t memoryLeft;
    FileDescriptor descriptor;
    std::uint64_t fileEnd = 0;
    std::vector<std::uint64_t> freeChunks;
};

/// The content of one part while it is written: in memory while it is small, then in the store's file.
class OPC_ZIP_EXPORT Spool : public ByteSource {
public:
    explicit Spool(std::shared_ptr<SpoolStore> store) noexcept : store(std::move(store)) {}
    Spool(const Spool&) = delete;
    Spool& operator=(const Spool&) = delete;
    ~Spool() override;

    /// Appends. Throws `opc::Exception` if there is no room for the bytes.
    void write(const unsigned char* buffer, std::size_t count);

    /// Overwrites bytes, and appends those beyond the end. Throws as `write` does.
    /// @param offset  at most the size
    void writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count);

    /// False after a failed `write`: then the content is incomplete.
    bool isWhole() const noexcept { return whole; }

    std::uint64_t size() const noexcept override { return length; }
    int readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count,
               std::size_t& got) noexcept override;
    const unsigned char* inMemory() const noexcept override {
        return chunks.empty() ? memory.data() : nullptr;
    }

private:
    void overwrite(std::uint64_t offset, const unsigned char* buffer, std::size_t count);
    void writeToFile(const unsigned char* buffer, std::size_t count);

    std::shared_ptr<SpoolStore> store;
    std::vector<unsigned char> memory;
    std::vector<std::uint64_t> chunks;
    std::uint64_t length = 0;
    bool whole = true;
};

} // namespace opc::physical::zip

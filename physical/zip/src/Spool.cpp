#include "Spool.hpp"

#include "Failure.hpp"
#include "SystemFiles.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::zip {

bool SpoolStore::takeMemory(std::uint64_t count) noexcept {
    if (count > memoryLeft)
        return false;
    memoryLeft -= count;
    return true;
}

std::uint64_t SpoolStore::takeChunk() {
    if (!descriptor.isOpen())
        makeFile();
    // Reserves room for the chunk's return, because giving it back must not fail.
    const auto chunksMade = static_cast<std::size_t>(fileEnd / CHUNK);
    if (freeChunks.capacity() <= chunksMade)
        freeChunks.reserve(2 * (chunksMade + 1));
    if (freeChunks.empty()) {
        fileEnd += CHUNK;
        return fileEnd - CHUNK;
    }
    const std::uint64_t offset = freeChunks.back();
    freeChunks.pop_back();
    return offset;
}

void SpoolStore::giveChunk(std::uint64_t offset) noexcept {
    freeChunks.push_back(offset);
}

void SpoolStore::makeFile() {
    if (const int error = openTemporary(place, descriptor))
        failSystem(name(), "can't make a temporary file", error);
}

Spool::~Spool() {
    for (const std::uint64_t chunk : chunks)
        store->giveChunk(chunk);
    store->giveMemory(memory.size());
}

void Spool::write(const unsigned char* buffer, std::size_t count) {
    if (!whole)
        fail(store->name(), "nothing can be written behind a failed write", EIO);
    whole = false;
    const bool small = chunks.empty() && memory.size() + count <= SpoolStore::CHUNK;
    if (small && store->takeMemory(count)) {
        try {
            memory.insert(memory.end(), buffer, buffer + count);
        } catch (...) {
            store->giveMemory(count);
            throw;
        }
        length += count;
    } else {
        if (!memory.empty()) {
            length = 0;
            writeToFile(memory.data(), memory.size());
            store->giveMemory(memory.size());
            std::vector<unsigned char>().swap(memory);
        }
        writeToFile(buffer, count);
    }
    whole = true;
}

void Spool::writeToFile(const unsigned char* buffer, std::size_t count) {
    while (count > 0) {
        const auto used = static_cast<std::size_t>(length % SpoolStore::CHUNK);
        if (length / SpoolStore::CHUNK == chunks.size())
            chunks.push_back(store->takeChunk());
        const std::size_t step = std::min(count, SpoolStore::CHUNK - used);
        if (const int error = store->file().writeAt(chunks.back() + used, buffer, step))
            failSystem(store->name(), "can't write to the temporary file", error);
        length += step;
        buffer += step;
        count -= step;
    }
}

void Spool::writeAt(std::uint64_t offset, const unsigned char* buffer, std::size_t count) {
    const auto over = static_cast<std::size_t>(std::min<std::uint64_t>(count, length - offset));
    overwrite(offset, buffer, over);
    if (over < count)
        write(buffer + over, count - over);
}

void Spool::overwrite(std::uint64_t offset, const unsigned char* buffer, std::size_t count) {
    if (chunks.empty()) {
        std::copy_n(buffer, count, memory.begin() + static_cast<std::ptrdiff_t>(offset));
        return;
    }
    while (count > 0) {
        const auto used = static_cast<std::size_t>(offset % SpoolStore::CHUNK);
        const std::size_t step = std::min(count, SpoolStore::CHUNK - used);
        const std::uint64_t chunk = chunks[static_cast<std::size_t>(offset / SpoolStore::CHUNK)];
        if (const int error = store->file().writeAt(chunk + used, buffer, step))
            failSystem(store->name(), "can't write to the temporary file", error);
        offset += step;
        buffer += step;
        count -= step;
    }
}

int Spool::readAt(std::uint64_t offset, unsigned char* buffer, std::size_t count, std::size_t& got) noexcept {
    got = 0;
    const std::uint64_t left = length - std::min(offset, length);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    if (chunks.empty()) {
        std::copy_n(memory.data() + (length - left), wanted, buffer);
        got = wanted;
        return 0;
    }
    while (got < wanted) {
        const std::uint64_t place = offset + got;
        const auto used = static_cast<std::size_t>(place % SpoolStore::CHUNK);
        const std::size_t step = std::min(wanted - got, SpoolStore::CHUNK - used);
        std::size_t now = 0;
        const std::uint64_t chunk = chunks[static_cast<std::size_t>(place / SpoolStore::CHUNK)];
        if (const int error = store->file().readAt(chunk + used, buffer + got, step, now))
            return error;
        if (now != step)
            return EIO;
        got += now;
    }
    return 0;
}

} // namespace opc::physical::zip

#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <utility>

namespace opc {

/// Memory for many small objects, which goes back as a whole, with the arena. It comes in blocks that grow by a half.
///
/// The standard library's `monotonic_buffer_resource` does the same. A process that opens one package waits for that one:
/// for its functions and those that it calls, which the dynamic linker looks up, and for the pages in which they lie
/// (docs/performance.md has figures).
class Arena final : public std::pmr::memory_resource {
public:
    /// @param size  of the first block, which is allocated when it is needed
    explicit Arena(std::size_t size = 1024) noexcept : nextSize(std::max(size, std::size_t{1})) {}
    /// Uses the `size` bytes at `first` before it allocates any. They belong to the caller.
    Arena(std::byte* first, std::size_t size) noexcept : next(first), left(size), nextSize(size + size / 2) {}
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() override {
        while (last != nullptr)
            ::operator delete(std::exchange(last, last->previous));
    }

private:
    struct alignas(std::max_align_t) Block {
        Block* previous;
    };

    void* do_allocate(std::size_t size, std::size_t alignment) override {
        assert(alignment <= alignof(Block));
        void* place = next;
        if (std::align(alignment, size, place, left) == nullptr) {
            addBlock(size);
            place = next;
        }
        next = static_cast<std::byte*>(place) + size;
        left -= size;
        return place;
    }

    void do_deallocate(void* /*memory*/, std::size_t /*size*/, std::size_t /*alignment*/) override {}

    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }

    void addBlock(std::size_t fewest) {
        const std::size_t size = std::max(fewest, nextSize);
        last = ::new (::operator new(sizeof(Block) + size)) Block{last};
        next = reinterpret_cast<std::byte*>(last + 1);
        left = size;
        nextSize = size + size / 2;
    }

    Block* last = nullptr;
    std::byte* next = nullptr; ///< the first free byte
    std::size_t left = 0;      ///< how many free bytes there are
    std::size_t nextSize;
};

} // namespace opc

#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <utility>
#include <vector>

namespace opc::physical {

/// Memory for the nodes of one list, which all have the same size. It comes in blocks that grow with the list, and a
/// freed node is used again. All of it goes back with the pool.
///
/// Unlike the pools of the standard library, which have sizes of all kinds, it costs nothing before the first node.
class NodePool final : public std::pmr::memory_resource {
private:
    struct FreeNode {
        FreeNode* next;
    };

    void* do_allocate(std::size_t size, [[maybe_unused]] std::size_t alignment) override {
        assert(size >= sizeof(FreeNode) && alignment <= alignof(std::max_align_t));
        assert(blocks.empty() || size == nodeSize);
        if (freed != nullptr)
            return std::exchange(freed, freed->next);
        if (left == 0)
            addBlock(size);
        --left;
        return std::exchange(next, next + size);
    }

    void do_deallocate(void* node, std::size_t /*size*/, std::size_t /*alignment*/) override {
        freed = ::new (node) FreeNode{freed};
    }

    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override {
        return this == &other;
    }

    void addBlock(std::size_t size) {
        constexpr std::size_t FEWEST = 16;
        constexpr std::size_t LARGEST = 65536;
        nodeSize = size;
        count = std::min(std::max(FEWEST, 2 * count), std::max<std::size_t>(LARGEST / size, 1));
        blocks.emplace_back(new std::byte[count * size]); // not cleared
        next = blocks.back().get();
        left = count;
    }

    std::vector<std::unique_ptr<std::byte[]>> blocks;
    std::size_t nodeSize = 0;
    std::size_t count = 0;     ///< of the nodes of the last block
    std::byte* next = nullptr; ///< the first node of the last block that was never used
    std::size_t left = 0;      ///< how many of them there are
    FreeNode* freed = nullptr;
};

} // namespace opc::physical

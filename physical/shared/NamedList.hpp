#pragma once

#include "hash/TextHash.hpp"
#include "shared/NodePool.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <memory_resource>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace opc::physical {

/// Items in the order in which they were added, found by name without regard to the case of ASCII letters. Items
/// don't move. `Item` has a member `name`, a string or a view of one. Only its letter case may change.
///
/// There may be a million of them: items are allocated in blocks, and a search looks at few places.
template <typename Item>
class NamedList {
public:
    using Character = typename decltype(Item::name)::value_type;
    using Name = std::basic_string_view<Character>;
    using Items = std::pmr::list<Item>;

    NamedList() { reserve(16); }
    NamedList(const NamedList&) = delete;
    NamedList& operator=(const NamedList&) = delete;

    Item* find(Name name) {
        const Number number = *locate(hash(name), name);
        return number == NONE ? nullptr : &*entries[number].item;
    }

    /// @param arguments  for the constructor of the new item, which must have the name `name`
    /// @return null if an item with this name exists
    template <typename... Arguments>
    Item* add(Name name, Arguments&&... arguments) {
        const Hash key = hash(name);
        if (*locate(key, name) != NONE)
            return nullptr;
        if (entries.size() == chains.size())
            reserve(2 * entries.size());
        items.emplace_back(std::forward<Arguments>(arguments)...);
        Number& chain = chainOf(key);
        entries.push_back({key, chain, std::prev(items.end())});
        chain = static_cast<Number>(entries.size() - 1);
        return &items.back();
    }

    /// @return whether there was such an item
    bool remove(Name name) {
        Number* const link = locate(hash(name), name);
        const Number number = *link;
        if (number == NONE)
            return false;
        items.erase(entries[number].item);
        *link = entries[number].next;
        // The last entry takes the free number.
        const auto last = static_cast<Number>(entries.size() - 1);
        if (number != last) {
            Number* linkToLast = &chainOf(entries[last].key);
            while (*linkToLast != last)
                linkToLast = &entries[*linkToLast].next;
            *linkToLast = number;
            entries[number] = entries[last];
        }
        entries.pop_back();
        return true;
    }

    /// Reserves room in the index for this many items.
    void reserve(std::size_t count) {
        if (count <= chains.size())
            return;
        entries.reserve(count);
        chains = std::vector<Number>(count, NONE);
        for (Number number = 0; number < entries.size(); ++number)
            entries[number].next = std::exchange(chainOf(entries[number].key), number);
    }

    Items& all() { return items; }

private:
    using Hash = std::uint32_t;
    using Number = std::uint32_t; ///< the number of an entry
    static constexpr Number NONE = ~Number{0};

    struct Entry {
        Hash key;
        Number next; ///< the next one in the chain of entries with the same hash value
        typename Items::iterator item;
    };

    static Character lower(Character c) {
        return c >= 'A' && c <= 'Z' ? static_cast<Character>(c - 'A' + 'a') : c;
    }

    static bool isSame(Name left, Name right) {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                          [](Character a, Character b) { return lower(a) == lower(b); });
    }

    static Hash hash(Name name) {
        const std::uint64_t value = hashOf(name, lower);
        return static_cast<Hash>((value ^ value >> 32) * 0x9E3779B97F4A7C15 >> 32);
    }

    Number& chainOf(Hash key) {
        return chains[static_cast<std::size_t>(std::uint64_t{key} * chains.size() >> 32)];
    }

    /// @return the link to the entry with this name, or the empty link at the end of its chain
    Number* locate(Hash key, Name name) {
        const auto isIt = [&](const Entry& entry) {
            return entry.key == key && isSame(entry.item->name, name);
        };
        Number* link = &chainOf(key);
        while (*link != NONE && !isIt(entries[*link]))
            link = &entries[*link].next;
        return link;
    }

    NodePool memory;
    Items items{&memory};
    std::vector<Entry> entries;
    std::vector<Number> chains; ///< the first entry of each chain
};

} // namespace opc::physical

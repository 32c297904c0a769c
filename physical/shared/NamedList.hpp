#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <list>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace opc::physical {

/// Items in the order in which they were added, found by name without regard to the case of ASCII letters.
/// Items don't move. `Item` has a member `name`, a string or a view of one, which may change in case alone.
template <typename Item>
class NamedList {
public:
    using Character = typename decltype(Item::name)::value_type;
    using Name = std::basic_string_view<Character>;

    Item* find(Name name) {
        const auto found = locate(hash(name), name);
        return found == index.end() ? nullptr : &*found->second;
    }

    /// @param arguments  of the new item, which is to have the name `name`
    /// @return null if there is an item of this name already
    template <typename... Arguments>
    Item* add(Name name, Arguments&&... arguments) {
        const std::size_t key = hash(name);
        if (locate(key, name) != index.end())
            return nullptr;
        items.emplace_back(std::forward<Arguments>(arguments)...);
        try {
            index.emplace(key, std::prev(items.end()));
        } catch (...) {
            items.pop_back();
            throw;
        }
        return &items.back();
    }

    /// @return whether there was such an item
    bool remove(Name name) {
        const auto found = locate(hash(name), name);
        if (found == index.end())
            return false;
        items.erase(found->second);
        index.erase(found);
        return true;
    }

    /// Makes room in the index for so many items.
    void reserve(std::size_t count) { index.reserve(count); }

    std::list<Item>& all() { return items; }

private:
    /// By the hash of the name: the name itself is the item's.
    using Index = std::unordered_multimap<std::size_t, typename std::list<Item>::iterator>;

    static Character lower(Character c) {
        return c >= 'A' && c <= 'Z' ? static_cast<Character>(c - 'A' + 'a') : c;
    }

    /// FNV-1a over the characters in lower case.
    std::size_t hash(Name name) const {
        std::uint64_t value = seed;
        for (const Character c : name)
            value = (value ^ static_cast<std::uint64_t>(lower(c))) * 0x100000001B3;
        return static_cast<std::size_t>(value ^ value >> 32);
    }

    typename Index::iterator locate(std::size_t key, Name name) {
        const auto range = index.equal_range(key);
        const auto found = std::find_if(range.first, range.second, [&](const auto& candidate) {
            const Name other = candidate.second->name;
            return std::equal(name.begin(), name.end(), other.begin(), other.end(),
                              [](Character a, Character b) { return lower(a) == lower(b); });
        });
        return found == range.second ? index.end() : found;
    }

    std::list<Item> items;
    Index index;
    /// Another one in each list, so that nobody can choose names that fall together.
    std::uint64_t seed = 0xCBF29CE484222325 ^ reinterpret_cast<std::uintptr_t>(this);
};

} // namespace opc::physical

#pragma once

#include <iterator>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>

namespace opc::physical {

/// Items in the order in which they were added, found by name without regard to case. Items don't move.
/// `Item` has a member `name`.
template <typename Item>
class NamedList {
public:
    Item* find(const std::u16string& key) {
        const auto found = index.find(key);
        return found == index.end() ? nullptr : &*found->second;
    }

    /// @param key  the item's name in lower case, which isn't in the list yet
    template <typename... Arguments>
    Item& add(const std::u16string& key, Arguments&&... arguments) {
        items.emplace_back(std::forward<Arguments>(arguments)...);
        try {
            index.emplace(key, std::prev(items.end()));
        } catch (...) {
            items.pop_back();
            throw;
        }
        return items.back();
    }

    /// @return whether there was such an item
    bool remove(const std::u16string& key) {
        const auto found = index.find(key);
        if (found == index.end())
            return false;
        items.erase(found->second);
        index.erase(found);
        return true;
    }

    std::list<Item>& all() { return items; }

private:
    std::list<Item> items;
    std::unordered_map<std::u16string, typename std::list<Item>::iterator> index;
};

} // namespace opc::physical

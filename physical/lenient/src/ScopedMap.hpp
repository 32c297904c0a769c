#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace opc::physical::lenient {

/// Entries that are valid within elements. An entry of an element is valid up to the element's end, and hides entries
/// of outer elements.
template <typename Key, typename Value>
class ScopedMap {
public:
    void enter() { counts.push_back(0); }

    void add(const Key& key, Value value) {
        const auto entry = entries.try_emplace(key).first;
        entry->second.push_back(std::move(value));
        inUse.push_back(entry);
        ++counts.back();
    }

    /// Ends the element, and removes its entries.
    void leave() {
        for (; counts.back() > 0; --counts.back()) {
            inUse.back()->second.pop_back();
            inUse.pop_back();
        }
        counts.pop_back();
    }

    std::size_t depth() const { return counts.size(); }

    /// @return null if there is none
    const Value* find(const Key& key) const {
        const auto entry = entries.find(key);
        return entry == entries.end() || entry->second.empty() ? nullptr : &entry->second.back();
    }

private:
    // A tree, because no choice of keys makes a tree slow.
    using Entries = std::map<Key, std::vector<Value>>;

    Entries entries;                               // entries with the same key: the innermost one is last
    std::vector<typename Entries::iterator> inUse; // in the order in which they were added
    std::vector<std::size_t> counts;               // for each open element
};

} // namespace opc::physical::lenient

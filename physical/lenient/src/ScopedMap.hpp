#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace opc::physical::lenient {

/// What holds within elements: an entry of an element counts up to its end, in place of what an outer one says.
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

    /// Ends the element, and takes its entries back.
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
    // A tree, since nobody can choose keys that make it slow.
    using Entries = std::map<Key, std::vector<Value>>;

    Entries entries;                               // of one key the innermost one last
    std::vector<typename Entries::iterator> inUse; // in the order in which they were added
    std::vector<std::size_t> counts;               // of each open element
};

} // namespace opc::physical::lenient

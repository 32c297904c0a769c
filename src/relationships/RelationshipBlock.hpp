#pragma once

#include "memory/Arena.hpp"

#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <algorithm>
#include <cstddef>
#include <forward_list>
#include <map>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// The types of relationships. A package has few different ones, which its relationships share.
class RelationshipTypes {
public:
    /// @param type  in ASCII
    /// @return good while this object lives
    std::u16string_view share(std::string_view type) {
        const auto found = types.lower_bound(type);
        if (found != types.end() && found->first == type)
            return found->second;
        const std::string_view key = keep<char>(type);
        return types.emplace_hint(found, key, keep<char16_t>(type))->second;
    }

private:
    template <typename Unit>
    std::basic_string_view<Unit> keep(std::string_view text) {
        auto* const kept = static_cast<Unit*>(memory.allocate(text.size() * sizeof(Unit), alignof(Unit)));
        // cppcheck-suppress danglingTemporaryLifetime ; no text outlives its caller
        std::copy(text.begin(), text.end(), kept);
        return {kept, text.size()};
    }

    Arena memory;
    std::pmr::map<std::string_view, std::u16string_view> types{&memory};
};

/// The values of all relationships of one source. Their texts are stored elsewhere.
class RelationshipGroup {
public:
    using Values = Relationship::Values;

    RelationshipGroup(const URI& sourceURI, std::size_t count, std::pmr::memory_resource* memory)
        : sourceURI(sourceURI), entries(memory) {
        entries.reserve(count);
    }
    RelationshipGroup(const RelationshipGroup&) = delete;
    RelationshipGroup& operator=(const RelationshipGroup&) = delete;

    /// @return good until more relationships are added than were announced
    const Values& add(std::u16string_view id, std::u16string_view type, std::u16string_view target,
                      TargetMode mode) {
        return entries.emplace_back(Values{id, type, target, &sourceURI, mode});
    }

    void sortByID() {
        const auto precedes = [](const Values& left, const Values& right) { return left.id < right.id; };
        if (!std::is_sorted(entries.begin(), entries.end(), precedes))
            std::sort(entries.begin(), entries.end(), precedes);
    }

    const std::pmr::vector<Values>& values() const noexcept { return entries; }

private:
    const URI sourceURI;
    std::pmr::vector<Values> entries;
};

/// Relationships of one or more sources, with their texts, in one piece of memory if its size is known beforehand.
/// Everyone who has one of them shares the block, which is freed as a whole.
class RelationshipBlock {
public:
    /// The most room that a group takes.
    /// @param textLength  the length of all texts that are kept for it
    static constexpr std::size_t roomFor(std::size_t count, std::size_t textLength) {
        return sizeof(RelationshipGroup) + count * sizeof(RelationshipGroup::Values) +
               textLength * sizeof(char16_t) + 2 * sizeof(void*); // the link to the next one, and alignment
    }

    /// @param types  owns the types, if they aren't kept here
    RelationshipBlock(std::size_t room, std::shared_ptr<const RelationshipTypes> types)
        : types(std::move(types)), left(room), memory(room) {}
    RelationshipBlock(const RelationshipBlock&) = delete;
    RelationshipBlock& operator=(const RelationshipBlock&) = delete;

    /// The free room in the first piece. Beyond it the block grows.
    std::size_t room() const noexcept { return left; }

    RelationshipGroup& addGroup(const URI& source, std::size_t count) {
        use(roomFor(count, 0));
        return groups.emplace_front(source, count, &memory);
    }

    template <typename Text>
    std::u16string_view keep(const Text& text) {
        use(text.size() * sizeof(char16_t));
        auto* const kept =
            static_cast<char16_t*>(memory.allocate(text.size() * sizeof(char16_t), alignof(char16_t)));
        std::copy(text.begin(), text.end(), kept);
        return {kept, text.size()};
    }

private:
    void use(std::size_t size) { left -= std::min(left, size); }

    const std::shared_ptr<const RelationshipTypes> types;
    std::size_t left;
    Arena memory;
    std::pmr::forward_list<RelationshipGroup> groups{&memory};
};

} // namespace opc::model

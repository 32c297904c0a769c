#pragma once

#include <opc/model/Relationship.hpp>
#include <opc/model/URI.hpp>

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opc::model {

/// The types of relationships that were scanned, by their text in ASCII. A package has few: its relationships
/// share them.
using RelationshipTypes = std::map<std::string, std::u16string, std::less<>>;

/// The values of relationships of one source with all their texts, which go together: whoever has one of the
/// values shares the block.
class RelationshipBlock {
public:
    using Values = Relationship::Values;

    /// @param textLength  of all texts that will be added
    /// @param shared      where the types lie, if they aren't added
    RelationshipBlock(const URI& source, std::size_t count, std::size_t textLength,
                      std::shared_ptr<const RelationshipTypes> shared)
        : sourceURI(source), types(std::move(shared)) {
        entries.reserve(count);
        texts.reserve(textLength);
    }
    RelationshipBlock(const RelationshipBlock&) = delete;
    RelationshipBlock& operator=(const RelationshipBlock&) = delete;

    /// @param text  within the length that was announced
    template <typename Text>
    std::u16string_view addText(const Text& text) {
        const std::size_t begin = texts.size();
        texts.resize(begin + text.size());
        std::copy(text.begin(), text.end(), texts.begin() + static_cast<std::ptrdiff_t>(begin));
        return std::u16string_view(texts).substr(begin);
    }

    /// The texts lie in this block, or in what it shares.
    void add(std::u16string_view id, std::u16string_view type, std::u16string_view target, TargetMode mode) {
        entries.push_back({id, type, target, &sourceURI, mode});
    }

    void sortByID() {
        const auto precedes = [](const Values& left, const Values& right) { return left.id < right.id; };
        if (!std::is_sorted(entries.begin(), entries.end(), precedes))
            std::sort(entries.begin(), entries.end(), precedes);
    }

    const std::vector<Values>& values() const noexcept { return entries; }

private:
    const URI sourceURI;
    const std::shared_ptr<const RelationshipTypes> types;
    std::u16string texts; // never grows beyond what it has room for: views on it stay good
    std::vector<Values> entries;
};

} // namespace opc::model

#include "signatures/digests/SignedRelationships.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace opc::model {

namespace {

/// Each entry of a list takes 32 bytes.
constexpr std::uint64_t MAXIMUM_LISTED = 10000000;

/// The cost of composing a relationship, if digesting a byte of it costs 1.
constexpr std::uint64_t COMPOSING = 500;

/// Honest signatures select short relationships, some of them very often. With long ones, a small package could keep
/// a verifier busy.
constexpr std::uint64_t LONG = 1024;
constexpr std::uint64_t WORK_OF_LONG = 4;

std::uint64_t workOf(const SelectedGroup& group) {
    const bool isLong = group.length > LONG * group.relationships.size();
    return group.length * (isLong ? WORK_OF_LONG : 1);
}

} // namespace

SignedRelationships::SignedRelationships(std::vector<Group> selections) : order(std::move(selections)) {
    std::vector<const SelectedGroup*> sorted;
    sorted.reserve(order.size());
    for (const Group& group : order)
        sorted.push_back(group.get());
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    for (const SelectedGroup* const group : sorted) {
        const std::uint64_t size = group->relationships.size();
        if (different.empty() || different.back().group != group) {
            different.push_back({group, 0});
            digestWork += COMPOSING * size;
        }
        ++different.back().times;
        digestWork += workOf(*group);
        entries += size;
    }
}

std::vector<Relationship> SignedRelationships::toVector() const {
    if (entries > MAXIMUM_LISTED)
        throw Exception("No more than " + std::to_string(MAXIMUM_LISTED) +
                        " selected relationships of a signature can be listed.");
    std::vector<Relationship> all;
    all.reserve(static_cast<std::size_t>(entries));
    for (const Group& group : order)
        all.insert(all.end(), group->relationships.begin(), group->relationships.end());
    return all;
}

bool SignedRelationships::operator==(const SignedRelationships& other) const {
    std::map<const SelectedGroup*, const SelectedGroup*> alike;
    return std::equal(order.begin(), order.end(), other.order.begin(), other.order.end(),
                      [&alike](const Group& left, const Group& right) {
                          const auto [known, isNew] = alike.try_emplace(left.get(), right.get());
                          const auto& ours = left->relationships;
                          const auto& theirs = right->relationships;
                          return known->second == right.get() &&
                                 (!isNew || std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(),
                                                       [](const Relationship& a, const Relationship& b) {
                                                           return a.isCopyOf(b);
                                                       }));
                      });
}

} // namespace opc::model

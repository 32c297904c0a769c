#pragma once

#include "comparison/PackageContents.hpp"
#include "hash/TextHash.hpp"

#include <opc/inspection/Comparison.hpp>

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace opc::inspection {

/// Compares the relationships in those relationships parts of two packages that aren't the same.
class RelationshipComparison {
public:
    using Pair = std::pair<PartView*, PartView*>; ///< before and now; one can be null

    /// Both must outlive this object.
    RelationshipComparison(PackageContents& before, PackageContents& now) : before(before), now(now) {}

    /// Takes in two relationships parts that have the same name, but other bytes.
    void addPair(PartView& left, PartView& right) { pairs.emplace_back(&left, &right); }

    /// Takes in one that is in one package only.
    void addSingle(PartView* left, PartView* right);

    /// A part has moved: its relationships are compared although their source has another name.
    void addMove(const std::string& from, const std::string& to);

    /// Adds what differs, sorted by source and id.
    void run(std::vector<RelationshipDifference>& found);

    /// The relationships parts whose bytes count, too, as they hold something else. Call it behind `run`.
    const std::vector<Pair>& withOtherContent() const { return others; }

private:
    void compare(const Pair& pair, std::vector<RelationshipDifference>& found);

    PackageContents& before;
    PackageContents& now;
    std::vector<Pair> pairs;
    std::unordered_map<std::string, PartView*, TextHash> removed, added; ///< by the keys of their sources
    std::vector<Pair> others;
};

} // namespace opc::inspection

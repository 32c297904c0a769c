#include <opc/inspection/Comparison.hpp>

#include "comparison/ContentEquality.hpp"
#include "comparison/CoreFields.hpp"
#include "comparison/MovedParts.hpp"
#include "comparison/NameFilter.hpp"
#include "comparison/PackageContents.hpp"
#include "comparison/RelationshipComparison.hpp"
#include "comparison/SortedMerge.hpp"
#include "digests/Sha256.hpp"
#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace opc::inspection {

namespace {

using Kind = ContentDifference::Kind;

constexpr std::string_view CORE_PROPERTIES = "core-properties";

ContentVersion versionOf(const PackageContents& package, const PartView& part) {
    return {&package.archive(), part.items, part.name, part.contentType, part.size};
}

ContentVersion versionOf(const PackageContents& package, const ArchiveItem& item) {
    return {&package.archive(), {&item}, item.name, {}, sizeOf({&item})};
}

class Comparer {
public:
    Comparer(PackageContents& before, PackageContents& now, bool findsMoves)
        : before(before), now(now), findsMoves(findsMoves), relationships(before, now) {}

    Comparison run() {
        compareParts();
        if (findsMoves)
            for (const auto& [from, to] : joinMoves(result.parts))
                relationships.addMove(from, to);
        compareRelationships();
        compareItems();
        compareProperties();
        const auto precedes = [](const ContentDifference& left, const ContentDifference& right) {
            return keyOfName(left.name()) < keyOfName(right.name());
        };
        std::stable_sort(result.parts.begin(), result.parts.end(), precedes);
        return std::move(result);
    }

private:
    struct Pair {
        PartView* before;
        PartView* now;
    };

    void compareParts() {
        mergeSorted(
            before.parts(), now.parts(), [](const KeyedPart& part) -> const std::string& { return part.key; },
            [this](const KeyedPart* left, const KeyedPart* right) {
                const Pair pair{left != nullptr ? left->part : nullptr,
                                right != nullptr ? right->part : nullptr};
                if ((left != nullptr ? left : right)->part->isRelationships())
                    takeRelationships(pair);
                else
                    take(pair);
            });
    }

    void take(const Pair& pair) {
        if (pair.before != nullptr && pair.now != nullptr) {
            ContentDifference difference = compare(pair);
            if (difference.hasOtherContent || difference.hasOtherType)
                result.parts.push_back(std::move(difference));
        } else {
            addSingle(pair);
        }
    }

    void addSingle(const Pair& pair) {
        ContentDifference& difference = result.parts.emplace_back();
        difference.kind = pair.now != nullptr ? Kind::Added : Kind::Removed;
        if (pair.before != nullptr)
            difference.before = versionOf(before, *pair.before);
        if (pair.now != nullptr)
            difference.now = versionOf(now, *pair.now);
    }

    ContentDifference compare(const Pair& pair) {
        ContentDifference difference;
        difference.kind = Kind::Changed;
        difference.before = versionOf(before, *pair.before);
        difference.now = versionOf(now, *pair.now);
        compareContents(difference);
        difference.hasOtherType = keyOfType(pair.before->contentType) != keyOfType(pair.now->contentType);
        return difference;
    }

    void compareContents(ContentDifference& difference) {
        difference.hasOtherContent =
            !equality.areSame({*difference.before->archive, difference.before->items},
                              {*difference.now->archive, difference.now->items});
        difference.unreadable = equality.unreadable();
    }

    /// Nearly all are the same in both packages, and then nobody reads them.
    void takeRelationships(const Pair& pair) {
        if (pair.before == nullptr || pair.now == nullptr)
            relationships.addSingle(pair.before, pair.now);
        else if (ContentDifference difference = compare(pair); difference.hasOtherContent)
            relationships.addPair(*pair.before, *pair.now);
        else if (difference.hasOtherType)
            result.parts.push_back(std::move(difference));
    }

    void compareRelationships() {
        relationships.run(result.relationships);
        for (const auto& [left, right] : relationships.withOtherContent())
            if (left != nullptr && right != nullptr && keyOfName(left->name) != keyOfName(right->name)) {
                addSingle({left, nullptr}); // of a moved part
                addSingle({nullptr, right});
            } else {
                take({left, right});
            }
    }

    void compareItems() {
        mergeSorted(
            before.otherItems(), now.otherItems(),
            [](const ArchiveItem* item) -> const std::string& { return item->name; },
            [this](const ArchiveItem* const* left, const ArchiveItem* const* right) {
                ContentDifference difference;
                difference.kind = left == nullptr    ? Kind::Added
                                  : right == nullptr ? Kind::Removed
                                                     : Kind::Changed;
                if (left != nullptr)
                    difference.before = versionOf(before, **left);
                if (right != nullptr)
                    difference.now = versionOf(now, **right);
                if (difference.kind == Kind::Changed)
                    compareContents(difference);
                if (difference.kind != Kind::Changed || difference.hasOtherContent)
                    result.items.push_back(std::move(difference));
            });
    }

    void compareProperties() {
        const PartView* const left = before.partOfPackage(CORE_PROPERTIES);
        const PartView* const right = now.partOfPackage(CORE_PROPERTIES);
        using Fields = std::map<std::string, std::string>;
        const Fields old = left != nullptr ? readCoreFields(before.archive(), *left) : Fields();
        const Fields current = right != nullptr ? readCoreFields(now.archive(), *right) : Fields();
        mergeSorted(
            old, current, [](const Fields::value_type& field) -> const std::string& { return field.first; },
            [this](const Fields::value_type* one, const Fields::value_type* other) {
                if (one != nullptr && other != nullptr && one->second == other->second)
                    return;
                PropertyDifference& difference = result.properties.emplace_back();
                difference.name = (one != nullptr ? one : other)->first;
                if (one != nullptr)
                    difference.before = one->second;
                if (other != nullptr)
                    difference.now = other->second;
            });
    }

    PackageContents& before;
    PackageContents& now;
    const bool findsMoves;
    RelationshipComparison relationships;
    ContentEquality equality;
    Comparison result;
};

/// Then nothing differs, whatever of it can be read.
bool haveSameBytes(const Archive& left, const Archive& right) {
    constexpr std::size_t SIZE = 65536;
    if (left.size() != right.size())
        return false;
    std::vector<unsigned char> one(SIZE);
    std::vector<unsigned char> other(SIZE);
    for (std::uint64_t offset = 0; offset < left.size(); offset += SIZE) {
        const std::size_t got = left.read(offset, one.data(), SIZE);
        if (right.read(offset, other.data(), SIZE) != got ||
            !std::equal(one.begin(), one.begin() + static_cast<std::ptrdiff_t>(got), other.begin()))
            return false;
    }
    return true;
}

} // namespace

Comparison compare(const Archive& before, const Archive& now, const ComparisonOptions& options) {
    PackageContents left(before);
    PackageContents right(now);
    const NameFilter filter(options.names);
    filter.requireIn(left, right);
    Comparison result =
        haveSameBytes(before, now) ? Comparison() : Comparer(left, right, options.findsMoves).run();
    filter.apply(result);
    return result;
}

std::string digestOf(const ContentVersion& content) {
    return Sha256().of(*openItems(*content.archive, content.items));
}

} // namespace opc::inspection

#include "Mendable.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace opc::test {

namespace {

using editing::mend;
using editing::Mending;
using inspection::Archive;
using inspection::ArchiveItem;
using inspection::Finding;

/// Of a rule more aren't listed.
constexpr std::size_t MOST_FINDINGS = 100;

std::string placeOf(const Finding& finding) {
    return std::string(finding.rule->id) + ' ' + finding.place.part + finding.place.item;
}

std::multiset<std::string> placesOf(const std::vector<Finding>& findings) {
    std::multiset<std::string> places;
    for (const Finding& finding : findings)
        places.insert(placeOf(finding));
    return places;
}

/// A mended link is known for a link.
std::set<std::string> faultsOf(const std::vector<Finding>& findings) {
    std::set<std::string> places;
    for (const Finding& finding : findings)
        if (finding.severity != inspection::Severity::Info)
            places.insert(placeOf(finding));
    return places;
}

/// The compressed bytes of items that can be found, by checksum and size of their content.
std::map<std::tuple<std::string, std::uint32_t, std::uint64_t>, Bytes> contentsOf(const Archive& archive) {
    std::map<std::tuple<std::string, std::uint32_t, std::uint64_t>, Bytes> contents;
    for (const ArchiveItem& item : archive.items()) {
        if (!item.central || !item.endOffset || item.isFaulty)
            continue;
        Bytes bytes(static_cast<std::size_t>(item.central->compressedSize));
        bytes.resize(archive.read(*item.dataOffset, bytes.data(), bytes.size()));
        contents.emplace(std::tuple(item.name, item.central->checksum, item.central->size), bytes);
    }
    return contents;
}

/// What may be found only then: what loses its last relationship, and what a fault in front of it has hidden.
bool mayBeNew(const std::string& place, const std::multiset<std::string>& before) {
    const bool hidMore = std::any_of(before.begin(), before.end(), [](const std::string& old) {
        const std::string rule = old.substr(0, old.find(' '));
        return rule == "M1.17" || rule == "M1.18" || rule == "M1.20" || rule == "M2.15" || rule == "M3.10" ||
               rule == "M3.16";
    });
    const std::string rule = place.substr(0, place.find(' '));
    return hidMore || rule == "SEC-33" || rule == "SEC-58";
}

} // namespace

Bytes bytesOf(const Archive& archive) {
    Bytes bytes(static_cast<std::size_t>(archive.size()));
    bytes.resize(archive.read(0, bytes.data(), bytes.size()));
    return bytes;
}

Mending expectMends(const Bytes& package, const inspection::InspectionOptions& options) {
    const Archive old(package, options.limits);
    Mending mending = mend(Archive(package, options.limits), options);
    const std::vector<Finding> found = inspect(mending.archive, options).findings;
    EXPECT_TRUE(found.size() >= MOST_FINDINGS || placesOf(mending.left) == placesOf(found));
    const auto before = placesOf(inspect(old, options).findings);
    for (const std::string& place : faultsOf(found))
        EXPECT_TRUE(before.count(place) != 0 || mayBeNew(place, before)) << place << " is new";

    const Mending again = mend(Archive(bytesOf(mending.archive), options.limits), options);
    for (const editing::Mended& mended : again.mended)
        ADD_FAILURE() << "a second time: " << mended.rule->id << ' ' << mended.what;
    const auto contents = contentsOf(mending.archive);
    for (const auto& [item, bytes] : contentsOf(old)) {
        const auto same = contents.find(item);
        EXPECT_TRUE(same == contents.end() || same->second == bytes)
            << std::get<0>(item) << " was compressed again";
    }
    EXPECT_TRUE(!mending.mended.empty() || bytesOf(mending.archive) == package) << "changed without a word";
    return mending;
}

} // namespace opc::test

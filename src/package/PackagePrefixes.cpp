#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <string>
#include <unordered_map>
#include <utility>

/// @file
/// The prefix map of a package: how a new name is held against those of all parts, at the cost of one look-up
/// for each of its segments [M1.11].

namespace opc::model {

namespace {

using PrefixMap = std::unordered_map<std::u16string, std::uint64_t>;

constexpr char16_t SLASH = u'/';

/// From the key of a name, or of a folder with its slash, to that of the folder above; empty if there is none.
/// Takes no memory.
void toFolderAbove(std::u16string& key) {
    const auto slash = key.rfind(SLASH, key.size() - 2);
    key.resize(slash == 0 ? 0 : slash + 1);
}

void release(PrefixMap& prefixes, PrefixMap::iterator prefix) {
    if (prefix->second > 1)
        --prefix->second;
    else
        prefixes.erase(prefix);
}

/// Counts a name and all folders above it, or none of them.
void count(PrefixMap& prefixes, std::u16string key) {
    std::u16string counted = key;
    try {
        for (; !key.empty(); toFolderAbove(key))
            ++prefixes[key];
    } catch (...) {
        for (; counted != key; toFolderAbove(counted))
            release(prefixes, prefixes.find(counted));
        throw;
    }
}

} // namespace

std::u16string Package::prefixKey(const PartName& name) {
    return toLowerASCIIString(name.toString());
}

Package::PrefixMap& Package::knownPrefixes() const {
    if (!prefixes) {
        PrefixMap made;
        made.reserve(parts.size());
        for (const auto& entry : parts)
            count(made, prefixKey(entry.first));
        prefixes = std::move(made);
    }
    return *prefixes;
}

void Package::populatePrefixes(const PartName& name) {
    count(knownPrefixes(), prefixKey(name));
}

void Package::removePrefixes(std::u16string key) {
    if (!prefixes)
        return; // they will be made of the parts that are left
    if (prefixes->erase(key) == 0)
        throw PartDeleteFailed(
            "Internal Error: Prefix map inconsistent with part map. Part name not present.");
    for (toFolderAbove(key); !key.empty(); toFolderAbove(key)) {
        const auto prefix = prefixes->find(key);
        if (prefix == prefixes->end())
            throw PartDeleteFailed(
                "Internal Error: Prefix map inconsistent with part map. Expected prefix not present.");
        release(*prefixes, prefix);
    }
}

bool Package::isPartDerivedFromExistingPartName(const PartName& name, std::u16string& existing) const {
    const PrefixMap& known = knownPrefixes();
    std::u16string text = toLowerASCIIString(name.toString());
    if (known.count(text + SLASH) != 0) {
        existing = text;
        return true;
    }
    for (auto slash = text.rfind(SLASH); slash != std::u16string::npos; slash = text.rfind(SLASH)) {
        text.resize(slash);
        if (!text.empty() && known.count(text) != 0) {
            existing = text;
            return true;
        }
    }
    return false;
}

void Package::throwIfDerivedFromExistingPartName(const PartName& name) const {
    std::u16string existing;
    if (!isPartDerivedFromExistingPartName(name, existing))
        return;
    const std::u16string text = name.toString();
    if (text.size() <= existing.size())
        throw PartIsDerivedFromExistingPartName(
            "Cannot use a part name that is a subset of an existing name: " + toASCIIString(text));
    throw PartIsDerivedFromExistingPartName(
        "Cannot use a part name that is a superset of an existing name: " + toASCIIString(existing));
}

} // namespace opc::model

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

/// @file
/// The prefix map of a package: how a new name is held against those of all parts, at the cost of one look-up
/// for each of its segments [M1.11].

namespace opc::model {

namespace {

constexpr char16_t SLASH = u'/';

} // namespace

void Package::populatePrefixes(const PartName& name) {
    std::u16string text = toLowerASCIIString(name.toString());
    ++prefixes[text];
    for (auto slash = text.rfind(SLASH); slash != 0 && slash != std::u16string::npos;
         slash = text.rfind(SLASH, slash - 1)) {
        text.resize(slash + 1); // in place: folders are mostly there already
        ++prefixes[text];
    }
}

void Package::removePrefixes(const PartName& name) {
    const std::u16string text = toLowerASCIIString(name.toString());
    if (prefixes.erase(text) == 0)
        throw PartDeleteFailed(
            "Internal Error: Prefix map inconsistent with part map. Part name not present.");
    for (auto slash = text.find(SLASH, 1); slash != std::u16string::npos;
         slash = text.find(SLASH, slash + 1)) {
        const auto prefix = prefixes.find(text.substr(0, slash + 1));
        if (prefix == prefixes.end())
            throw PartDeleteFailed(
                "Internal Error: Prefix map inconsistent with part map. Expected prefix not present.");
        if (prefix->second > 1)
            --prefix->second;
        else
            prefixes.erase(prefix);
    }
}

bool Package::isPartDerivedFromExistingPartName(const PartName& name, std::u16string& existing) const {
    std::u16string text = toLowerASCIIString(name.toString());
    if (prefixes.count(text + SLASH) != 0) {
        existing = text;
        return true;
    }
    for (auto slash = text.rfind(SLASH); slash != std::u16string::npos; slash = text.rfind(SLASH)) {
        text.resize(slash);
        if (!text.empty() && prefixes.count(text) != 0) {
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

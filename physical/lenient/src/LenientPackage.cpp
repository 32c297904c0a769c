#include <opc/physical/LenientPackage.hpp>

#include "ContentTypeCover.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_set>

namespace opc::physical {

using interfaces::IPhysicalPart;
using model::PartName;

namespace {

constexpr char16_t PACKAGE_ROOT[] = u"/";

bool endsLikeRelationshipsPart(const std::u16string& name) {
    const std::u16string end = u".rels";
    return name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
}

/// The name of the part that `name`, of a relationships part, belongs to. Nothing for other names.
std::optional<std::u16string> sourceOf(const std::u16string& name) {
    if (!endsLikeRelationshipsPart(name))
        return std::nullopt;
    try {
        const PartName partName(name);
        if (partName.isRelationshipName())
            return partName.getSourcePartName();
    } catch (const Exception&) {
        // No part name: that is for the model to say.
    }
    return std::nullopt;
}

} // namespace

class LenientPackage::Impl {
public:
    explicit Impl(interfaces::IPhysicalPackage& inner) : package(inner) {}

    void findHidden();
    void forget();
    bool hides(const std::u16string& name) const {
        return !hidden.empty() && hiddenNames.count(toLowerASCIIString(name)) > 0;
    }
    void reveal(const std::u16string& name);
    void dropRelationshipsOf(const std::u16string& name);

    interfaces::IPhysicalPackage& package;
    std::vector<HiddenItem> hidden;

private:
    void hide(const std::u16string& name, const std::string& reason) {
        hiddenNames.insert(toLowerASCIIString(name));
        hidden.push_back({name, reason});
    }

    std::set<std::u16string> hiddenNames; ///< in lower case
};

void LenientPackage::Impl::forget() {
    hidden.clear();
    hiddenNames.clear();
}

void LenientPackage::Impl::findHidden() {
    const lenient::ContentTypeCover cover(package);
    std::set<std::u16string> sources = {PACKAGE_ROOT}; // in lower case
    const std::vector<IPhysicalPart*> parts = package.getParts();
    std::unordered_set<const IPhysicalPart*> uncovered;
    for (IPhysicalPart* part : parts) {
        const std::u16string name = part->getName();
        if (!cover.covers(*part))
            uncovered.insert(part);
        else if (!sourceOf(name))
            sources.insert(toLowerASCIIString(name));
    }
    for (const IPhysicalPart* part : parts) {
        const std::u16string name = part->getName();
        const std::optional<std::u16string> source = sourceOf(name);
        if (uncovered.count(part) > 0)
            hide(name, "no content type covers it");
        else if (source && sources.count(toLowerASCIIString(*source)) == 0)
            hide(name, "a relationships part without a source");
    }
}

void LenientPackage::Impl::reveal(const std::u16string& name) {
    const std::u16string key = toLowerASCIIString(name);
    if (hiddenNames.erase(key) > 0)
        hidden.erase(std::find_if(hidden.begin(), hidden.end(), [&key](const HiddenItem& item) {
            return toLowerASCIIString(item.name) == key;
        }));
}

void LenientPackage::Impl::dropRelationshipsOf(const std::u16string& name) {
    if (hidden.empty() || sourceOf(name))
        return;
    const std::u16string relationships = PartName(name).getRelationshipPartName();
    if (!hides(relationships))
        return;
    package.deletePart(relationships);
    reveal(relationships);
}

LenientPackage::LenientPackage(interfaces::IPhysicalPackage& package)
    : impl(std::make_unique<Impl>(package)) {
}

LenientPackage::~LenientPackage() = default;

const std::vector<LenientPackage::HiddenItem>& LenientPackage::hiddenItems() const {
    return impl->hidden;
}

bool LenientPackage::usesContentTypeStream() {
    return impl->package.usesContentTypeStream();
}

interfaces::IPhysicalInputStream* LenientPackage::getContentTypeInputStream() {
    return impl->package.getContentTypeInputStream();
}

interfaces::IPhysicalOutputStream* LenientPackage::getContentTypeOutputStream() {
    return impl->package.getContentTypeOutputStream();
}

std::vector<IPhysicalPart*> LenientPackage::getParts() {
    std::vector<IPhysicalPart*> parts = impl->package.getParts();
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [this](IPhysicalPart* part) { return impl->hides(part->getName()); }),
                parts.end());
    return parts;
}

void LenientPackage::open(const interfaces::OpenMode& mode) {
    impl->package.open(mode);
    impl->forget();
    if (mode == interfaces::OpenMode::CreateOnly)
        return;
    try {
        impl->findHidden();
    } catch (...) {
        impl->package.close(true);
        throw;
    }
}

void LenientPackage::close(bool abandon) {
    impl->package.close(abandon);
}

IPhysicalPart* LenientPackage::createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) {
    IPhysicalPart* part = impl->package.createPart(name, contentType, info);
    impl->reveal(name);
    impl->dropRelationshipsOf(name);
    return part;
}

void LenientPackage::deletePart(const std::u16string& name) {
    impl->package.deletePart(name);
}

} // namespace opc::physical

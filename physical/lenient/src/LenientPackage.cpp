#include <opc/physical/LenientPackage.hpp>

#include "BytesStream.hpp"
#include "ContentTypes.hpp"
#include "RelationshipsPart.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>
#include <optional>
#include <set>
#include <unordered_map>

namespace opc::physical {

using interfaces::IPhysicalPart;
using lenient::RelationshipsPart;
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

[[noreturn]] void refuse(const std::u16string& name, const std::string& reason) {
    throw Exception(toASCIIString(name) + reason, make_error_code(boost::system::errc::file_exists));
}

} // namespace

class LenientPackage::Impl {
public:
    explicit Impl(interfaces::IPhysicalPackage& inner) : package(inner) {}

    /// Looks at what the package, just opened, holds.
    void look();
    void forget();

    bool hides(const std::u16string& name) const {
        return !hidden.empty() && hiddenNames.count(toLowerASCIIString(name)) > 0;
    }
    IPhysicalPart* mend(IPhysicalPart* part);
    void throwIfHidden(const std::u16string& name) const;

    interfaces::IPhysicalPackage& package;
    std::vector<HiddenItem> hidden;
    std::unique_ptr<lenient::BytesStream> contentTypes; ///< null where the package's own are read

private:
    void hide(const std::u16string& name, const std::string& reason) {
        hiddenNames.insert(toLowerASCIIString(name));
        hidden.push_back({name, reason});
    }

    std::set<std::u16string> hiddenNames; ///< in lower case
    lenient::MendingBudget budget;
    std::unordered_map<const IPhysicalPart*, RelationshipsPart> relationshipsParts;
};

void LenientPackage::Impl::forget() {
    hidden.clear();
    hiddenNames.clear();
    relationshipsParts.clear();
    contentTypes.reset();
    budget = {};
}

void LenientPackage::Impl::look() {
    lenient::ContentTypes types(package);
    std::set<std::u16string> sources = {PACKAGE_ROOT}; // in lower case
    const std::vector<IPhysicalPart*> parts = package.getParts();
    for (IPhysicalPart* part : parts) {
        const std::u16string name = part->getName();
        if (!sourceOf(name) && types.covers(*part))
            sources.insert(toLowerASCIIString(name));
    }
    bool coversRelationships = true;
    for (IPhysicalPart* part : parts) {
        const std::u16string name = part->getName();
        const std::optional<std::u16string> source = sourceOf(name);
        if (source && sources.count(toLowerASCIIString(*source)) == 0)
            hide(name, "a relationships part without a source");
        else if (source)
            coversRelationships = coversRelationships && types.covers(*part);
        else if (sources.count(toLowerASCIIString(name)) == 0)
            hide(name, "no content type covers it");
    }
    if (!coversRelationships)
        types.coverRelationships();
    if (auto changed = types.changedStream())
        contentTypes = std::make_unique<lenient::BytesStream>(std::move(*changed));
}

IPhysicalPart* LenientPackage::Impl::mend(IPhysicalPart* part) {
    return sourceOf(part->getName()) ? &relationshipsParts.try_emplace(part, *part, budget).first->second
                                     : part;
}

void LenientPackage::Impl::throwIfHidden(const std::u16string& name) const {
    if (hides(name))
        refuse(name, ": what is hidden under this name would be replaced");
    if (hidden.empty() || sourceOf(name))
        return;
    const std::u16string relationships = PartName(name).getRelationshipPartName();
    if (hides(relationships))
        refuse(relationships, ": this hidden relationships part would become that of the new part");
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
    if (!impl->contentTypes)
        return impl->package.getContentTypeInputStream();
    impl->contentTypes->open();
    return impl->contentTypes.get();
}

interfaces::IPhysicalOutputStream* LenientPackage::getContentTypeOutputStream() {
    impl->contentTypes.reset();
    return impl->package.getContentTypeOutputStream();
}

std::vector<IPhysicalPart*> LenientPackage::getParts() {
    std::vector<IPhysicalPart*> parts = impl->package.getParts();
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [this](IPhysicalPart* part) { return impl->hides(part->getName()); }),
                parts.end());
    std::transform(parts.begin(), parts.end(), parts.begin(),
                   [this](IPhysicalPart* part) { return impl->mend(part); });
    return parts;
}

void LenientPackage::open(const interfaces::OpenMode& mode) {
    impl->package.open(mode);
    impl->forget();
    if (mode == interfaces::OpenMode::CreateOnly)
        return;
    try {
        impl->look();
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
    impl->throwIfHidden(name);
    return impl->package.createPart(name, contentType, info);
}

void LenientPackage::deletePart(const std::u16string& name) {
    impl->package.deletePart(name);
}

std::vector<interfaces::IgnoredItem> LenientPackage::getIgnoredItems() {
    std::vector<interfaces::IgnoredItem> items = impl->package.getIgnoredItems();
    for (const HiddenItem& item : impl->hidden)
        items.push_back({item.name, item.reason});
    return items;
}

} // namespace opc::physical

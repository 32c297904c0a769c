#include <opc/physical/LenientPackage.hpp>

#include "BytesStream.hpp"
#include "ContentTypes.hpp"
#include "RelationshipsPart.hpp"

#include <opc/core/Text.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/interfaces/OpenMode.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PartName.hpp>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace opc::physical {

using interfaces::IPhysicalPart;
using lenient::RelationshipsDocument;
using lenient::RelationshipsFinding;
using lenient::RelationshipsPart;
using model::PartName;

namespace {

constexpr char16_t PACKAGE_ROOT[] = u"/";

bool endsLikeRelationshipsPart(const std::u16string& name) {
    const std::u16string end = u".rels";
    return name.size() > end.size() && name.compare(name.size() - end.size(), end.size(), end) == 0;
}

/// The name of the part to which the relationships part `name` belongs. Nothing for other names.
std::optional<std::u16string> sourceOf(const std::u16string& name) {
    if (!endsLikeRelationshipsPart(name))
        return std::nullopt;
    try {
        const PartName partName(name);
        if (partName.isRelationshipName())
            return partName.getSourcePartName();
    } catch (const Exception&) {
        // not a part name: the model reports that
    }
    return std::nullopt;
}

/// A document type is refused everywhere, so that nobody has to ask what it would do.
void throwIfHasDocumentType(IPhysicalPart& part) {
    std::optional<lenient::Bytes> document;
    try {
        document = lenient::readDocument(*part.getInputStream());
    } catch (const Exception&) {
        return; // it can't be read, and is hidden
    }
    if (document && lenient::hasDocumentType(*document))
        throw Exception("In " + toASCIIString(part.getName()) + ": a relationships part has a document type");
}

[[noreturn]] void refuse(const std::u16string& name, const std::string& reason) {
    throw Exception(toASCIIString(name) + reason, make_error_code(boost::system::errc::file_exists));
}

} // namespace

class LenientPackage::Impl {
public:
    explicit Impl(interfaces::IPhysicalPackage& package) : package(package) {}

    /// Examines the content of the package, which was just opened.
    void look();
    void forget();

    bool hides(const std::u16string& name) const {
        return !hidden.empty() && hiddenNames.count(toLowerASCIIString(name)) > 0;
    }

    /// @return null if there is no such relationships part, or it is hidden
    RelationshipsPart* findRelationshipsPart(const std::u16string& name);
    void forgetPart(const std::u16string& name) { relationshipsParts.erase(toLowerASCIIString(name)); }
    void throwIfHidden(const std::u16string& name) const;

    /// Calls `visit` with the name of a relationships part and each finding in it.
    template <typename Visit>
    void visitFindings(const Visit& visit);

    interfaces::IPhysicalPackage& package;
    std::vector<HiddenItem> hidden;
    std::vector<std::u16string> withoutType;      ///< names of relationships parts that are read nevertheless
    std::unique_ptr<lenient::ContentTypes> types; ///< null in a package that is being created
    std::map<std::u16string, RelationshipsPart> relationshipsParts; ///< by their names in lower case

    std::vector<IPhysicalPart*> shown; ///< what the model sees; empty after the model has got them

    /// The names of all parts that the model sees, including relationships parts.
    std::vector<std::u16string> partNames() const;

private:
    void hide(const std::u16string& name, const std::string& reason) {
        hiddenNames.insert(toLowerASCIIString(name));
        hidden.push_back({name, reason});
    }

    std::set<std::u16string> hiddenNames; ///< in lower case
    lenient::RelationshipsReading reading;
};

void LenientPackage::Impl::forget() {
    hidden.clear();
    hiddenNames.clear();
    withoutType.clear();
    relationshipsParts.clear();
    shown.clear();
    types.reset();
    reading.bytesLeft = lenient::RelationshipsReading::MOST_BYTES;
}

void LenientPackage::Impl::look() {
    types = std::make_unique<lenient::ContentTypes>(package);
    struct Found {
        IPhysicalPart* part;
        std::u16string name;
        std::optional<std::u16string> source;
        bool isCovered;
    };
    std::vector<Found> all;
    std::vector<std::u16string> sources{PACKAGE_ROOT}; // in lower case
    for (IPhysicalPart* part : package.getParts()) {
        std::u16string name = part->getName();
        std::optional<std::u16string> source = sourceOf(name);
        const bool isCovered = types->covers(*part, name);
        if (!source && isCovered)
            sources.push_back(toLowerASCIIString(name));
        all.push_back({part, std::move(name), std::move(source), isCovered});
    }
    std::sort(sources.begin(), sources.end());
    for (const auto& [part, name, source, isCovered] : all) {
        if (source && !std::binary_search(sources.begin(), sources.end(), toLowerASCIIString(*source))) {
            throwIfHasDocumentType(*part);
            hide(name, "a relationships part without a source");
        } else if (source) {
            if (!isCovered)
                withoutType.push_back(name);
            const bool isPackages = *source == PACKAGE_ROOT;
            const auto entry = relationshipsParts.try_emplace(
                toLowerASCIIString(name), *part, reading,
                isPackages ? RelationshipsDocument::Source::Package : RelationshipsDocument::Source::Part);
            shown.push_back(&entry.first->second);
        } else if (!isCovered &&
                   !std::binary_search(sources.begin(), sources.end(), toLowerASCIIString(name))) {
            hide(name, types->hide(name));
        } else {
            shown.push_back(part);
        }
    }
    if (!withoutType.empty())
        types->coverRelationships();
    types->settle();
}

std::vector<std::u16string> LenientPackage::Impl::partNames() const {
    std::vector<std::u16string> names;
    for (const IPhysicalPart* part : package.getParts()) {
        std::u16string name = part->getName();
        if (!hides(name))
            names.push_back(std::move(name));
    }
    return names;
}

RelationshipsPart* LenientPackage::Impl::findRelationshipsPart(const std::u16string& name) {
    const auto entry = relationshipsParts.find(toLowerASCIIString(name));
    return entry == relationshipsParts.end() ? nullptr : &entry->second;
}

template <typename Visit>
void LenientPackage::Impl::visitFindings(const Visit& visit) {
    for (auto& [key, part] : relationshipsParts)
        for (const RelationshipsFinding& finding : part.findings())
            visit(part.getName() + (finding.id.empty() ? u"" : u"#" + finding.id), finding);
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
    return impl->types ? impl->types->inputStream() : impl->package.getContentTypeInputStream();
}

interfaces::IPhysicalOutputStream* LenientPackage::getContentTypeOutputStream() {
    if (!impl->types)
        return impl->package.getContentTypeOutputStream();
    return impl->types->outputStream([this] { return impl->partNames(); });
}

std::vector<IPhysicalPart*> LenientPackage::getParts() {
    if (!impl->shown.empty())
        return std::exchange(impl->shown, {});
    std::vector<IPhysicalPart*> parts = impl->package.getParts();
    parts.erase(std::remove_if(parts.begin(), parts.end(),
                               [this](IPhysicalPart* part) { return impl->hides(part->getName()); }),
                parts.end());
    std::transform(parts.begin(), parts.end(), parts.begin(), [this](IPhysicalPart* part) -> IPhysicalPart* {
        const std::u16string name = part->getName();
        RelationshipsPart* const found =
            endsLikeRelationshipsPart(name) ? impl->findRelationshipsPart(name) : nullptr;
        return found != nullptr ? found : part;
    });
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
    if (!abandon && impl->types)
        impl->types->save([this] { return impl->partNames(); });
    impl->package.close(abandon);
    impl->shown.clear();
    impl->relationshipsParts.clear(); // what they refer to no longer exists
}

IPhysicalPart* LenientPackage::createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) {
    impl->throwIfHidden(name);
    impl->shown.clear();
    if (RelationshipsPart* const existing = impl->findRelationshipsPart(name))
        return existing; // what the model writes to it changes its document
    IPhysicalPart* const part = impl->package.createPart(name, contentType, info);
    if (impl->types)
        impl->types->renew(name);
    return part;
}

void LenientPackage::deletePart(const std::u16string& name) {
    impl->package.deletePart(name);
    impl->shown.clear();
    impl->forgetPart(name);
    if (impl->types)
        impl->types->renew(name);
}

std::vector<interfaces::IgnoredItem> LenientPackage::getIgnoredItems() {
    std::vector<interfaces::IgnoredItem> items = impl->package.getIgnoredItems();
    for (const HiddenItem& item : impl->hidden)
        items.push_back({item.name, item.reason});
    impl->visitFindings([&items](const std::u16string& place, const RelationshipsFinding& finding) {
        if (finding.isIgnored)
            items.push_back({place, finding.what});
    });
    if (impl->types)
        if (auto leftOut = impl->types->ignoredItem())
            items.push_back(std::move(*leftOut));
    return items;
}

std::vector<interfaces::MisnamedItem> LenientPackage::getMisnamedItems() {
    return impl->package.getMisnamedItems();
}

std::vector<interfaces::Oddity> LenientPackage::getOddities() {
    std::vector<interfaces::Oddity> oddities = impl->package.getOddities();
    for (const HiddenItem& item : impl->hidden)
        oddities.push_back(
            {sourceOf(item.name) ? "" : "M2.4", item.name, 0, item.reason, "hidden, and kept in the file"});
    for (const std::u16string& name : impl->withoutType)
        oddities.push_back({"M2.4", name, 0, lenient::NO_CONTENT_TYPE, "read as a relationships part"});
    impl->visitFindings([&oddities](const std::u16string& place, const RelationshipsFinding& finding) {
        oddities.push_back({finding.rule, place, finding.line, finding.what, finding.done});
    });
    if (impl->types)
        oddities.insert(oddities.end(), impl->types->oddities().begin(), impl->types->oddities().end());
    return oddities;
}

} // namespace opc::physical

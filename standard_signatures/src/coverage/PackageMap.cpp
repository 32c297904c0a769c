#include "coverage/PackageMap.hpp"

#include "content/NameSearch.hpp"
#include "coverage/ContentTypeChoices.hpp"
#include "coverage/DataStores.hpp"
#include "coverage/ImplicitRelationships.hpp"
#include "names/PartNames.hpp"
#include "names/SignatureParts.hpp"
#include "reason/Refusal.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace opc::standard_signatures {

namespace {

using FormKind = ContentForm::Kind;

/// From the package to a drawing, which is an office document, too.
constexpr std::string_view DRAWING = "http://schemas.microsoft.com/visio/2010/relationships/document";

/// To what a relationship leads.
struct TypedTarget {
    std::string_view relationship;
    FormKind target;
};

constexpr TypedTarget LEFT_OUT_BY_CUSTOM[] = {
    {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
     FormKind::CoreProperties},
    // a common mistake:
    {"http://schemas.openxmlformats.org/officedocument/2006/relationships/metadata/core-properties",
     FormKind::CoreProperties},
    {"http://schemas.openxmlformats.org/package/2006/relationships/metadata/thumbnail", FormKind::Thumbnail},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships/metadata/thumbnail", FormKind::Thumbnail},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships/extended-properties",
     FormKind::ExtendedProperties},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships/custom-properties",
     FormKind::CustomProperties},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties",
     FormKind::ExtendedProperties},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties", FormKind::CustomProperties},
};

constexpr TypedTarget OF_SIGNATURES[] = {
    {ORIGIN_RELATIONSHIP, FormKind::Origin},
    {SIGNATURE_RELATIONSHIP, FormKind::Signature},
    {CERTIFICATE_RELATIONSHIP, FormKind::Certificate},
};

template <std::size_t Size>
const TypedTarget* findKind(const TypedTarget (&kinds)[Size], std::string_view relationship) {
    const auto* const found = std::find_if(kinds, kinds + Size, [relationship](const TypedTarget& one) {
        return one.relationship == relationship;
    });
    return found == kinds + Size ? nullptr : found;
}

// how the types of what leads from the package begin, in lower case
constexpr std::string_view OF_OFFICE_DOCUMENTS[] = {
    "http://schemas.openxmlformats.org/officedocument/",
    "http://purl.oclc.org/ooxml/officedocument/",
    "http://schemas.openxmlformats.org/package/2006/",
    "http://schemas.microsoft.com/office/",
    "http://schemas.microsoft.com/visio/",
};
constexpr std::string_view OF_FIXED_PAGES[] = {
    "http://schemas.microsoft.com/xps/",
    "http://schemas.openxps.org/oxps/",
    "http://schemas.openxmlformats.org/package/2006/",
};

/// Whether programs take the package for one of their format because of a part with this name.
bool isManifest(std::string_view key) {
    return key.rfind('/') == 0 &&
           (keyEndsWith(key, ".nuspec") || keyEndsWith(key, ".vsixmanifest") || key == "/appxmanifest.xml");
}

/// To what a relationship leads because of which a part needn't be signed.
const TypedTarget* excusedBy(const MappedRelationship& relationship) {
    const std::string_view type = relationship.values->type;
    return relationship.role == RelationshipRole::Content        ? nullptr
           : relationship.role == RelationshipRole::OfSignatures ? findKind(OF_SIGNATURES, type)
                                                                 : findKind(LEFT_OUT_BY_CUSTOM, type);
}

/// The form of the part if it is what the relationship says that leads to it. Otherwise such a relationship could excuse any
/// part of the content from being signed.
const ContentForm* formOfTarget(const MappedRelationship& relationship, const TypedTarget& kind) {
    const StoredPart& part = *relationship.target;
    return part.contentType ? ContentForm::find(kind.target, part.name, *part.contentType) : nullptr;
}

/// Whether a target that should be a part leads to another host, or has a scheme: some programs go there.
bool leadsOutside(std::string_view target) {
    std::string path = decodePercent(target);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path.compare(0, 2, "//") == 0 || path.substr(0, path.find('/')).find(':') != std::string::npos;
}

/// Whether programs can differ on where a target leads: not all of them cut a query and a fragment off, decode once, or look
/// whether it is external.
bool isOdd(const RelationshipValues& values) {
    const std::string_view target = values.target;
    return values.isExternal
               ? target.find("..") != std::string_view::npos || target.find('%') != std::string_view::npos
               : target.find_first_of("?#:") != std::string_view::npos ||
                     target.find("%25") != std::string_view::npos;
}

/// Whether it is a piece from `[10]` on. Some programs join pieces in the order of their names, where that is in front of `[2]`.
bool isOfMany(const interfaces::MisnamedItem& piece) {
    constexpr std::size_t BRACKET_AND_DIGIT = 2;
    const std::size_t begin = piece.name.rfind(u'[');
    return piece.name.find(u']', begin) - begin > BRACKET_AND_DIGIT;
}

/// Whether a type could be taken for that of the main document, by a program that isn't strict about it.
bool isMainType(std::string_view type) {
    constexpr std::string_view END = "/officedocument";
    return keyEndsWith(type.substr(0, type.find_last_not_of(" \t\r\n/") + 1), END);
}

} // namespace

PackageMap::PackageMap(PackageContents& contents) : contents(contents) {
    collect(contents);
    giveRoles();
    findRepeated();
    StoresOfPackage stores = findStores(contents, all);
    choices = std::move(stores.twins);
    const std::vector<UnsignedChoice> byType = findContentTypeChoices(contents);
    choices.insert(choices.end(), byType.begin(), byType.end());
    if (!stores.all.empty()) {
        bindings = std::make_unique<DataBindings>(contents, std::move(stores.all));
        contents.searchForControls();
    }
    std::unordered_set<const StoredPart*> seen;
    for (const MappedRelationship& one : all) {
        if (one.values->isExternal &&
            one.values->target.find(':') == std::string::npos) // for some programs it isn't
            contentTargets.insert(contents.find(resolveTarget(*one.document->source, one.values->target)));
        if (one.target == nullptr)
            continue;
        const TypedTarget* const kind = excusedBy(one);
        const ContentForm* const form = kind == nullptr ? nullptr : formOfTarget(one, *kind);
        if (form == nullptr)
            contentTargets.insert(one.target);
        else
            exempt.emplace(one.target, form);
        if (one.role == RelationshipRole::OfSignatures)
            ofSignatures.insert(one.target);
        if (one.values->type == SIGNATURE_RELATIONSHIP && seen.insert(one.target).second)
            signatureParts.push_back(one.target);
    }
    findOddTargets();
    findContentFolders();
    if (!isOfOfficeProgram())
        searchForExempt(contents);
}

PackageMap::~PackageMap() = default;

std::vector<UnsignedChoice> PackageMap::unsignedChoices() const {
    std::vector<UnsignedChoice> all = choices;
    if (bindings)
        for (const StoredPart* const part : bindings->loose())
            all.push_back(
                {part->name,
                 "a content control in it can take any data store, and their order can't be signed"});
    return all;
}

/// A part that needn't be signed is content if such a target has the last segment of its name anywhere.
void PackageMap::findOddTargets() {
    const auto isOddOne = [](const MappedRelationship& one) { return isOdd(*one.values); };
    auto odd = std::find_if(all.begin(), all.end(), isOddOne);
    if (odd == all.end())
        return;
    std::vector<const StoredPart*> parts;
    std::vector<std::string_view> keys;
    for (const auto& [part, form] : exempt)
        if (form->kind != FormKind::Origin) {
            parts.push_back(part);
            keys.emplace_back(part->key);
        }
    NameSearch search(keys);
    for (; odd != all.end(); odd = std::find_if(std::next(odd), all.end(), isOddOne)) {
        const std::string& target = odd->values->target;
        search.begin();
        search.look(reinterpret_cast<const unsigned char*>(target.data()), target.size());
    }
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (search.isFound(i))
            contentTargets.insert(parts[i]);
}

/// The documents of other formats name parts by their path. The origin has no content.
void PackageMap::searchForExempt(PackageContents& contents) const {
    std::vector<const StoredPart*> parts;
    for (const StoredPart& part : contents.parts())
        if (const ContentForm* const form = exemptFormOf(part);
            form != nullptr && form->kind != FormKind::Origin)
            parts.push_back(&part);
    contents.searchFor(parts);
}

void PackageMap::collect(PackageContents& contents) {
    for (const StoredPart& part : contents.parts()) {
        if (!part.source)
            continue;
        const StoredPart* const source = contents.find(*part.source);
        const bool isOfPackage = *part.source == "/";
        try {
            for (const RelationshipValues& values : contents.relationships(part).relationships) {
                const StoredPart* const target =
                    values.isExternal ? nullptr : contents.find(resolveTarget(*part.source, values.target));
                all.push_back({&part, &values, target, RelationshipRole::Content,
                               isOfPackage && isMainType(values.type)});
                sources.push_back(source);
            }
        } catch (const Refusal& refusal) {
            failures.push_back(refusal.reason());
        }
    }
}

/// An origin makes relationships to signatures what they are, and those the ones to certificates.
void PackageMap::giveRoles() {
    const auto give = [this](std::string_view type, const auto& isSource, auto& targets) {
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i].values->type == type && !all[i].values->isExternal &&
                !leadsOutside(all[i].values->target) && isSource(all[i], sources[i])) {
                all[i].role = RelationshipRole::OfSignatures;
                targets.insert(all[i].target);
            }
    };
    std::unordered_set<const StoredPart*> certificates;
    give(
        ORIGIN_RELATIONSHIP,
        [](const MappedRelationship& one, const StoredPart*) { return *one.document->source == "/"; },
        origins);
    give(
        SIGNATURE_RELATIONSHIP,
        [this](const MappedRelationship& one, const StoredPart* source) {
            return one.target != nullptr && source != nullptr && origins.count(source) != 0;
        },
        signaturesOfOrigins);
    give(
        CERTIFICATE_RELATIONSHIP,
        [this](const MappedRelationship& one, const StoredPart* source) {
            return one.target != nullptr && source != nullptr && signaturesOfOrigins.count(source) != 0;
        },
        certificates);
    const bool isOffice = isOfOfficeProgram();
    std::map<FormKind, MappedRelationship*> firstByCustom;
    for (MappedRelationship& one : all) {
        const TypedTarget* const kind = findKind(LEFT_OUT_BY_CUSTOM, one.values->type);
        if (kind == nullptr || (kind->target == FormKind::Thumbnail && !isOffice) ||
            *one.document->source != "/" || one.values->isExternal || leadsOutside(one.values->target))
            continue;
        const auto [first, isFirst] = firstByCustom.emplace(kind->target, &one);
        if (!isFirst)
            first->second->role = RelationshipRole::Content;
        else if (one.target != nullptr && formOfTarget(one, *kind) != nullptr)
            one.role = RelationshipRole::LeftOutByCustom;
    }
}

std::vector<std::string_view> PackageMap::typesLeftOutByCustom() {
    std::vector<std::string_view> types;
    for (const TypedTarget& one : LEFT_OUT_BY_CUSTOM)
        types.push_back(one.relationship);
    return types;
}

/// Whether nothing makes it a package of another format, too.
/// @param types  how the types of its relationships may begin
template <std::size_t Size>
bool PackageMap::hasNothingBut(const std::string_view (&types)[Size]) const {
    const auto isOther = [&types](const MappedRelationship& one) {
        return *one.document->source == "/" &&
               std::none_of(types, types + Size, [&one](std::string_view begin) {
                   return keyBeginsWith(one.values->type, begin);
               });
    };
    const auto& parts = contents.parts();
    return std::none_of(all.begin(), all.end(), isOther) &&
           std::none_of(parts.begin(), parts.end(),
                        [](const StoredPart& part) { return isManifest(part.key); });
}

/// Their documents find images by relationships alone. Others name images by their path, and so can show the thumbnail.
bool PackageMap::isOfOfficeProgram() const {
    return hasNothingBut(OF_OFFICE_DOCUMENTS) &&
           std::any_of(all.begin(), all.end(), [](const MappedRelationship& one) {
               return one.isMain || (*one.document->source == "/" && one.values->type == DRAWING);
           });
}

/// Programs that read these know parts in pieces, which the format allows. Others don't find such a part.
bool PackageMap::isOfFixedPages() const {
    static constexpr std::string_view END = "/fixedrepresentation";
    return hasNothingBut(OF_FIXED_PAGES) &&
           std::any_of(all.begin(), all.end(), [](const MappedRelationship& one) {
               const std::string_view type = one.values->type;
               return *one.document->source == "/" && type.size() >= END.size() &&
                      type.substr(type.size() - END.size()) == END;
           });
}

bool PackageMap::hasMainDocument() const {
    return std::any_of(all.begin(), all.end(), [](const MappedRelationship& one) { return one.isMain; });
}

const MappedRelationship* PackageMap::secondOrigin() const {
    const MappedRelationship* first = nullptr;
    for (const MappedRelationship& one : all)
        if (one.role == RelationshipRole::OfSignatures && one.values->type == ORIGIN_RELATIONSHIP) {
            if (first != nullptr)
                return &one;
            first = &one;
        }
    return nullptr;
}

const ContentForm* PackageMap::exemptFormOf(const StoredPart& part) const {
    const auto found = exempt.find(&part);
    return found == exempt.end() || contentTargets.count(&part) != 0 || contents.isNamed(part)
               ? nullptr
               : found->second;
}

void PackageMap::findContentFolders() {
    for (const StoredPart& part : contents.parts()) {
        const std::string_view folder = std::string_view(part.key).substr(0, part.key.rfind('/'));
        if (!part.source && exempt.count(&part) == 0 && folder.find("signature") == std::string_view::npos)
            contentFolders.insert(folder);
    }
    contentFolders.erase(""); // the root has other folders
}

bool PackageMap::isAmongContent(const StoredPart& part) const {
    const std::string_view key = part.key;
    for (std::size_t slash = key.find('/', 1); slash != std::string_view::npos;
         slash = key.find('/', slash + 1))
        if (contentFolders.count(key.substr(0, slash)) != 0)
            return true;
    return false;
}

/// Programs for models of solids take the first target of the package with the extension of one, whatever the type says.
void PackageMap::findRepeated() {
    std::set<std::pair<const StoredPart*, std::string>> known;
    for (const MappedRelationship& one : all) {
        const StoredPart* const source = sourceOf(one);
        const std::string_view sourceType = source == nullptr     ? std::string_view("/")
                                            : source->contentType ? std::string_view(*source->contentType)
                                                                  : std::string_view();
        const bool isModel = *one.document->source == "/" && keyEndsWith(one.values->target, ".model");
        bool isRepeated = false;
        for (std::string kind :
             {implicitKindOf(one.values->type, sourceType), std::string(isModel ? "model" : "")})
            isRepeated =
                (!kind.empty() && !known.emplace(one.document, std::move(kind)).second) || isRepeated;
        if (isRepeated)
            repeated.push_back(&one);
    }
}

std::vector<interfaces::MisnamedItem> PackageMap::misnamedItems() const {
    std::vector<interfaces::MisnamedItem> items = contents.misnamedItems();
    if (isOfFixedPages())
        items.erase(std::remove_if(items.begin(), items.end(),
                                   [](const auto& item) { return item.isPiece && !isOfMany(item); }),
                    items.end());
    return items;
}

const StoredPart* PackageMap::origin() const {
    for (const MappedRelationship& one : all)
        if (one.role == RelationshipRole::OfSignatures && one.values->type == ORIGIN_RELATIONSHIP &&
            one.target != nullptr)
            return one.target;
    return nullptr;
}

std::vector<const StoredPart*> PackageMap::certificatesOf(const StoredPart& signature) const {
    std::vector<const StoredPart*> found;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (sources[i] == &signature && all[i].target != nullptr &&
            all[i].values->type == CERTIFICATE_RELATIONSHIP)
            found.push_back(all[i].target);
    return found;
}

} // namespace opc::standard_signatures

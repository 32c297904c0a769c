#include <opc/model/PackageCoverage.hpp>

#include "signatures/coverage/CoverageIndex.hpp"
#include "signatures/coverage/SignatureLayout.hpp"
#include "signatures/digests/KeywordsRange.hpp"
#include "signatures/document/SignatureVocabulary.hpp"
#include "values/StreamRewinder.hpp"

#include <opc/core/Exception.hpp>
#include <opc/core/InputStream.hpp>
#include <opc/core/Text.hpp>
#include <opc/model/DigitalSignature.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>

#include <array>
#include <set>
#include <string_view>
#include <utility>

namespace opc::model {

namespace {

using namespace vocabulary::signatures;

constexpr const char* UNREAD = "holds elements that weren't read";
constexpr const char* PASSED_OVER = "holds elements that weren't read or were passed over";

/// The content type in the query of a reference; empty if there is none.
std::u16string_view contentTypeIn(std::u16string_view query) {
    std::u16string_view start = CONTENT_TYPE_QUERY;
    start.remove_prefix(1); // the question mark
    return query.substr(0, start.size()) == start ? query.substr(start.size()) : std::u16string_view();
}

bool isContentType(const ContentType& type, const std::u16string& text) {
    try {
        return type == ContentType(text);
    } catch (const Exception&) { // the text names no content type
        return false;
    }
}

std::string readAll(const Part& part) {
    InputStream& stream = part.getInputStream();
    const StreamRewinder rewinder(stream);
    std::string content;
    std::array<unsigned char, 16384> block{};
    while (!stream.isDone()) {
        const std::uint64_t count = stream.read(block.data(), block.size());
        content.append(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return content;
}

/// The parts that make up the signatures of a package: the origin part, and those that it leads to.
struct SignatureParts {
    explicit SignatureParts(const Package& package) {
        for (const Relationship& origin : package.getRelationshipsByType(getOriginRelationshipType())) {
            const Part part = package.getPart(PartName(origin.getTargetURI()));
            origins.insert(part.getName());
            for (const Relationship& signature : part.getRelationshipsByType(getSignatureRelationshipType()))
                signatures.insert(PartName(signature.getTargetURI()));
        }
    }

    bool contain(const Part& part) const {
        return signatures.count(part.getName()) != 0 || (isOrigin(part.getName()) && readAll(part).empty());
    }
    bool isOrigin(const PartName& name) const { return origins.count(name) != 0; }

    std::set<PartName> origins;
    std::set<PartName> signatures;
};

} // namespace

PackageCoverage::PackageCoverage(const Package& package, const std::vector<DigitalSignature>& signatures,
                                 std::optional<URI> originURI)
    : ignoredItems(package.getIgnoredItems()) {
    if (package.hasUnreadContentTypes())
        ignoredItems.push_back({u"/[Content_Types].xml", PASSED_OVER});
    const auto made = std::make_shared<CoverageIndex>(std::move(originURI));
    for (const DigitalSignature& signature : signatures)
        made->add(signature);
    index = made;
    const SignatureParts own(package);
    addRelationships(package, PackageHelper::getPackageRootURI(), getOriginRelationshipType());
    for (const Part& part : package.getParts()) {
        addOuterPart(package, part.getName());
        if (!own.contain(part))
            addPart(part);
        addRelationships(part, part.getName().getURI(),
                         own.isOrigin(part.getName()) ? getSignatureRelationshipType() : std::u16string());
    }
}

/// No folder can hold a part and another one whose name begins with its name, so that an extraction loses one of them [M1.11].
void PackageCoverage::addOuterPart(const Package& package, const PartName& name) {
    std::u16string shorter;
    if (package.isPartDerivedFromExistingPartName(name, shorter) && shorter.size() < name.toString().size())
        ignoredItems.push_back(
            {name.toString(), "its name begins with that of the part " + toUDEString(shorter)});
}

void PackageCoverage::addPart(const Part& part) {
    ++partCount;
    const PartName name = part.getName();
    const CoverageIndex::CoveredPart* const covered = index->find(name);
    if (covered == nullptr) {
        uncoveredParts.push_back(name);
        return;
    }
    const ContentType type = part.getContentType();
    for (const std::u16string& query : covered->queries) {
        const std::u16string whenSigned(contentTypeIn(query));
        if (!isContentType(type, whenSigned))
            changedContentTypes.push_back({name, type.toString(), whenSigned});
    }
    if (name.getURI() == PackageHelper::getCorePropertiesURI())
        findKeywordsIn(part);
}

void PackageCoverage::findKeywordsIn(const Part& part) {
    const KeywordsRange keywords = findKeywords(readAll(part));
    keywordsBegin = keywords.begin;
    keywordsSize = keywords.size;
}

/// @param typeOfSignatures  the type by which the source leads to signatures; empty if it leads to none
void PackageCoverage::addRelationships(const RelationshipSource& source, const URI& uri,
                                       const std::u16string& typeOfSignatures) {
    const auto relationships = source.getRelationships();
    if (source.hasUnreadRelationships()) {
        const std::u16string name = PartName(uri).getRelationshipPartName();
        ignoredItems.push_back({name, UNREAD});
        if (index->findSelected(uri) != nullptr) // there may be one more of a signed type
            unreadWhereSigned.insert(name);
    }
    if (relationships.empty())
        return;
    const auto* const selected = index->findSelected(uri);
    for (const Relationship& relationship : relationships) {
        if (relationship.getType() == typeOfSignatures)
            continue;
        ++relationshipCount;
        if (!index->covers(relationship, selected))
            uncoveredRelationships.push_back(relationship);
    }
}

std::vector<std::size_t> PackageCoverage::findSignatures(const PartName& name) const {
    return index == nullptr ? std::vector<std::size_t>() : index->findCovering(name);
}

std::vector<std::size_t> PackageCoverage::findSignatures(const Relationship& relationship) const {
    return index == nullptr ? std::vector<std::size_t>() : index->findCovering(relationship);
}

bool PackageCoverage::isFull() const {
    return uncoveredParts.empty() && uncoveredRelationships.empty() && changedContentTypes.empty() &&
           ignoredItems.empty() && keywordsSize == 0;
}

} // namespace opc::model

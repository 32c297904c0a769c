#include "subject/Subject.hpp"

#include "format/PackageFormats.hpp"
#include "subject/ContentTypesView.hpp"
#include "subject/ItemsStream.hpp"
#include "subject/Names.hpp"
#include "subject/PartTable.hpp"
#include "subject/RelationshipsTable.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Exception.hpp>

#include <algorithm>
#include <array>

namespace opc::inspection {

namespace {

/// The relationships of a package that lead to its main part, by the last segment of their types.
constexpr std::string_view MAIN_SEGMENTS[] = {"officeDocument", "document", "fixedrepresentation", "3dmodel",
                                              "manifest"};

std::string_view behindLast(std::string_view text, char mark) {
    return text.substr(text.rfind(mark) + 1);
}

} // namespace

std::string_view PartView::extension() const {
    const std::string_view segment = behindLast(name, '/');
    return segment.find('.') == std::string_view::npos ? std::string_view() : behindLast(segment, '.');
}

std::string PartView::mediaType() const {
    return toLowerASCII(trimmed(std::string_view(contentType).substr(0, contentType.find(';'))));
}

std::string_view RelationshipView::lastSegment() const {
    return behindLast(trimmed(type), '/');
}

bool leadsToMainPart(const RelationshipView& entry) {
    return !entry.isExternal && std::find(std::begin(MAIN_SEGMENTS), std::end(MAIN_SEGMENTS),
                                          entry.lastSegment()) != std::end(MAIN_SEGMENTS);
}

class Subject::Impl {
public:
    explicit Impl(const Archive& archive)
        : archive(archive), parts(archive), contentTypes(archive, parts), relationships(archive, parts) {
        if (const RelationshipsView* const ofPackage = relationships.find("/")) {
            const auto found =
                std::find_if(ofPackage->entries.begin(), ofPackage->entries.end(), leadsToMainPart);
            mainPart = found == ofPackage->entries.end() ? nullptr : found->part;
        }
    }

    const Archive& archive;
    PartTable parts;
    ContentTypesView contentTypes;
    RelationshipsTable relationships;
    const PartView* mainPart = nullptr;
    Format format;
};

Subject::Subject(const Archive& archive, const physical::ZipOptions&) : impl(new Impl(archive)) {
    impl->format = detectFormat(*this);
}
Subject::~Subject() = default;

const Archive& Subject::archive() const {
    return impl->archive;
}
const DocumentState& Subject::contentTypesDocument() const {
    return impl->contentTypes.document;
}
const std::vector<ContentTypeEntry>& Subject::contentTypes() const {
    return impl->contentTypes.entries;
}
const std::vector<const ArchiveItem*>& Subject::contentTypesItems() const {
    return impl->parts.contentTypes();
}
const std::vector<PartView>& Subject::parts() const {
    return impl->parts.parts();
}
const PartView* Subject::findPart(std::string_view name) const {
    return impl->parts.find(name);
}
bool Subject::isIncomplete(std::string_view name) const {
    return impl->parts.isIncomplete(name);
}
const std::vector<RelationshipsView>& Subject::relationships() const {
    return impl->relationships.views();
}
const RelationshipsView* Subject::relationshipsOf(std::string_view source) const {
    return impl->relationships.find(source);
}
bool Subject::isReached(const PartView& part) const {
    return impl->relationships.isReached(part);
}
const std::string& Subject::format() const {
    return impl->format.name;
}
const Format& Subject::detectedFormat() const {
    return impl->format;
}
const PartView* Subject::mainPart() const {
    return impl->mainPart;
}
std::unique_ptr<InputStream> Subject::open(const PartView& part) const {
    return openItems(impl->archive, part.items);
}
std::string Subject::read(const PartView& part, std::size_t most) const {
    std::string content;
    try {
        const std::unique_ptr<InputStream> stream = open(part);
        std::array<unsigned char, 16384> piece;
        while (content.size() < most && !stream->isDone()) {
            const std::uint64_t got =
                stream->read(piece.data(), std::min(most - content.size(), piece.size()));
            content.append(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got));
        }
    } catch (const Exception&) {
        // What was read before counts.
    }
    return content;
}

} // namespace opc::inspection

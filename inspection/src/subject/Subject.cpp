#include "subject/Subject.hpp"

namespace opc::inspection {

class Subject::Impl {
public:
    const Archive& archive;
    DocumentState contentTypesDocument;
    std::vector<ContentTypeEntry> contentTypes;
    std::vector<PartView> parts;
    std::vector<RelationshipsView> relationships;
    std::string format = "opc";
};

Subject::Subject(const Archive& archive, const physical::ZipOptions&)
    : impl(new Impl{archive, {}, {}, {}, {}, "opc"}) {
}
Subject::~Subject() = default;

const Archive& Subject::archive() const {
    return impl->archive;
}
const DocumentState& Subject::contentTypesDocument() const {
    return impl->contentTypesDocument;
}
const std::vector<ContentTypeEntry>& Subject::contentTypes() const {
    return impl->contentTypes;
}
const std::vector<PartView>& Subject::parts() const {
    return impl->parts;
}
const PartView* Subject::findPart(std::string_view) const {
    return nullptr;
}
const std::vector<RelationshipsView>& Subject::relationships() const {
    return impl->relationships;
}
const RelationshipsView* Subject::relationshipsOf(std::string_view) const {
    return nullptr;
}
bool Subject::isReached(const PartView&) const {
    return false;
}
const std::string& Subject::format() const {
    return impl->format;
}
const PartView* Subject::mainPart() const {
    return nullptr;
}
std::unique_ptr<InputStream> Subject::open(const PartView&) const {
    return nullptr;
}
std::string Subject::read(const PartView&, std::size_t) const {
    return {};
}

} // namespace opc::inspection

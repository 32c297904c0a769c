#include "checks/office/MarkupCompatibility.hpp"

#include "checks/OfficeFormats.hpp"
#include "checks/office/MarkupCompatibilityReader.hpp"
#include "content/ByteSearch.hpp"
#include "content/TagNames.hpp"

namespace opc::inspection {

namespace {

class MarkupCompatibilityObserver final : public ContentObserver {
public:
    explicit MarkupCompatibilityObserver(Findings& findings)
        : reader(findings), search({"markup-compatibility"}) {}

    bool begin(const PartView& part, std::string_view head) override {
        if (part.isRelationships() || !looksLikeXml(head))
            return false;
        name = part.name;
        isOfOffice = isOfficeMediaType(part.mediaType());
        isOpaque = !isAsciiCompatible(head);
        search.begin();
        return true;
    }

    void bytes(std::string_view piece) override { search.add(piece); }

    model::XmlEvents* end() override {
        if (!search.isFound() && !isOpaque)
            return nullptr;
        reader.begin(name, isOfOffice);
        return &reader;
    }

private:
    MarkupCompatibilityReader reader;
    ByteSearch search;
    std::string name;
    bool isOpaque = false, isOfOffice = false;
};

} // namespace

std::unique_ptr<ContentObserver> makeMarkupCompatibilityObserver(Findings& findings) {
    return std::make_unique<MarkupCompatibilityObserver>(findings);
}

} // namespace opc::inspection

#include "checks/office/RelationshipIds.hpp"

#include "checks/DocumentChecks.hpp"
#include "checks/OfficeFormats.hpp"
#include "content/ByteSearch.hpp"
#include "content/TagNames.hpp"
#include "hash/TextHash.hpp"
#include "subject/Names.hpp"

#include <set>
#include <string>
#include <unordered_map>

namespace opc::inspection {

namespace {

constexpr std::u16string_view OF_TRANSITIONAL =
    u"http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr std::u16string_view OF_STRICT = u"http://purl.oclc.org/ooxml/officeDocument/relationships";
constexpr std::u16string_view VML_OFFICE = u"urn:schemas-microsoft-com:office:office";

/// Elements whose relationships have one type, whichever program reads them.
struct Use {
    std::u16string_view element;
    std::string_view types; ///< last segments, separated by blanks
};

constexpr Use USES[] = {
    {u"blip", "image"},
    {u"altChunk", "aFChunk altChunk"},
    {u"chart", "chart chartEx"},
    {u"control", "control"},
    {u"externalReference", "externalLink"},
    {u"footerReference", "footer"},
    {u"handoutMasterId", "handoutMaster"},
    {u"headerReference", "header"},
    {u"hyperlink", "hyperlink"},
    {u"legacyDrawing", "vmlDrawing"},
    {u"notesMasterId", "notesMaster"},
    {u"pivotCache", "pivotCacheDefinition"},
    {u"sheet", "worksheet chartsheet dialogsheet xlMacrosheet xlIntlMacrosheet"},
    {u"sldId", "slide"},
    {u"sldLayoutId", "slideLayout"},
    {u"sldMasterId", "slideMaster"},
    {u"tablePart", "table"},
};

bool hasWord(std::string_view words, std::string_view word) {
    return (" " + std::string(words) + " ").find(" " + std::string(word) + " ") != std::string::npos;
}

class IdReader final : public model::XmlEvents {
public:
    explicit IdReader(Findings& findings) : findings(findings) {}

    void begin(const std::string& partName, const RelationshipsView* relationships) {
        part = partName;
        told.clear();
        types.clear();
        if (relationships != nullptr)
            for (const RelationshipView& entry : relationships->entries)
                types.emplace(entry.id, entry.lastSegment());
    }

    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override {
        for (std::size_t i = 0; i < element.attributeCount(); ++i) {
            const model::XmlAttribute attribute = element.attribute(i);
            const bool namesRelationship =
                attribute.namespaceURI == OF_TRANSITIONAL || attribute.namespaceURI == OF_STRICT ||
                (attribute.namespaceURI == VML_OFFICE && attribute.localName == u"relid");
            if (namesRelationship && !attribute.value.empty()) // empty: an action without target
                check(element, narrow(attribute.value), behind);
        }
    }

private:
    void check(const model::XmlElement& element, const std::string& id, const model::XmlPlace& behind) {
        const Place place = placeAt({part, {}, id}, behind.line, behind.column);
        const auto found = types.find(id);
        if (found == types.end()) {
            if (told.insert(id).second)
                findings.add("P1-5", place,
                             "The markup names the relationship " + id + ", which the part doesn't have");
            return;
        }
        for (const Use& use : USES)
            if (use.element == element.localName() && !hasWord(use.types, found->second) &&
                told.insert(id).second)
                findings.add("P1-5", Severity::Warning, place,
                             "The element " + narrow(use.element) + " names the relationship " + id +
                                 ", whose type is " + std::string(found->second));
    }

    Findings& findings;
    std::string part;
    std::unordered_map<std::string, std::string_view, TextHash> types;
    std::set<std::string> told;
};

class IdObserver final : public ContentObserver {
public:
    IdObserver(const Subject& subject, Findings& findings)
        : subject(subject), reader(findings), search({"/relationships", "office:office"}) {}

    /// Only markup of office programs: other XML may use such names for its own ends.
    bool begin(const PartView& part, std::string_view head) override {
        if (part.isRelationships() || !isOfficeMediaType(part.mediaType()) || !looksLikeXml(head))
            return false;
        observed = &part;
        isOpaque = !isAsciiCompatible(head);
        search.begin();
        return true;
    }

    void bytes(std::string_view piece) override { search.add(piece); }

    model::XmlEvents* end() override {
        if (!search.isFound() && !isOpaque)
            return nullptr;
        reader.begin(observed->name, subject.relationshipsOf(observed->name));
        return &reader;
    }

private:
    const Subject& subject;
    IdReader reader;
    ByteSearch search;
    const PartView* observed = nullptr;
    bool isOpaque = false;
};

} // namespace

std::unique_ptr<ContentObserver> makeRelationshipIdObserver(const Subject& subject, Findings& findings) {
    return std::make_unique<IdObserver>(subject, findings);
}

} // namespace opc::inspection

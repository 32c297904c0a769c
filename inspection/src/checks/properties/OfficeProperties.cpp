#include "checks/properties/OfficeProperties.hpp"

#include "checks/relationships/RelationshipKinds.hpp"
#include "subject/DocumentReading.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

constexpr std::size_t LONGEST_VALUE = 80;
constexpr std::size_t MOST_PROPERTIES = 20;

/// Gathers the texts of elements right below the root, as far as they are short.
class PropertyTexts final : public model::XmlEvents {
public:
    std::string found;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        ++depth;
        text.clear();
        name = depth == 2 ? narrow(element.localName()) : std::string();
    }
    void onText(std::u16string_view piece) override {
        if (!name.empty() && text.size() <= LONGEST_VALUE)
            text += narrow(piece.substr(0, LONGEST_VALUE + 1));
    }
    void onEnd() override {
        constexpr std::string_view TELLING[] = {"Application", "Company", "Manager", "Template", "TotalTime"};
        const std::string_view value = trimmed(text);
        if (depth == 2 && !value.empty() &&
            std::find(std::begin(TELLING), std::end(TELLING), name) != std::end(TELLING))
            appendProperty(found, name, std::string(value));
        --depth;
        name.clear();
    }

    std::size_t depth = 0;
    std::string name, text;
};

/// Gathers the names of custom properties.
class PropertyNames final : public model::XmlEvents {
public:
    std::string found;
    std::size_t count = 0;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        if (element.localName() != u"property" || ++count > MOST_PROPERTIES)
            return;
        found.append(found.empty() ? "" : ", ")
            .append(narrow(element.valueOf({}, u"name").substr(0, LONGEST_VALUE)));
    }
};

Place placeOfPart(const PartView& part) {
    Place place;
    place.part = part.name;
    return place;
}

void tellExtended(const Subject& subject, const PartView& part, Findings& findings) {
    if (!findings.wants("SEC-60"))
        return;
    PropertyTexts texts;
    DocumentState state;
    readDocument(subject.archive(), part.items, state, texts);
    if (!texts.found.empty())
        findings.add("SEC-60", placeOfPart(part), "The extended properties name " + texts.found);
}

void tellCustom(const Subject& subject, const PartView& part, Findings& findings) {
    if (!findings.wants("SEC-62"))
        return;
    PropertyNames names;
    DocumentState state;
    readDocument(subject.archive(), part.items, state, names);
    if (names.count > MOST_PROPERTIES)
        names.found += " …";
    if (names.count != 0)
        findings.add("SEC-62", placeOfPart(part), "There are custom properties: " + names.found);
}

} // namespace

void appendProperty(std::string& list, std::string_view name, std::string value) {
    if (value.size() > LONGEST_VALUE) {
        std::size_t end = LONGEST_VALUE;
        while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0) == 0x80) // not inside a character
            --end;
        value.resize(end);
        value += "…";
    }
    list.append(list.empty() ? "" : ", ").append(name).append(" \"").append(value).append("\"");
}

void checkOfficeProperties(const Subject& subject, Findings& findings) {
    if (!findings.wants("SEC-60") && !findings.wants("SEC-62"))
        return;
    for (const RelationshipsView& view : subject.relationships())
        for (const RelationshipView& entry : view.entries) {
            if (entry.part == nullptr || !isOfficeType(trimmed(entry.type)))
                continue;
            const std::string_view segment = entry.lastSegment();
            const bool isOfPackage = view.source == "/";
            if (isOfPackage && (segment == "extended-properties" || segment == "extendedProperties"))
                tellExtended(subject, *entry.part, findings);
            else if (isOfPackage && (segment == "custom-properties" || segment == "customProperties"))
                tellCustom(subject, *entry.part, findings);
            else if (segment == "customXml")
                findings.add("SEC-62", placeOfPart(*entry.part), "The part holds custom XML");
        }
}

} // namespace opc::inspection

#include "checks/Checks.hpp"
#include "checks/DocumentChecks.hpp"
#include "checks/contenttypes/TypeGrammar.hpp"
#include "checks/properties/CorePropertiesReading.hpp"
#include "checks/properties/OfficeProperties.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "checks/security/ContentKind.hpp"
#include "subject/Names.hpp"
#include "subject/Targets.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/CorePropertyField.hpp>
#include <opc/model/XmlLimits.hpp>

#include <cstdio>

namespace opc::inspection {

namespace {

constexpr std::string_view CORE_NAMESPACE =
    "http://schemas.openxmlformats.org/package/2006/metadata/core-properties";
constexpr std::string_view OWN_CORE_TYPE =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

Place placeOfProperties(const RelationshipsView& view, const RelationshipView& entry) {
    Place place;
    place.part = view.part->name;
    place.relationship = entry.id;
    place.line = entry.line;
    place.column = entry.column;
    return place;
}

Place placeOfProperties(const PartView& part) {
    Place place;
    place.part = part.name;
    return place;
}

bool isOfficeDocument(std::string_view format) {
    const std::string_view family = format.substr(0, 2);
    return family == "do" || family == "xl" || family == "pp" || family == "po" || family == "vs";
}

/// Checks the relationships that lead to core properties, and the parts there.
class CorePropertiesCheck {
public:
    CorePropertiesCheck(const Subject& subject, Findings& findings) : subject(subject), findings(findings) {}

    void run() {
        for (const RelationshipsView& view : subject.relationships())
            for (const RelationshipView& entry : view.entries)
                if (isCoreProperties(entry))
                    checkRelationship(view, entry);
        if (first != nullptr && first->part != nullptr)
            checkPart(*first->part);
    }

private:
    /// Whether readers find the same part by this one too many, or office programs take the first.
    bool isHarmless(const RelationshipView& entry) const {
        return keyOfName(entry.resolved) == keyOfName(first->resolved) || isOfficeDocument(subject.format());
    }

    void checkRelationship(const RelationshipsView& view, const RelationshipView& entry) {
        const Place place = placeOfProperties(view, entry);
        if (view.source != "/") {
            findings.add("M4.1", Severity::Warning, place,
                         "A part has a core properties relationship, which only the package can have");
            return;
        }
        if (first == nullptr)
            first = &entry;
        else if (trimmed(entry.type) == OWN_CORE_TYPE && trimmed(first->type) == OWN_CORE_TYPE)
            findings.add("M4.1", isHarmless(entry) ? Severity::Warning : Severity::Error, place,
                         "There is a second core properties relationship, besides " + first->id);
        if (entry.isExternal)
            findings.add("M4.1", place, "The core properties are outside the package, at " + entry.target);
        else if (entry.part == nullptr && !entry.resolved.empty() && !climbsAboveRoot("/", entry.target))
            findings.add("M4.1", Severity::Warning, place,
                         "There is no core properties part " + entry.resolved);
        else if (entry.part != nullptr && !entry.part->contentType.empty() &&
                 entry.part->mediaType() != CORE_PROPERTIES_TYPE && !entry.part->isRelationships())
            findings.add("M4.1", place,
                         "The core properties part " + entry.part->name + " has the type " +
                             entry.part->contentType);
    }

    void checkPart(const PartView& part) {
        if (const RelationshipsView* const own = subject.relationshipsOf(part.name);
            own != nullptr && !own->entries.empty())
            findings.add("P1-2", placeOfProperties(part), "The core properties part has relationships");
        const std::uint64_t most = model::XmlLimits().coreProperties.bytes;
        if (part.size > most) {
            findings.add("SEC-54", Severity::Warning, placeOfProperties(part),
                         "The core properties are larger than " + std::to_string(most) + " bytes");
            return;
        }
        const ReadCoreProperties read = readCoreProperties(subject.read(part, most));
        if (read.failure.empty())
            tellPeople(part, read.properties);
        checkFaults(part, read);
    }

    void checkFaults(const PartView& part, const ReadCoreProperties& read) {
        DocumentState state;
        const std::vector<CorePropertiesFault> faults =
            findCorePropertiesFaults(subject.archive(), part, state);
        if (!checkDocument(state, placeOfProperties(part), CORE_NAMESPACE, "coreProperties", findings))
            return;
        for (const CorePropertiesFault& fault : faults)
            findings.add(fault.rule, placeAt(placeOfProperties(part), fault.line, fault.column),
                         fault.message);
        const bool isToldAlready = !faults.empty() || !state.faults.empty() || isWrongEncoding(state) ||
                                   read.failure.find("[M4.") != std::string::npos;
        if (!read.failure.empty() && !isToldAlready)
            addSchemaFault(part, read);
    }

    void addSchemaFault(const PartView& part, const ReadCoreProperties& read) {
        Place place = placeOfProperties(part);
        unsigned long long line = 0;
        unsigned long long column = 0;
        if (std::sscanf(read.details.c_str(), "line %llu, column %llu", &line, &column) == 2)
            place = placeAt(place, line, column);
        findings.add("CORE-SCHEMA", place, "The core properties aren't valid: " + read.failure);
    }

    void tellPeople(const PartView& part, const model::CoreProperties& properties) {
        std::string told;
        const auto add = [&told](const char* name, const model::CoreProperties::Text& value) {
            if (value && !value->empty())
                appendProperty(told, name, toUDEString(*value));
        };
        add("creator", properties.getCreator());
        add("lastModifiedBy", properties.getLastModifiedBy());
        if (!told.empty())
            findings.add("SEC-60", placeOfProperties(part), "The core properties name " + told);
    }

    const Subject& subject;
    Findings& findings;
    const RelationshipView* first = nullptr;
};

/// SEC-41 tells of all parts whose content isn't what their type says.
void checkImage(const Subject& subject, const PartView& part, const Place& place, Findings& findings) {
    constexpr std::size_t HEAD = 1024;
    findings.add("SEC-61", place, "The package has the thumbnail " + part.name);
    const ContentKind promised = kindOfType(part.mediaType());
    const ContentKind kind = kindOf(subject.read(part, HEAD));
    const bool isOther = promised != ContentKind::Unknown && kind != ContentKind::Unknown && kind != promised;
    if (isOther && !findings.wants("SEC-41"))
        findings.add("M5.1", isImage(kind) ? Severity::Info : Severity::Warning, place,
                     "The thumbnail " + part.name + " has the type " + part.contentType + ", and is " +
                         std::string(describe(kind)));
}

void checkThumbnails(const Subject& subject, Findings& findings) {
    for (const RelationshipsView& view : subject.relationships())
        for (const RelationshipView& entry : view.entries) {
            if (!isThumbnail(entry))
                continue;
            const Place place = placeOfProperties(view, entry);
            if (entry.isExternal)
                findings.add("M5.1", place, "The thumbnail is outside the package, at " + entry.target);
            else if (entry.part == nullptr && !entry.resolved.empty() &&
                     !climbsAboveRoot(view.source, entry.target))
                findings.add("M5.1", place, "There is no thumbnail part " + entry.resolved);
            else if (entry.part != nullptr && !entry.part->contentType.empty() &&
                     entry.part->mediaType().substr(0, 6) != "image/")
                findings.add("M5.1", place,
                             "The thumbnail " + entry.part->name + " has the type " +
                                 entry.part->contentType);
            else if (entry.part != nullptr)
                checkImage(subject, *entry.part, place, findings);
        }
}

} // namespace

void checkProperties(const Subject& subject, Findings& findings) {
    CorePropertiesCheck(subject, findings).run();
    checkThumbnails(subject, findings);
    checkOfficeProperties(subject, findings);
}

} // namespace opc::inspection

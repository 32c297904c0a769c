#include "checks/security/SecurityChecks.hpp"

#include "checks/OfficeFormats.hpp"
#include "external/RelationshipType.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

namespace opc::inspection {

namespace {

/// What a part is by the relationship that leads to it, by its content type or by its name. All in lower case; an empty
/// field matches nothing. A relationship type is its last segment; a content type is a beginning; of a name, some
/// segments.
struct PartKind {
    std::string_view rule;
    Severity severity;
    std::string_view relationship, contentType, name;
    std::string_view message;

    /// @param partName  in lower case
    bool hasName(std::string_view partName) const {
        return !name.empty() && (name.back() == '/' ? partName.find(name) != std::string_view::npos
                                                    : endsWith(partName, name));
    }
};

constexpr PartKind PART_KINDS[] = {
    {"SEC-20", Severity::Error, "vbaproject", "application/vnd.ms-office.vbaproject", "/vbaproject.bin",
     "The package has a VBA project"},
    {"SEC-20", Severity::Error, "wordvbadata", "application/vnd.ms-word.vbadata", "/vbadata.xml",
     "The package has data of a VBA project"},
    {"SEC-21", Severity::Error, "xlmacrosheet", "application/vnd.ms-excel.macrosheet", "/macrosheets/",
     "The workbook has a macro sheet"},
    {"SEC-21", Severity::Error, "xlintlmacrosheet", "application/vnd.ms-excel.intlmacrosheet", "",
     "The workbook has a macro sheet"},
    {"SEC-21", Severity::Warning, "dialogsheet",
     "application/vnd.openxmlformats-officedocument.spreadsheetml.dialogsheet", "",
     "The workbook has a dialog sheet"},
    {"SEC-24", Severity::Warning, "control", "application/vnd.ms-office.activex+xml", "",
     "The package has an ActiveX control"},
    {"SEC-24", Severity::Warning, "activexcontrolbinary", "application/vnd.ms-office.activex", "",
     "The package has the state of an ActiveX control"},
    {"SEC-27", Severity::Warning, "webextension", "application/vnd.ms-office.webextension+xml", "",
     "The document brings a web add-in"},
    {"SEC-27", Severity::Warning, "webextensiontaskpanes",
     "application/vnd.ms-office.webextensiontaskpanes+xml", "", "The document opens panes of web add-ins"},
    {"SEC-28", Severity::Warning, "keymapcustomizations", "application/vnd.ms-word.keymapcustomizations", "",
     "The document binds keys"},
    {"SEC-28", Severity::Warning, "attachedtoolbars", "application/vnd.ms-word.attachedtoolbars", "",
     "The document brings toolbars"},
    {"SEC-11", Severity::Warning, "afchunk", "", "", "The document imports content in another format"},
    {"SEC-11", Severity::Warning, "altchunk", "", "", "The document imports content in another format"},
    {"SEC-14", Severity::Warning, "", "application/vnd.ms-excel.connections", "",
     "The workbook has connections to data elsewhere"},
    {"SEC-14", Severity::Warning, "querytable",
     "application/vnd.openxmlformats-officedocument.spreadsheetml.querytable+xml", "",
     "The workbook has a table of data from elsewhere"},
    {"SEC-64", Severity::Info, "comments", "", "", "The part holds comments"},
    {"SEC-64", Severity::Info, "threadedcomment", "", "", "The part holds comments"},
    {"SEC-64", Severity::Info, "people", "", "", "The part lists people"},
    {"SEC-64", Severity::Info, "person", "", "", "The part lists people"},
    {"SEC-64", Severity::Info, "commentauthors", "", "", "The part lists people"},
    {"SEC-64", Severity::Info, "authors", "", "", "The part lists people"},
    {"SEC-65", Severity::Info, "notesslide", "", "", "The part holds speaker notes"},
    {"SEC-66", Severity::Info, "printersettings", "", "", "The part holds settings of a printer"},
    {"SEC-66", Severity::Info, "revisionheaders", "", "", "The part logs the changes of a shared workbook"},
    {"SEC-66", Severity::Info, "usernames", "", "", "The part lists users of a shared workbook"},
    {"SEC-68", Severity::Info, "pivotcacherecords", "", "",
     "The part keeps a copy of the data of a pivot table"},
    {"SEC-68", Severity::Info, "externallink", "", "", "The part keeps copies of values of another workbook"},
};

/// Kinds that come in numbers: one finding counts them.
struct CountedKind {
    std::string_view rule, contentType, message;
};
constexpr CountedKind COUNTED_KINDS[] = {
    {"SEC-43", "image/x-emf", "images of drawing commands (EMF)"},
    {"SEC-43", "image/x-wmf", "images of drawing commands (WMF)"},
    {"SEC-44", "application/vnd.openxmlformats-officedocument.obfuscatedfont", "embedded fonts"},
};

class KindsOfParts {
public:
    KindsOfParts(const Subject& subject, Findings& findings) : subject(subject), findings(findings) {}

    void byRelationship() {
        for (const RelationshipsView& relationships : subject.relationships())
            for (const RelationshipView& entry : relationships.entries)
                if (entry.part != nullptr)
                    byRelationship(entry);
    }

    void byTypeAndName() {
        for (const PartView& part : subject.parts()) {
            if (part.isRelationships())
                continue;
            const std::string type = part.mediaType();
            const std::string name = toLowerASCII(part.name);
            for (const PartKind& kind : PART_KINDS)
                if ((!kind.contentType.empty() && startsWith(type, kind.contentType)) || kind.hasName(name))
                    tell(kind, part, kind.severity);
            for (const CountedKind& kind : COUNTED_KINDS)
                if (type == kind.contentType)
                    count(kind, part);
        }
    }

    void tellCounts() {
        for (const auto& [kind, counted] : counts)
            findings.add(kind->rule, {counted.second->name},
                         "The package has " + std::string(kind->message) + ": " +
                             std::to_string(counted.first));
    }

private:
    void byRelationship(const RelationshipView& entry) {
        const RelationshipType type(entry.type);
        for (const PartKind& kind : PART_KINDS)
            if (!kind.relationship.empty() && kind.relationship == type.name)
                tell(kind, *entry.part,
                     type.hasKnownBase ? kind.severity : std::min(kind.severity, Severity::Warning));
    }

    void tell(const PartKind& kind, const PartView& part, Severity severity) {
        if (!told.emplace(kind.rule, &part).second)
            return;
        if (kind.rule == "SEC-20" && !isForbidden())
            severity = Severity::Warning;
        findings.add(kind.rule, severity, {part.name}, messageOf(kind, part));
    }

    /// Whether the format is one without macros.
    bool isForbidden() const { return isOfficeFormat(subject.format()) && !allowsMacros(subject.format()); }

    std::string messageOf(const PartKind& kind, const PartView& part) const {
        std::string message(kind.message);
        if (kind.rule == "SEC-20" && isForbidden())
            message += ", which " + subject.format() + " doesn't allow";
        if (kind.rule == "SEC-11")
            message += " of the type " + shown(part.contentType);
        return message;
    }

    void count(const CountedKind& kind, const PartView& part) {
        auto& counted = counts[&kind];
        if (counted.first++ == 0)
            counted.second = &part;
    }

    const Subject& subject;
    Findings& findings;
    std::set<std::pair<std::string_view, const PartView*>> told;
    std::map<const CountedKind*, std::pair<std::size_t, const PartView*>> counts; // and the first of them
};

} // namespace

void checkKindsOfParts(const Subject& subject, Findings& findings) {
    const auto isWanted = [&findings](const auto& kind) { return findings.wants(kind.rule); };
    if (std::none_of(std::begin(PART_KINDS), std::end(PART_KINDS), isWanted) &&
        std::none_of(std::begin(COUNTED_KINDS), std::end(COUNTED_KINDS), isWanted))
        return;
    KindsOfParts kinds(subject, findings);
    kinds.byRelationship();
    kinds.byTypeAndName();
    kinds.tellCounts();
}

} // namespace opc::inspection

#include "checks/security/SecurityChecks.hpp"

#include "checks/DocumentChecks.hpp"
#include "checks/relationships/RelationshipKinds.hpp"
#include "checks/security/OleObject.hpp"
#include "checks/signatures/Signatures.hpp"
#include "external/RelationshipType.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

#include <opc/inspection/External.hpp>

#include <algorithm>
#include <set>

namespace opc::inspection {

namespace {

/// What an external target of a type means.
struct Meaning {
    std::string_view name; ///< last segment of the type, in lower case
    std::string_view rule;
    Severity severity; ///< for a target on the web
    std::string_view what;
};

constexpr Meaning MEANINGS[] = {
    {"attachedtemplate", "SEC-01", Severity::Error, "template"},
    {"oleobject", "SEC-02", Severity::Error, "linked object"},
    {"frame", "SEC-03", Severity::Error, "frame"},
    {"subdocument", "SEC-04", Severity::Error, "subdocument"},
    {"externallinkpath", "SEC-05", Severity::Warning, "linked workbook"},
    {"externallinklongpath", "SEC-05", Severity::Warning, "linked workbook"},
    {"xlstartup", "SEC-05", Severity::Warning, "linked workbook"},
    {"xlalternatestartup", "SEC-05", Severity::Warning, "linked workbook"},
    {"xlpathmissing", "SEC-05", Severity::Warning, "linked workbook"},
    {"xllibrary", "SEC-05", Severity::Warning, "linked workbook"},
    {"image", "SEC-06", Severity::Warning, "image"},
    {"video", "SEC-07", Severity::Warning, "film"},
    {"audio", "SEC-07", Severity::Warning, "sound"},
    {"media", "SEC-07", Severity::Warning, "film or sound"},
    {"afchunk", "SEC-11", Severity::Warning, "imported text"},
    {"altchunk", "SEC-11", Severity::Warning, "imported text"},
    {"slide", "SEC-12", Severity::Warning, "slide"},
    {"slidemaster", "SEC-12", Severity::Warning, "slide master"},
    {"slideupdateurl", "SEC-12", Severity::Warning, "slide library"},
    {"slideupdateinfo", "SEC-12", Severity::Warning, "slide library"},
    {"officedocument", "SEC-13", Severity::Error, "main document"},
    {"package", "SEC-13", Severity::Error, "embedded package"},
    {"worksheet", "SEC-13", Severity::Error, "sheet"},
    {"externalreference", "SEC-13", Severity::Error, "referenced workbook"},
    {"mailmergesource", "SEC-14", Severity::Warning, "mail merge source"},
    {"mailmergeheadersource", "SEC-14", Severity::Warning, "mail merge source"},
    {"mailmergerecipientdata", "SEC-14", Severity::Warning, "list of recipients"},
    {"recipientdata", "SEC-14", Severity::Warning, "list of recipients"},
};
constexpr Meaning UNKNOWN = {"", "SEC-16", Severity::Warning, "external target"};

const Meaning& meaningOf(std::string_view name) {
    for (const Meaning& meaning : MEANINGS)
        if (meaning.name == name)
            return meaning;
    return UNKNOWN;
}

Severity atMost(Severity limit, Severity severity) {
    return std::min(limit, severity);
}

/// Schemes whose handlers do more than show a page.
bool isRiskyScheme(const std::string& scheme) {
    static constexpr std::string_view RISKY[] = {"javascript", "vbscript", "data",   "ldap", "ldaps", "mhtml",
                                                 "search",     "shell",    "telnet", "jar",  "res"};
    return startsWith(scheme, "ms-") || startsWith(scheme, "search-ms") ||
           std::find(std::begin(RISKY), std::end(RISKY), scheme) != std::end(RISKY);
}

/// Document libraries on servers write such links.
bool isOfficeScheme(const std::string& scheme) {
    static constexpr std::string_view PROGRAMS[] = {"ms-access",     "ms-excel",   "ms-infopath",
                                                    "ms-powerpoint", "ms-project", "ms-publisher",
                                                    "ms-visio",      "ms-word"};
    return std::find(std::begin(PROGRAMS), std::end(PROGRAMS), scheme) != std::end(PROGRAMS);
}

std::string_view describePlace(ExternalPlace place) {
    static constexpr std::string_view TEXTS[] = {"on the web", "on a file server",
                                                 "in a file outside the package", "at a mail address",
                                                 "outside the package"};
    return TEXTS[static_cast<std::size_t>(place)];
}

class ExternalTargets {
public:
    explicit ExternalTargets(Findings& findings) : findings(findings) {}

    void check(const RelationshipsView& relationships) {
        plainLinks = 0;
        for (const RelationshipView& entry : relationships.entries)
            if (entry.isExternal)
                check(entry, placeAt({relationships.part->name, {}, entry.id}, entry.line, entry.column));
        if (plainLinks != 0)
            findings.add("SEC-09", Severity::Info, {relationships.part->name},
                         std::to_string(plainLinks) +
                             (plainLinks == 1 ? " hyperlink leads" : " hyperlinks lead") +
                             " to pages, files or mail addresses");
    }

private:
    void check(const RelationshipView& entry, const Place& place) {
        const RelationshipType type(entry.type);
        const std::string target = plainTarget(entry.target);
        const ExternalPlace where = placeOf(target);
        if (type.name == "hyperlink")
            checkHyperlink(target, where, place);
        else if (!isToldElsewhere(entry))
            checkOther(entry, target, type, where, place);
        if (hasUserInformation(target))
            findings.add("SEC-18", place, "The target holds user information: " + shown(target));
        checkPath(target, where, place);
    }

    /// Rules of their own forbid relationships of the package's own to lead out of it.
    bool isToldElsewhere(const RelationshipView& entry) const {
        return (isCoreProperties(entry) && findings.wants("M4.1")) ||
               (isThumbnail(entry) && findings.wants("M5.1")) ||
               (leadsToOrigin(entry) && findings.wants("M6.1")) ||
               (leadsToSignature(entry) && findings.wants("M6.3")) ||
               (leadsToCertificate(entry) && findings.wants("M6.4"));
    }

    void checkHyperlink(std::string_view target, ExternalPlace where, const Place& place) {
        const std::string scheme = schemeOf(target);
        if (isOfficeScheme(scheme))
            findings.add("SEC-09", Severity::Warning, place,
                         "The hyperlink " + shown(target) + " opens a document in an office program");
        else if (isRiskyScheme(scheme))
            findings.add("SEC-09", place, "The hyperlink " + shown(target) + " does more than show a page");
        else if ((where == ExternalPlace::File || where == ExternalPlace::Share) &&
                 isRunnable(target.substr(0, target.find_first_of("?#"))))
            findings.add("SEC-09", place, "The hyperlink " + shown(target) + " starts a program");
        else if (where == ExternalPlace::Share)
            findings.add("SEC-09", Severity::Warning, place,
                         "The hyperlink " + shown(target) + " leads to a file server");
        else
            ++plainLinks;
    }

    /// One finding for each relationship: that of its type, or that of its place if this is worse.
    void checkOther(const RelationshipView& entry, const std::string& target, const RelationshipType& type,
                    ExternalPlace where, const Place& place) {
        const Meaning& meaning = meaningOf(type.name);
        const bool isRemote = where == ExternalPlace::Web || where == ExternalPlace::Share;
        Severity severity = meaning.severity;
        if (!type.hasKnownBase || (!isRemote && type.name != "officedocument"))
            severity = atMost(Severity::Warning, severity);
        const std::string message = "The " + std::string(meaning.what) + " " + shown(target) + " lies " +
                                    std::string(describePlace(where));
        const bool isShare = where == ExternalPlace::Share && severity < Severity::Error;
        const bool isFile = where == ExternalPlace::File && &meaning == &UNKNOWN && isAbsolute(target);
        if ((isShare || isFile) && findings.wants("SEC-10"))
            findings.add("SEC-10", isShare ? Severity::Error : Severity::Warning, place, message);
        else
            findings.add(meaning.rule, severity, place,
                         &meaning == &UNKNOWN ? message + "; its type is " + shown(entry.type) : message);
    }

    void checkPath(const std::string& target, ExternalPlace where, const Place& place) {
        if (where != ExternalPlace::File || !isAbsolute(target))
            return;
        const std::string user = userIn(target);
        if (toldPaths.insert(user.empty() ? place.part : '@' + user).second)
            findings.add("SEC-67", place,
                         user.empty() ? "The target names a path of a machine: " + shown(target)
                                      : "The target names the user " + shown(user) + ": " + shown(target));
    }

    static bool isAbsolute(std::string_view target) {
        const bool hasDrive = target.size() > 2 && target[1] == ':';
        return hasDrive || schemeOf(target) == "file" || target.substr(0, 1) == "/" ||
               target.substr(0, 1) == "\\";
    }

    static bool hasUserInformation(std::string_view target) {
        const std::string scheme = schemeOf(target);
        const std::size_t begin = scheme.size() + 3;
        if (scheme.empty() || scheme == "mailto" || target.substr(scheme.size(), 3) != "://")
            return false;
        const std::string_view authority = target.substr(begin, target.find_first_of("/\\?#", begin) - begin);
        return authority.find('@') != std::string_view::npos;
    }

    Findings& findings;
    std::size_t plainLinks = 0;
    std::set<std::string> toldPaths; // each user, and each source part without one, is told once
};

} // namespace

void checkExternalTargets(const Subject& subject, Findings& findings) {
    ExternalTargets targets(findings);
    for (const RelationshipsView& relationships : subject.relationships())
        targets.check(relationships);
}

} // namespace opc::inspection

#include <opc/inspection/External.hpp>

#include "SubjectAnswers.hpp"
#include "external/RelationshipType.hpp"
#include "format/ForeignFormats.hpp"
#include "subject/Names.hpp"
#include "subject/Subject.hpp"
#include "text/CaselessText.hpp"

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

/// Last segments of the types whose targets are fetched without a click, in lower case and sorted.
constexpr std::string_view LOADING[] = {
    "activexcontrolbinary",
    "afchunk",
    "altchunk",
    "attachedtemplate",
    "attachedtoolbars",
    "audio",
    "control",
    "externallinklongpath",
    "externallinkpath",
    "externalreference",
    "frame",
    "image",
    "mailmergeheadersource",
    "mailmergerecipientdata",
    "mailmergesource",
    "media",
    "officedocument",
    "oleobject",
    "package",
    "recipientdata",
    "slide",
    "slidemaster",
    "slideupdateinfo",
    "slideupdateurl",
    "subdocument",
    "video",
    "worksheet",
    "xlalternatestartup",
    "xllibrary",
    "xlpathmissing",
    "xlstartup",
};

bool isSlash(char c) {
    return c == '/' || c == '\\';
}

std::size_t slashesAt(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isSlash) - text.begin());
}

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// With escaped slashes as slashes, as a reader sees them that decodes first.
std::string withoutEscapedSlashes(std::string_view target) {
    std::string plain;
    for (std::size_t i = 0; i < target.size(); ++i) {
        const std::string_view escape = target.substr(i, 3);
        if (startsWith(escape, "%5c") || startsWith(escape, "%2f")) {
            plain += '/';
            i += 2;
        } else
            plain += target[i];
    }
    return plain;
}

/// `C:` and what follows.
bool hasDrive(std::string_view path) {
    return path.size() >= 2 && isAlpha(path[0]) && (path[1] == ':' || path[1] == '|');
}

/// What lies behind `\\` or `//`: a host, but for the names of devices, `\\?\C:\`.
ExternalPlace placeBehindSlashes(std::string_view text) {
    if (startsWith(text, "?\\unc\\") || startsWith(text, "?/unc/"))
        return ExternalPlace::Share;
    const bool isDevice = text.size() >= 2 && (text[0] == '?' || text[0] == '.') && isSlash(text[1]);
    return text.empty() || isDevice || hasDrive(text) ? ExternalPlace::File : ExternalPlace::Share;
}

/// What lies behind `file:`. Readers take `file://host/x`, `file:////host/x` and `file:\\host\x` for the same share.
ExternalPlace placeOfFile(std::string_view rest) {
    const std::size_t slashes = slashesAt(rest);
    const std::string_view behind = rest.substr(slashes);
    if (slashes == 2) {
        const std::string host = toLowerASCII(behind.substr(0, behind.find_first_of("/\\")));
        return host.empty() || host == "localhost" ? ExternalPlace::File : placeBehindSlashes(behind);
    }
    return slashes >= 4 ? placeBehindSlashes(behind) : ExternalPlace::File;
}

ExternalPlace placeOfScheme(std::string_view scheme, std::string_view rest) {
    static constexpr std::string_view WEB[] = {"http", "https", "ftp", "ftps", "sftp", "ws", "wss", "mhtml"};
    if (scheme == "file")
        return placeOfFile(rest);
    if (scheme == "mailto")
        return ExternalPlace::Mail;
    const bool isWeb = std::find(std::begin(WEB), std::end(WEB), scheme) != std::end(WEB);
    return isWeb ? ExternalPlace::Web : ExternalPlace::Other;
}

} // namespace

ExternalEffect effectOf(std::string_view type) {
    const std::string name = RelationshipType(type).name;
    if (name == "hyperlink")
        return ExternalEffect::OpensOnClick;
    const bool loads = std::binary_search(std::begin(LOADING), std::end(LOADING), std::string_view(name));
    return loads ? ExternalEffect::LoadsOnOpen : ExternalEffect::Other;
}

ExternalPlace placeOf(std::string_view target) {
    const std::string plain = withoutEscapedSlashes(plainTarget(target));
    if (plain.empty() || plain[0] == '#')
        return ExternalPlace::Other;
    if (slashesAt(plain) >= 2)
        return placeBehindSlashes(std::string_view(plain).substr(slashesAt(plain)));
    if (hasDrive(plain))
        return ExternalPlace::File;
    const std::string scheme = schemeOf(plain);
    return scheme.empty() ? ExternalPlace::File
                          : placeOfScheme(scheme, std::string_view(plain).substr(scheme.size() + 1));
}

std::string_view toString(ExternalEffect effect) {
    switch (effect) {
    case ExternalEffect::LoadsOnOpen:
        return "loads";
    case ExternalEffect::OpensOnClick:
        return "click";
    default:
        return "other";
    }
}

std::string_view toString(ExternalPlace place) {
    static constexpr std::string_view NAMES[] = {"web", "share", "file", "mail", "other"};
    return NAMES[static_cast<std::size_t>(place)];
}

Externals listExternals(const Archive& archive, const physical::ZipOptions& limits) {
    return listExternals(Subject(archive, limits));
}

Externals listExternals(const Subject& subject) {
    if (!subject.archive().isZip())
        throwNoArchive(subject.archive());
    Externals result;
    for (const RelationshipsView& relationships : subject.relationships()) {
        for (const RelationshipView& entry : relationships.entries)
            if (entry.isExternal)
                result.found.push_back({relationships.source, entry.id, entry.type, entry.target,
                                        effectOf(entry.type), placeOf(entry.target)});
        if (!relationships.document.failure.empty())
            result.unread.push_back({relationships.part->name, relationships.document.failure});
    }
    return result;
}

} // namespace opc::inspection

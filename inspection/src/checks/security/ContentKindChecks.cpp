#include "checks/security/ContentKindChecks.hpp"

#include "checks/OfficeFormats.hpp"
#include "checks/security/ContentKind.hpp"
#include "checks/security/OleObject.hpp"
#include "checks/security/Prolog.hpp"
#include "external/RelationshipType.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

namespace opc::inspection {

namespace {

class ContentKindObserver final : public ContentObserver {
public:
    ContentKindObserver(const Subject& subject, Findings& findings) : subject(subject), findings(findings) {}

    bool begin(const PartView& part, std::string_view head) override {
        if (part.isRelationships() || head.empty())
            return false;
        const ContentKind kind = kindOf(head);
        const std::string type = part.mediaType();
        checkType(part, type, kind);
        if (kind == ContentKind::Ole)
            checkObject(part, head);
        if (kind == ContentKind::Jpeg || kind == ContentKind::Tiff || kind == ContentKind::Png)
            checkImageData(part, head.substr(0, 65536)); // it stands in front of the pixels
        return beginProlog(part, type, kind, head);
    }

    void bytes(std::string_view piece) override {
        if (!prolog.isOver())
            prolog.add(piece);
    }

    model::XmlEvents* end() override {
        if (!prolog.hasDoctype())
            return nullptr;
        const std::string& text = prolog.declaration();
        const bool hasEntities = toLowerASCII(text).find("<!entity") != std::string::npos;
        // The image format's own declaration names its schema, and nothing reads it any more.
        const Severity severity = hasEntities                        ? Severity::Error
                                  : isSvg                            ? Severity::Info
                                  : isOfficeFormat(subject.format()) ? Severity::Error
                                                                     : Severity::Warning;
        findings.add("SEC-22", severity, {name},
                     "The part has a document type declaration" +
                         std::string(hasEntities ? " with entities" : "") + ": <" +
                         shown(text.substr(0, text.find_first_of(">["))));
        return nullptr;
    }

private:
    /// Most prologs end in the head: then the bytes needn't be looked at.
    bool beginProlog(const PartView& part, const std::string& type, ContentKind kind, std::string_view head) {
        // Documents of the package's own: another rule tells it (M1.18).
        const bool isOwn = type == "application/vnd.openxmlformats-package.core-properties+xml" ||
                           startsWith(type, "application/vnd.openxmlformats-package.digital-signature");
        if (isOwn || kind == ContentKind::Html ||
            (kind != ContentKind::Xml && kindOfType(type) != ContentKind::Xml))
            return false;
        name = part.name;
        isSvg = type == "image/svg+xml";
        prolog.begin();
        prolog.add(head);
        const bool isDecided = prolog.isOver() && !prolog.hasDoctype();
        prolog.begin();
        return !isDecided;
    }

    void checkType(const PartView& part, const std::string& type, ContentKind kind) {
        const ContentKind promised = kindOfType(type);
        const bool isDanger = kind == ContentKind::Program || kind == ContentKind::Script;
        // In packages of programs (nupkg, vsix …) programs are what they are there for.
        const bool isExpected =
            isDanger && !isOfficeFormat(subject.format()) && promised == ContentKind::Unknown;
        const bool isUnclear = promised == ContentKind::Unknown || kind == ContentKind::Unknown;
        if (isExpected || kind == promised || (isUnclear && !isDanger) ||
            (promised == ContentKind::Html && kind == ContentKind::Xml))
            return;
        Severity severity = isDanger || (kind == ContentKind::Ole && promised != ContentKind::Unknown)
                                ? Severity::Error
                                : Severity::Warning;
        if (isImage(kind) && isImage(promised)) // readers of images go by the first bytes
            severity = Severity::Info;
        findings.add("SEC-41", severity, {part.name},
                     "The part is " + std::string(describe(kind)) + ", and its type is " +
                         shown(part.contentType));
    }

    void checkObject(const PartView& part, std::string_view head) {
        if (holdsMacros(head) && !isMacroPart(part))
            findings.add("SEC-20", Severity::Warning, {part.name}, "The object has macros of its own");
        const std::string file = fileNameInObject(head);
        if (!file.empty())
            findings.add("SEC-30", isRunnable(file) ? Severity::Error : Severity::Warning, {part.name},
                         "The object holds the file " + shown(file));
    }

    /// Whether a relationship or the type says that it has macros: then that is told already.
    bool isMacroPart(const PartView& part) const {
        if (startsWith(part.mediaType(), "application/vnd.ms-office.vbaproject") ||
            endsWith(part.name, "/vbaproject.bin"))
            return true;
        for (const RelationshipsView& relationships : subject.relationships())
            for (const RelationshipView& entry : relationships.entries)
                if (entry.part == &part && RelationshipType(entry.type).name == "vbaproject")
                    return true;
        return false;
    }

    void checkImageData(const PartView& part, std::string_view head) {
        const bool hasExif = head.find(std::string_view("Exif\0\0", 6)) != std::string_view::npos ||
                             head.find("eXIf") != std::string_view::npos;
        const bool hasXmp = head.find("<x:xmpmeta") != std::string_view::npos;
        if (hasExif || hasXmp)
            findings.add("SEC-68", {part.name},
                         std::string("The image holds ") + (hasExif ? "Exif" : "XMP") + " data");
    }

    const Subject& subject;
    Findings& findings;
    Prolog prolog;
    std::string name;
    bool isSvg = false;
};

} // namespace

std::unique_ptr<ContentObserver> makeContentKindObserver(const Subject& subject, Findings& findings) {
    return std::make_unique<ContentKindObserver>(subject, findings);
}

} // namespace opc::inspection

#include "checks/security/ContentKindChecks.hpp"

#include "checks/DocumentChecks.hpp"
#include "checks/OfficeFormats.hpp"
#include "checks/security/ContentKind.hpp"
#include "checks/security/OleObject.hpp"
#include "checks/security/Prolog.hpp"
#include "external/RelationshipType.hpp"
#include "subject/Names.hpp"
#include "text/CaselessText.hpp"
#include "text/MessageText.hpp"

#include <unordered_map>

namespace opc::inspection {

namespace {

class ContentKindObserver final : public ContentObserver {
public:
    ContentKindObserver(const Subject& subject, Findings& findings) : subject(subject), findings(findings) {
        for (const RelationshipsView& relationships : subject.relationships())
            for (const RelationshipView& entry : relationships.entries) {
                const std::string type = RelationshipType(entry.type).name;
                if (type == "oleobject" || type == "package")
                    embedded.emplace(entry.part, type == "package");
            }
    }

    bool begin(const PartView& part, std::string_view head) override {
        prolog.begin();
        kind = kindOf(head);
        if (part.isRelationships())
            return false;
        const std::string type = part.mediaType();
        if (kind == ContentKind::Ole) {
            checkType(part, type);
            object = &part;
            ole.begin();
            return true;
        }
        const bool isEmbedded = checkEmbedded(part, {});
        if (head.empty())
            return false;
        if (!isEmbedded || !isRun(kind) || !findings.wants("SEC-30"))
            checkType(part, type);
        if (kind == ContentKind::Jpeg || kind == ContentKind::Tiff || kind == ContentKind::Png)
            checkImageData(part, head.substr(0, 65536)); // it stands in front of the pixels
        return beginProlog(part, type, head);
    }

    void bytes(std::string_view piece) override {
        if (kind == ContentKind::Ole)
            ole.add(piece);
        else if (!prolog.isOver())
            prolog.add(piece);
    }

    void broken() override {
        if (kind == ContentKind::Ole)
            tellObject();
    }

    model::XmlEvents* end() override {
        if (kind == ContentKind::Ole)
            tellObject();
        if (!prolog.hasDoctype())
            return nullptr;
        const std::string& text = prolog.declaration();
        const bool hasEntities = toLowerASCII(text).find("<!entity") != std::string::npos;
        // The image format's own declaration names its schema, and nothing reads it any more.
        const Severity severity = hasEntities                        ? Severity::Error
                                  : isSvg                            ? Severity::Info
                                  : isOfficeFormat(subject.format()) ? Severity::Error
                                                                     : Severity::Warning;
        const model::XmlPlace place = prolog.place();
        findings.add("SEC-22", severity, placeAt({name}, place.line, place.column),
                     "The part has a document type declaration" +
                         std::string(hasEntities ? " with entities" : "") + ": <" +
                         shown(text.substr(0, text.find_first_of(">["))));
        return nullptr;
    }

    bool tellsWhyUnparsable() const override {
        return (prolog.hasDoctype() && findings.wants("SEC-22")) ||
               (kind == ContentKind::Html && findings.wants("SEC-41"));
    }

private:
    /// Most prologs end in the head: then the bytes needn't be looked at.
    bool beginProlog(const PartView& part, const std::string& type, std::string_view head) {
        // Documents of the package's own: another rule tells it (M1.18).
        const bool isOwn = type == "application/vnd.openxmlformats-package.core-properties+xml" ||
                           startsWith(type, "application/vnd.openxmlformats-package.digital-signature");
        if (isOwn || kind == ContentKind::Html ||
            (kind != ContentKind::Xml && kindOfType(type) != ContentKind::Xml))
            return false;
        name = part.name;
        isSvg = type == "image/svg+xml";
        prolog.add(head);
        const bool isDecided = prolog.isOver() && !prolog.hasDoctype();
        prolog.begin();
        return !isDecided;
    }

    void checkType(const PartView& part, const std::string& type) {
        const ContentKind promised = kindOfType(type);
        const bool isDanger = isRun(kind);
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

    void tellObject() {
        checkEmbedded(*object, ole.fileName());
        if (ole.holdsMacros() && !isMacroPart(*object))
            findings.add("SEC-20", Severity::Warning, {object->name}, "The object has macros of its own");
    }

    /// @param file  the name of the file that an object holds; empty if there is none
    /// @return whether it is an embedded object, or another document
    bool checkEmbedded(const PartView& part, const std::string& file) {
        const auto found = embedded.find(&part);
        if (found == embedded.end() && file.empty() &&
            part.mediaType() != "application/vnd.openxmlformats-officedocument.oleobject")
            return false;
        const bool isDocument = found != embedded.end() && found->second && file.empty();
        const bool runs = isRun(kind) || isRunnable(part.name) || isRunnable(file);
        std::string message =
            isDocument ? "The package embeds another document" : "The package embeds an object";
        message += " of the type " + shown(part.contentType);
        if (!file.empty())
            message += ", which holds the file " + shown(file);
        else if (isRun(kind))
            message += ", which is " + std::string(describe(kind));
        findings.add("SEC-30",
                     runs         ? Severity::Error
                     : isDocument ? Severity::Info
                                  : Severity::Warning,
                     {part.name}, message);
        return true;
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
    std::unordered_map<const PartView*, bool> embedded; ///< and whether as another document
    Prolog prolog;
    OleObject ole;
    const PartView* object = nullptr;        ///< the part, if it is an OLE object
    ContentKind kind = ContentKind::Unknown; ///< of the part
    std::string name;
    bool isSvg = false;
};

} // namespace

std::unique_ptr<ContentObserver> makeContentKindObserver(const Subject& subject, Findings& findings) {
    return std::make_unique<ContentKindObserver>(subject, findings);
}

} // namespace opc::inspection

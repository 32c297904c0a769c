#include "format/PackageFormats.hpp"

#include "format/ForeignFormats.hpp"
#include "subject/Names.hpp"

#include <algorithm>
#include <iterator>

namespace opc::inspection {

namespace {

using std::string_view;

struct KnownPackage {
    string_view key; ///< what tells the format
    const char* name;
    const char* mediaType;
    const char* description;
};

#define WORD "application/vnd.openxmlformats-officedocument.wordprocessingml."
#define EXCEL "application/vnd.openxmlformats-officedocument.spreadsheetml."
#define POWERPOINT "application/vnd.openxmlformats-officedocument.presentationml."

/// By the content type of the main part, in lower case.
constexpr KnownPackage BY_MAIN_TYPE[] = {
    {WORD "document.main+xml", "docx", WORD "document", "Word document"},
    {"application/vnd.ms-word.document.macroenabled.main+xml", "docm",
     "application/vnd.ms-word.document.macroEnabled.12", "Word document with macros"},
    {WORD "template.main+xml", "dotx", WORD "template", "Word template"},
    {"application/vnd.ms-word.template.macroenabledtemplate.main+xml", "dotm",
     "application/vnd.ms-word.template.macroEnabled.12", "Word template with macros"},
    {EXCEL "sheet.main+xml", "xlsx", EXCEL "sheet", "Excel workbook"},
    {"application/vnd.ms-excel.sheet.macroenabled.main+xml", "xlsm",
     "application/vnd.ms-excel.sheet.macroEnabled.12", "Excel workbook with macros"},
    {EXCEL "template.main+xml", "xltx", EXCEL "template", "Excel template"},
    {"application/vnd.ms-excel.template.macroenabled.main+xml", "xltm",
     "application/vnd.ms-excel.template.macroEnabled.12", "Excel template with macros"},
    {"application/vnd.ms-excel.addin.macroenabled.main+xml", "xlam",
     "application/vnd.ms-excel.addin.macroEnabled.12", "Excel add-in"},
    {"application/vnd.ms-excel.sheet.binary.macroenabled.main", "xlsb",
     "application/vnd.ms-excel.sheet.binary.macroEnabled.12", "Excel binary workbook"},
    {POWERPOINT "presentation.main+xml", "pptx", POWERPOINT "presentation", "PowerPoint presentation"},
    {"application/vnd.ms-powerpoint.presentation.macroenabled.main+xml", "pptm",
     "application/vnd.ms-powerpoint.presentation.macroEnabled.12", "PowerPoint presentation with macros"},
    {POWERPOINT "template.main+xml", "potx", POWERPOINT "template", "PowerPoint template"},
    {"application/vnd.ms-powerpoint.template.macroenabled.main+xml", "potm",
     "application/vnd.ms-powerpoint.template.macroEnabled.12", "PowerPoint template with macros"},
    {POWERPOINT "slideshow.main+xml", "ppsx", POWERPOINT "slideshow", "PowerPoint show"},
    {"application/vnd.ms-powerpoint.slideshow.macroenabled.main+xml", "ppsm",
     "application/vnd.ms-powerpoint.slideshow.macroEnabled.12", "PowerPoint show with macros"},
    {"application/vnd.ms-powerpoint.addin.macroenabled.main+xml", "ppam",
     "application/vnd.ms-powerpoint.addin.macroEnabled.12", "PowerPoint add-in"},
    {POWERPOINT "slide+xml", "sldx", POWERPOINT "slide", "PowerPoint slide"},
    {"application/vnd.openxmlformats-officedocument.thememanager+xml", "thmx",
     "application/vnd.ms-officetheme", "Office theme"},
    {"application/vnd.ms-visio.drawing.main+xml", "vsdx", "application/vnd.ms-visio.drawing",
     "Visio drawing"},
    {"application/vnd.ms-visio.drawing.macroenabled.main+xml", "vsdm",
     "application/vnd.ms-visio.drawing.macroEnabled.12", "Visio drawing with macros"},
    {"application/vnd.ms-visio.template.main+xml", "vstx", "application/vnd.ms-visio.template",
     "Visio template"},
    {"application/vnd.ms-visio.template.macroenabled.main+xml", "vstm",
     "application/vnd.ms-visio.template.macroEnabled.12", "Visio template with macros"},
    {"application/vnd.ms-visio.stencil.main+xml", "vssx", "application/vnd.ms-visio.stencil",
     "Visio stencil"},
    {"application/vnd.ms-visio.stencil.macroenabled.main+xml", "vssm",
     "application/vnd.ms-visio.stencil.macroEnabled.12", "Visio stencil with macros"},
    {"application/vnd.ms-package.3dmanufacturing-3dmodel+xml", "3mf", "model/3mf", "3D model"},
};

#undef WORD
#undef EXCEL
#undef POWERPOINT

/// By the type of a relationship of the package.
constexpr KnownPackage BY_RELATIONSHIP[] = {
    {"http://schemas.microsoft.com/xps/2005/06/fixedrepresentation", "xps", "application/vnd.ms-xpsdocument",
     "XPS document"},
    {"http://schemas.openxps.org/oxps/v1.0/fixedrepresentation", "oxps", "application/oxps",
     "OpenXPS document"},
    {"http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel", "3mf", "model/3mf", "3D model"},
    {"http://schemas.microsoft.com/packaging/2010/07/manifest", "nupkg", "", "NuGet package"},
};

/// By a part that every such package has.
constexpr KnownPackage BY_PART[] = {
    {"/AppxMetadata/AppxBundleManifest.xml", "appxbundle", "application/vnd.ms-appx.bundle",
     "bundle of Windows apps (appx or msix)"},
    {"/AppxManifest.xml", "appx", "application/vnd.ms-appx", "Windows app (appx or msix)"},
    {"/extension.vsixmanifest", "vsix", "", "Visual Studio extension"},
};

void take(Format& format, const KnownPackage& known) {
    format.name = known.name;
    format.mediaType = known.mediaType;
    format.description = known.description;
}

/// @return whether a relationship of the package tells the format
bool takeByRelationship(const Subject& subject, Format& format) {
    const RelationshipsView* const ofPackage = subject.relationshipsOf("/");
    if (!ofPackage)
        return false;
    for (const RelationshipView& entry : ofPackage->entries)
        for (const KnownPackage& known : BY_RELATIONSHIP)
            if (!entry.isExternal && entry.type == known.key) {
                take(format, known);
                format.mainPart = entry.part ? entry.part->name : std::string();
                return true;
            }
    return false;
}

bool takeByMainType(const Subject& subject, Format& format) {
    const PartView* const main = subject.mainPart();
    if (!main)
        return false;
    const std::string type = main->mediaType();
    const auto* const known = std::find_if(std::begin(BY_MAIN_TYPE), std::end(BY_MAIN_TYPE),
                                           [&](const KnownPackage& row) { return row.key == type; });
    if (known == std::end(BY_MAIN_TYPE))
        return false;
    take(format, *known);
    format.mainPart = main->name;
    return true;
}

bool takeByPart(const Subject& subject, Format& format) {
    for (const KnownPackage& known : BY_PART)
        if (const PartView* const part = subject.findPart(known.key)) {
            take(format, known);
            format.mainPart = part->name;
            return true;
        }
    return false;
}

Format::Conformance conformanceOf(const Subject& subject) {
    if (const RelationshipsView* const ofPackage = subject.relationshipsOf("/"))
        for (const RelationshipView& entry : ofPackage->entries)
            if (entry.lastSegment() == "officeDocument")
                return string_view(entry.type).substr(0, 27) == "http://purl.oclc.org/ooxml/"
                           ? Format::Conformance::Strict
                           : Format::Conformance::Transitional;
    return Format::Conformance::None;
}

bool holdsMacros(const PartView& part) {
    if (part.isRelationships())
        return false;
    const std::string type = part.mediaType();
    return type == "application/vnd.ms-office.vbaproject" ||
           type == "application/vnd.ms-excel.macrosheet+xml" ||
           type == "application/vnd.ms-excel.macrosheet" ||
           type == "application/vnd.ms-excel.intlmacrosheet+xml" ||
           type == "application/vnd.ms-excel.intlmacrosheet";
}

bool holdsSignature(const PartView& part) {
    return part.mediaType() == "application/vnd.openxmlformats-package.digital-signature-xmlsignature+xml" ||
           part.name == "/AppxSignature.p7x" || part.name == "/.signature.p7s";
}

template <typename Test>
bool anyPart(const Subject& subject, const Test& test) {
    return std::any_of(subject.parts().begin(), subject.parts().end(), test);
}

} // namespace

Format detectFormat(const Subject& subject) {
    if (!subject.archive().isZip() || !subject.contentTypesDocument().item)
        return detectForeignFormat(subject.archive());
    Format format;
    format.isPackage = true;
    if (!takeByRelationship(subject, format) && !takeByMainType(subject, format) &&
        !takeByPart(subject, format)) {
        format.name = "opc";
        format.description = "package in the Open Packaging Conventions";
        format.mainPart = subject.mainPart() ? subject.mainPart()->name : std::string();
    }
    format.conformance = conformanceOf(subject);
    format.hasMacros = anyPart(subject, holdsMacros);
    format.isSigned = anyPart(subject, holdsSignature);
    return format;
}

Format detectFormat(const Archive& archive) {
    return detectFormat(Subject(archive, {}));
}

} // namespace opc::inspection

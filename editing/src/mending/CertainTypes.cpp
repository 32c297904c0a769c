#include "mending/CertainTypes.hpp"

#include "checks/security/ContentKind.hpp"
#include "subject/Names.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/core/Exception.hpp>
#include <opc/model/XmlEvents.hpp>

#include <algorithm>
#include <iterator>

namespace opc::editing::mending {

using namespace inspection;

namespace {

constexpr std::size_t HEAD = 4096;

struct TypeOfRoot {
    std::string_view vocabulary; ///< the last words of its namespace
    std::string_view root;
    std::string_view type; ///< without what all of the vocabulary begin with
};

constexpr std::string_view WORD = "wordprocessingml";
constexpr std::string_view SHEET = "spreadsheetml";
constexpr std::string_view SLIDE = "presentationml";

/// Main parts aren't among them: their roots are those of templates, too.
constexpr TypeOfRoot ROOTS[] = {
    {WORD, "styles", "wordprocessingml.styles"},
    {WORD, "settings", "wordprocessingml.settings"},
    {WORD, "webSettings", "wordprocessingml.webSettings"},
    {WORD, "fonts", "wordprocessingml.fontTable"},
    {WORD, "numbering", "wordprocessingml.numbering"},
    {WORD, "footnotes", "wordprocessingml.footnotes"},
    {WORD, "endnotes", "wordprocessingml.endnotes"},
    {WORD, "comments", "wordprocessingml.comments"},
    {WORD, "hdr", "wordprocessingml.header"},
    {WORD, "ftr", "wordprocessingml.footer"},
    {SHEET, "styleSheet", "spreadsheetml.styles"},
    {SHEET, "sst", "spreadsheetml.sharedStrings"},
    {SHEET, "worksheet", "spreadsheetml.worksheet"},
    {SHEET, "chartsheet", "spreadsheetml.chartsheet"},
    {SHEET, "calcChain", "spreadsheetml.calcChain"},
    {SHEET, "comments", "spreadsheetml.comments"},
    {SHEET, "table", "spreadsheetml.table"},
    {SLIDE, "sld", "presentationml.slide"},
    {SLIDE, "sldLayout", "presentationml.slideLayout"},
    {SLIDE, "sldMaster", "presentationml.slideMaster"},
    {SLIDE, "notes", "presentationml.notesSlide"},
    {SLIDE, "notesMaster", "presentationml.notesMaster"},
    {SLIDE, "presentationPr", "presentationml.presProps"},
    {SLIDE, "viewPr", "presentationml.viewProps"},
    {"drawingml", "theme", "theme"},
    {"drawingml", "tblStyleLst", "presentationml.tableStyles"},
    {"chart", "chartSpace", "drawingml.chart"},
    {"extended-properties", "Properties", "extended-properties"},
    {"extendedProperties", "Properties", "extended-properties"},
    {"custom-properties", "Properties", "custom-properties"},
    {"customProperties", "Properties", "custom-properties"},
};

struct MainType {
    std::string_view extension; ///< of the package
    std::string_view vocabulary, root, type;
};

constexpr MainType MAINS[] = {
    {".docx", WORD, "document", "wordprocessingml.document.main"},
    {".dotx", WORD, "document", "wordprocessingml.template.main"},
    {".xlsx", SHEET, "workbook", "spreadsheetml.sheet.main"},
    {".xltx", SHEET, "workbook", "spreadsheetml.template.main"},
    {".pptx", SLIDE, "presentation", "presentationml.presentation.main"},
    {".potx", SLIDE, "presentation", "presentationml.template.main"},
};

/// Ends the reading at the root.
struct RootFound {};

class RootReader final : public model::XmlEvents {
public:
    std::string namespaceURI, name;

private:
    void onStart(const model::XmlElement& element, const model::XmlPlace&) override {
        namespaceURI = narrow(element.namespaceURI());
        name = narrow(element.localName());
        throw RootFound();
    }
};

bool isOfVocabulary(std::string_view namespaceURI, std::string_view vocabulary) {
    const bool isOffice = namespaceURI.find("openxmlformats.org/") != std::string_view::npos ||
                          namespaceURI.find("purl.oclc.org/ooxml/") != std::string_view::npos;
    const std::string segment = '/' + std::string(vocabulary);
    const std::size_t found = namespaceURI.rfind(segment);
    if (!isOffice || found == std::string_view::npos)
        return false;
    const std::string_view rest = namespaceURI.substr(found + segment.size());
    return rest.empty() || rest == "/main" || rest == "/2006/main";
}

std::string typeOfXML(const std::string& head, std::string_view fileName) {
    RootReader root;
    try {
        const std::vector<unsigned char> bytes(head.begin(), head.end());
        ByteArrayInAdaptor stream(bytes);
        model::readXmlDocument(stream, root);
    } catch (const RootFound&) {
        // That is all that is asked.
    } catch (const Exception&) {
        return {};
    }
    if (root.namespaceURI == "http://schemas.openxmlformats.org/package/2006/metadata/core-properties")
        return "application/vnd.openxmlformats-package.core-properties+xml";
    const auto office = [](std::string_view type) {
        return "application/vnd.openxmlformats-officedocument." + std::string(type) + "+xml";
    };
    for (const auto& [vocabulary, name, type] : ROOTS)
        if (root.name == name && isOfVocabulary(root.namespaceURI, vocabulary))
            return office(type);
    const std::string extension =
        toLowerASCII(fileName.substr(std::min(fileName.rfind('.'), fileName.size())));
    for (const auto& [ofPackage, vocabulary, name, type] : MAINS)
        if (extension == ofPackage && root.name == name && isOfVocabulary(root.namespaceURI, vocabulary))
            return office(type);
    return {};
}

} // namespace

std::string certainType(const Subject& subject, const PartView& part, std::string_view fileName) {
    if (part.isRelationships())
        return "application/vnd.openxmlformats-package.relationships+xml";
    const std::string head = subject.read(part, HEAD);
    switch (kindOf(head)) {
    case ContentKind::Png:
        return "image/png";
    case ContentKind::Jpeg:
        return "image/jpeg";
    case ContentKind::Gif:
        return "image/gif";
    case ContentKind::Tiff:
        return "image/tiff";
    case ContentKind::Bmp:
        return "image/bmp";
    case ContentKind::Emf:
        return "image/x-emf";
    case ContentKind::Wmf:
        return "image/x-wmf";
    case ContentKind::Xml:
        return typeOfXML(head, fileName);
    default:
        return {};
    }
}

bool isLeftover(std::string_view itemName) {
    constexpr std::string_view NAMES[] = {".DS_Store", "Thumbs.db", "ehthumbs.db", "desktop.ini"};
    const std::string_view file = itemName.substr(itemName.find_last_of('/') + 1);
    return itemName.substr(0, 9) == "__MACOSX/" ||
           std::any_of(std::begin(NAMES), std::end(NAMES),
                       [file](std::string_view name) { return equalsCaseless(file, name); });
}

} // namespace opc::editing::mending

#include "RealShapes.hpp"

#include "SamplePackages.hpp"

#include <opc/interfaces/CompressionType.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>
#include <opc/model/StandardPartInfo.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace bench {

namespace {

using opc::interfaces::CompressionType;

const std::string PACKAGE_NAMESPACE = "http://schemas.openxmlformats.org/package/2006/";
const std::string OFFICE_TYPES = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::string OFFICE_CONTENT = "application/vnd.openxmlformats-officedocument.";
const std::string PACKAGE_CONTENT = "application/vnd.openxmlformats-package.";

/// A package as text, made without the model: it has entities, comments and white space as its program writes them.
class Shape {
public:
    /// @param lineStart  comes before each element
    explicit Shape(std::string lineStart = {}) : elementStart(std::move(lineStart)) {
        addDefault("rels", PACKAGE_CONTENT + "relationships+xml");
    }

    void addDefault(const std::string& extension, const std::string& type) {
        contentTypes +=
            elementStart + "<Default Extension=\"" + extension + "\" ContentType=\"" + type + "\"/>";
    }

    /// @param type  empty for the type of the extension
    void addPart(const std::string& name, const std::string& type, const std::string& content,
                 CompressionType compression = CompressionType::Normal) {
        if (!type.empty())
            contentTypes +=
                elementStart + "<Override PartName=\"" + name + "\" ContentType=\"" + type + "\"/>";
        parts.push_back({name, content, compression});
    }

    /// @param source  a part, or "/" for the package
    /// @param target  in the form of an attribute value
    void relate(const std::string& source, const std::string& type, const std::string& target,
                bool isExternal = false) {
        auto& [elements, count] = relationships[source];
        elements += elementStart + "<Relationship Id=\"rId" + std::to_string(++count) + "\" Type=\"" + type +
                    "\" Target=\"" + target + "\"" + (isExternal ? " TargetMode=\"External\"/>" : "/>");
    }

    void comment(const std::string& source, const std::string& text) {
        relationships[source].elements += "<!-- " + text + " -->";
    }

    void save(const std::filesystem::path& path) const {
        opc::physical::ZipPackage archive(path);
        archive.open(opc::interfaces::OpenMode::CreateOnly);
        write(*archive.getContentTypeOutputStream(), document("Types", "content-types", contentTypes));
        for (const auto& [source, list] : relationships)
            write(archive,
                  {relationshipsPart(source), document("Relationships", "relationships", list.elements),
                   CompressionType::Normal});
        for (const Content& part : parts)
            write(archive, part);
        archive.close(false);
    }

private:
    struct Content {
        std::string name;
        std::string text;
        CompressionType compression;
    };
    struct List {
        std::string elements;
        int count = 0;
    };

    static std::string relationshipsPart(const std::string& source) {
        const std::size_t nameStart = source.rfind('/') + 1;
        return source.substr(0, nameStart) + "_rels/" + source.substr(nameStart) + ".rels";
    }

    std::string document(const std::string& root, const std::string& space,
                         const std::string& elements) const {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<" + root + " xmlns=\"" +
               PACKAGE_NAMESPACE + space + "\">" + elements + "</" + root + ">";
    }

    static void write(opc::interfaces::IPhysicalOutputStream& stream, const std::string& text) {
        stream.write(reinterpret_cast<const unsigned char*>(text.data()), text.size());
        stream.close();
    }

    static void write(opc::physical::ZipPackage& archive, const Content& part) {
        const opc::model::StandardPartInfo info(part.compression);
        write(*archive.createPart(std::u16string(part.name.begin(), part.name.end()), u"", info)
                   ->getOutputStream(),
              part.text);
    }

    std::string elementStart;
    std::string contentTypes;
    std::map<std::string, List> relationships;
    std::vector<Content> parts;
};

std::string text(int number, std::size_t size) {
    std::string text;
    while (text.size() < size)
        text += partContent(number++);
    return text;
}

/// Content that can't be compressed, like pictures and fonts.
std::string picture(std::size_t size) {
    std::minstd_rand random(1);
    std::string bytes;
    while (bytes.size() < size)
        bytes += static_cast<char>(random() >> 8);
    return bytes;
}

std::string coreProperties(const std::string& time) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<cp:coreProperties xmlns:cp=\"" +
           PACKAGE_NAMESPACE +
           "metadata/core-properties\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
           "xmlns:dcterms=\"http://purl.org/dc/terms/\" "
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
           "<dc:title>Prices &amp; terms</dc:title><dc:creator>Somebody</dc:creator>"
           "<dcterms:created xsi:type=\"dcterms:W3CDTF\">" +
           time + "</dcterms:created></cp:coreProperties>";
}

/// A part of an office document, `folder`name.xml. The main part leads to it.
void addOfficePart(Shape& shape, const std::string& main, const std::string& family, const std::string& kind,
                   const std::string& file, std::size_t size = 3000) {
    const std::size_t folderEnd = main.rfind('/') + 1;
    shape.addPart(main.substr(0, folderEnd) + file, OFFICE_CONTENT + family + '.' + kind + "+xml",
                  text(0, size));
    shape.relate(main, OFFICE_TYPES + kind, file);
}

Shape officeDocument(const std::string& main, const std::string& mainType, const std::string& time) {
    Shape shape;
    shape.addDefault("xml", "application/xml");
    shape.addDefault("jpeg", "image/jpeg");
    shape.addPart(main, OFFICE_CONTENT + mainType + ".main+xml", text(0, 4000));
    shape.addPart("/docProps/core.xml", PACKAGE_CONTENT + "core-properties+xml", coreProperties(time));
    shape.addPart("/docProps/app.xml", OFFICE_CONTENT + "extended-properties+xml", text(1, 700));
    shape.relate("/", OFFICE_TYPES + "officeDocument", main.substr(1));
    shape.relate("/", PACKAGE_NAMESPACE + "relationships/metadata/core-properties", "docProps/core.xml");
    shape.relate("/", OFFICE_TYPES + "extended-properties", "docProps/app.xml");
    addOfficePart(shape, main, "theme", "theme", "theme/theme1.xml", 7000);
    return shape;
}

const std::string DOCUMENT = "/word/document.xml";

Shape textDocument() {
    Shape shape = officeDocument(DOCUMENT, "wordprocessingml.document", "2024-02-29T13:45:59Z");
    for (const char* kind :
         {"styles", "settings", "webSettings", "fontTable", "numbering", "footnotes", "endnotes"})
        addOfficePart(shape, DOCUMENT, "wordprocessingml", kind, kind + std::string(".xml"));
    shape.relate(DOCUMENT, OFFICE_TYPES + "hyperlink", "https://example.com/", true);
    return shape;
}

/// Links as people make them, each several times.
Shape linkingDocument() {
    Shape shape = textDocument();
    shape.comment(DOCUMENT, "links");
    for (int number = 0; number < 60; ++number) {
        const std::string n = std::to_string(number);
        const std::string targets[] = {
            "mailto:somebody" + n + "@example.com?subject=The%20offer",
            "file:///C:/Documents/offer" + n + ".docx",
            R"(file:///\\server\share\offer)" + n + ".docx",
            "https://example.com:8443/search?q=" + n + "&amp;lang=en#results",
            "http://example.com/a%20b/(" + n + ");v=1,2",
            "https://example.com/stra\xC3\x9F"
            "e/" +
                n,
            R"(..\other folder\offer )" + n + ".docx",
            "#bookmark" + n,
            "https://example.com/page" + n,
        };
        for (const std::string& target : targets)
            if (number % 10 == 0 || &target == &targets[number % 9])
                shape.relate(DOCUMENT, OFFICE_TYPES + "hyperlink", target, true);
    }
    return shape;
}

/// Every third relationship leads outside, with a query.
Shape queries(int count) {
    Shape shape = textDocument();
    for (int number = 0; number < count; ++number) {
        shape.relate(DOCUMENT, OFFICE_TYPES + "image", "../docProps/app.xml");
        shape.relate(DOCUMENT, OFFICE_TYPES + "image", "../docProps/core.xml");
        shape.relate(DOCUMENT, OFFICE_TYPES + "hyperlink",
                     "http://example.com/doc?id=" + std::to_string(number), true);
    }
    return shape;
}

Shape workbook(int sheets) {
    const std::string main = "/xl/workbook.xml";
    Shape shape = officeDocument(main, "spreadsheetml.sheet", "2024-02-29T13:45:59.1234567Z");
    for (int number = 1; number <= sheets; ++number)
        addOfficePart(shape, main, "spreadsheetml", "worksheet",
                      "worksheets/sheet" + std::to_string(number) + ".xml", 1500);
    addOfficePart(shape, main, "spreadsheetml", "styles", "styles.xml");
    addOfficePart(shape, main, "spreadsheetml", "sharedStrings", "sharedStrings.xml");
    return shape;
}

/// Each slide has its layout and a picture.
Shape slides(int count) {
    const std::string main = "/ppt/presentation.xml";
    Shape shape = officeDocument(main, "presentationml.presentation", "2024-02-29T13:45:59Z");
    for (const char* kind : {"presProps", "viewProps", "tableStyles"})
        addOfficePart(shape, main, "presentationml", kind, kind + std::string(".xml"), 700);
    addOfficePart(shape, main, "presentationml", "slideMaster", "slideMasters/slideMaster1.xml");
    const std::string master = "/ppt/slideMasters/slideMaster1.xml";
    for (int number = 1; number <= 11; ++number) {
        const std::string layout = "slideLayouts/slideLayout" + std::to_string(number) + ".xml";
        shape.addPart("/ppt/" + layout, OFFICE_CONTENT + "presentationml.slideLayout+xml",
                      text(number, 2000));
        shape.relate(master, OFFICE_TYPES + "slideLayout", "../" + layout);
        shape.relate("/ppt/" + layout, OFFICE_TYPES + "slideMaster", "../slideMasters/slideMaster1.xml");
    }
    for (int number = 1; number <= count; ++number) {
        const std::string slide = "slides/slide" + std::to_string(number) + ".xml";
        addOfficePart(shape, main, "presentationml", "slide", slide, 1500);
        shape.relate("/ppt/" + slide, OFFICE_TYPES + "slideLayout", "../slideLayouts/slideLayout2.xml");
        shape.relate("/ppt/" + slide, OFFICE_TYPES + "image", "../media/image1.jpeg");
    }
    shape.addPart("/ppt/media/image1.jpeg", {}, picture(5000), CompressionType::None);
    return shape;
}

/// One part, with one element on each line.
Shape drawing() {
    Shape shape("\n  ");
    shape.addDefault("model", "application/vnd.example.model+xml");
    shape.addPart("/3D/drawing.model", {}, text(0, 9000));
    shape.relate("/", "http://schemas.example.com/drawing/2013/01/model", "/3D/drawing.model");
    return shape;
}

/// Plain files with the types of their extensions, absolute targets and long IDs.
Shape library() {
    Shape shape("\n  ");
    for (const char* extension : {"nuspec", "dll", "pdb", "json", "md", "txt", "png"})
        shape.addDefault(extension, "application/octet");
    shape.addDefault("psmdcp", PACKAGE_CONTENT + "core-properties+xml");
    const std::string properties = "/package/services/metadata/core-properties/3f8a09b5d2c14e6f.psmdcp";
    shape.addPart("/Example.Library.nuspec", {}, text(0, 1500));
    for (const char* framework : {"net45", "netstandard2.0", "net6.0"})
        for (const char* file : {"/Example.Library.dll", "/Example.Library.pdb"})
            shape.addPart(std::string("/lib/") + framework + file, {}, picture(4000));
    shape.addPart("/README.md", {}, text(1, 2000));
    shape.addPart("/icon.png", {}, picture(3000), CompressionType::None);
    shape.addPart(properties, {}, coreProperties("2024-02-29T13:45:59Z"));
    shape.relate("/", "http://schemas.example.com/packaging/2010/07/manifest", "/Example.Library.nuspec");
    shape.relate("/", PACKAGE_NAMESPACE + "relationships/metadata/core-properties", properties);
    return shape;
}

} // namespace

void writeRealShapes(const std::filesystem::path& folder) {
    textDocument().save(folder / "document.docx");
    linkingDocument().save(folder / "document-with-links.docx");
    queries(40).save(folder / "document-with-queries.docx");
    workbook(3).save(folder / "workbook.xlsx");
    workbook(400).save(folder / "workbook-of-400-sheets.xlsx");
    slides(5).save(folder / "slides.pptx");
    slides(135).save(folder / "slides-of-300-items.pptx");
    drawing().save(folder / "drawing-of-one-part.zip");
    library().save(folder / "library.zip");
}

} // namespace bench

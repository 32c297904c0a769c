#include "inspection/RawZip.hpp"

#include "inspection/Mendable.hpp"

#include <opc/editing/Cleaning.hpp>
#include <opc/editing/Editor.hpp>

#include <opc/model/Package.hpp>
#include <opc/physical/LenientPackage.hpp>
#include <opc/physical/ZipPackage.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace opc::test {
namespace {

using editing::CleaningOptions;
using editing::Editor;
using editing::findMetadata;

const std::string METADATA = "http://schemas.openxmlformats.org/package/2006/relationships/metadata/";
const std::string OFFICE_RELATIONSHIP =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

std::string to(const std::string& id, const std::string& type, const std::string& target) {
    return "<Relationship Id='" + id + "' Type='" + type + "' Target='" + target + "'/>";
}

/// With each kind of metadata; the thumbnail is a picture of the document, too.
Bytes tellingPackage() {
    const std::string comments =
        "<w:comments xmlns:w='http://schemas.openxmlformats.org/wordprocessingml/2006/main'>"
        "<w:comment w:author='A. Person'/></w:comments>";
    const std::string type = "application/vnd.openxmlformats-officedocument.wordprocessingml.comments+xml";
    return packageWith({
        contentTypesWith("<Default Extension='png' ContentType='image/png'/><Default Extension='xml' "
                         "ContentType='application/xml'/>"
                         "<Override PartName='/word/comments.xml' ContentType='" +
                         type + "'/>"),
        relationshipsWith(TO_DOCUMENT + to("c", METADATA + "core-properties", "core.xml") +
                          to("t", METADATA + "thumbnail", "t.png") +
                          to("u", METADATA + "thumbnail", "u.png") +
                          to("e", OFFICE_RELATIONSHIP + "extended-properties", "docProps/app.xml") +
                          to("f", "http://purl.oclc.org/ooxml/officeDocument/relationships/customProperties",
                             "custom.xml")),
        relationshipsWith(to("p", OFFICE_RELATIONSHIP + "image", "../t.png") +
                              to("k", OFFICE_RELATIONSHIP + "comments", "comments.xml"),
                          "word/_rels/document.xml.rels"),
        stored("core.xml", "<a/>"),
        stored("t.png", "\x89PNG\r\n\x1A\n"),
        stored("u.png", "\x89PNG\r\n\x1A\n"),
        stored("docProps/app.xml", "<Properties><Company>A</Company></Properties>"),
        stored("custom.xml", "<Properties><property name='a'/></Properties>"),
        stored("word/comments.xml", comments),
    });
}

struct Cleaned {
    std::string removed;
    std::string remaining;
    Bytes package;
};

Cleaned cleaned(const Bytes& package, const CleaningOptions& options) {
    std::stringstream archive(std::string(package.begin(), package.end()));
    physical::ZipOptions lenient;
    lenient.lenient = true;
    physical::ZipPackage zip(archive, lenient);
    physical::LenientPackage store(zip);
    model::Package opened(store);
    opened.open(interfaces::OpenMode::ReadWrite);
    Editor editor(opened);
    clean(editor, options);
    Cleaned result;
    for (const editing::Change& change : editor.changes())
        result.removed += change.place + (change.name.empty() ? "" : '#' + change.name) + ' ';
    for (const inspection::Finding& finding : findMetadata(inspection::Archive(package), editor.changes()))
        result.remaining += std::string(finding.rule->id) + ' ' + finding.place.part + '\n';
    opened.close(false);
    std::ostringstream written;
    zip.writeTo(written);
    const std::string bytes = written.str();
    result.package.assign(bytes.begin(), bytes.end());
    return result;
}

TEST(Cleaning, takesOutWhatIsChosenAndTellsWhatRemains) {
    const Bytes package = tellingPackage();
    const struct {
        CleaningOptions options;
        const char* removed;
    } cases[] = {
        {{}, "/#c /#e /#f /#t /#u /core.xml /docProps/app.xml /custom.xml /u.png "},
        {{true, false, false, false}, "/#c /core.xml "},
        {{false, true, false, false}, "/#e /docProps/app.xml "},
        {{false, false, true, false}, "/#f /custom.xml "},
        {{false, false, false, true}, "/#t /#u /u.png "},
        {{false, false, false, false}, ""},
    };
    for (const auto& [options, removed] : cases)
        EXPECT_EQ(cleaned(package, options).removed, removed);
    const Cleaned all = cleaned(package, {});
    EXPECT_EQ(all.remaining, "SEC-58 \nSEC-64 /word/comments.xml\n");
    EXPECT_EQ(cleaned(all.package, {}).removed, "");
    EXPECT_EQ(brokenRules(all.package, inspection::OPC), "");
    EXPECT_EQ(findMetadata(inspection::Archive(all.package)).size(), 2U) << "the same as was told before";
}

} // namespace
} // namespace opc::test

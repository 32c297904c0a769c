#include <opc/inspection/External.hpp>

#include <gtest/gtest.h>

#include <string>

namespace opc::inspection {
namespace {

TEST(External, placeIsWhereReadersLook) {
    const struct {
        const char* target;
        std::string place;
    } cases[] = {
        {"http://host/a", "web"},
        {"HTTPS:\\\\host\\a", "web"},
        {" \t\nhttps://host/", "web"},
        {"mhtml:http://host/a!x-usc:http://host/a", "web"},
        {"\\\\host\\share\\a.dotm", "share"},
        {"//host/share", "share"},
        {"/\\host\\share", "share"},
        {"\\\\host@SSL\\DavWWWRoot\\a", "share"},
        {"\\\\?\\UNC\\host\\share", "share"},
        {"file://host/share", "share"},
        {"FILE:\\\\host\\share", "share"},
        {"file:////host/share", "share"},
        {"file:///\\\\host\\share", "share"},
        {"file:%5c%5chost%5Cshare", "share"},
        {"file:///C:/Users/a", "file"},
        {"file://localhost/etc/passwd", "file"},
        {"file://C:\\a", "file"},
        {"file:a.docx", "file"},
        {"\\\\?\\C:\\a", "file"},
        {"\\\\.\\pipe\\a", "file"},
        {"C:\\a", "file"},
        {"../a b.docx", "file"},
        {"/etc/passwd", "file"},
        {"mailto:a@host", "mail"},
        {"#Sheet1!A1", "other"},
        {"", "other"},
        {"javascript:alert(1)", "other"},
        {"1http:a", "file"},
    };
    for (const auto& [target, place] : cases)
        EXPECT_EQ(toString(placeOf(target)), place) << target;
}

TEST(External, effectIsThatOfTheTypesLastSegment) {
    const std::string transitional = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
    const struct {
        std::string type, effect;
    } cases[] = {
        {transitional + "attachedTemplate", "loads"},
        {"http://purl.oclc.org/ooxml/officeDocument/relationships/image", "loads"},
        {"http://schemas.microsoft.com/office/2006/relationships/xlExternalLinkPath/xlPathMissing", "loads"},
        {"http://schemas.microsoft.com/office/2007/relationships/media", "loads"},
        {"urn:x/IMAGE", "loads"},
        {"aFChunk", "loads"},
        {transitional + "xlStartup", "loads"},
        {transitional + "hyperlink", "click"},
        {transitional + "hyperlinks", "other"},
        {transitional, "other"},
        {"", "other"},
    };
    for (const auto& [type, effect] : cases)
        EXPECT_EQ(toString(effectOf(type)), effect) << type;
}

} // namespace
} // namespace opc::inspection

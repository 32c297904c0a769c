#include "support/PackageTest.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/editing/Editor.hpp>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

class EditorTest : public PackageTest {
protected:
    EditorTest() : PackageTest({u"/a.xml", u"/b/c.xml"}) {}

    std::string told() const {
        std::string lines;
        for (const Change& change : editor.changes())
            lines += nameOf(change.kind) + ": " + describe(change) + "\n";
        return lines;
    }

    Package& opened() {
        package.open(OpenMode::ReadWrite);
        return package;
    }

    Editor editor{opened()};
};

TEST_F(EditorTest, tellsEachChange) {
    const PartName root(u"/");
    const PartName a(u"/a.xml");
    const Bytes bytes = toBytes("new");
    opc::ByteArrayInAdaptor first(bytes);
    opc::ByteArrayInAdaptor second(bytes);
    opc::ByteArrayInAdaptor third(bytes);
    editor.createPart(PartName(u"/new.txt"), ContentType(u"text/plain"), first);
    editor.replaceContent(PartName(u"/A.xml"), second);
    editor.replaceContent(a, third);
    editor.retypePart(a, ContentType(u"application/a+xml"));
    editor.retypePart(a, ContentType(u"application/a+xml"));
    editor.addRelationship(root, {u"http://x/types/note", u"/b/c.xml", TargetMode::Internal, u"n"});
    editor.retarget(root, u"n", u"http://x/", TargetMode::External);
    editor.retarget(root, u"n", u"http://x/", TargetMode::External);
    editor.deleteRelationship(root, u"n");
    editor.deletePart(PartName(u"/b/c.xml"));
    EXPECT_EQ(told(), R"(part-added: add /new.txt, text/plain (3 bytes)
content-replaced: replace the content of /a.xml (3 bytes)
content-replaced: replace the content of /a.xml (3 bytes)
content-type-changed: change the content type of /a.xml from application/xml to application/a+xml
relationship-added: add relationship /#n to b/c.xml, note
relationship-changed: change relationship /#n from b/c.xml to http://x/ (external)
relationship-removed: remove relationship /#n to http://x/ (external), note
part-removed: remove /b/c.xml
)");
    EXPECT_EQ(readAll(package.getPart(a)), "new") << "the second content has replaced the first";
}

TEST_F(EditorTest, whatFailsIsNotTold) {
    const PartName missing(u"/missing.xml");
    const std::u16string id = u"n";
    EXPECT_THROW(editor.deletePart(missing), PartNotFound);
    EXPECT_THROW(editor.retypePart(missing, ContentType(u"a/b")), PartNotFound);
    EXPECT_THROW(editor.addRelationship(missing, {u"t:t", u"/a.xml"}), PartNotFound);
    EXPECT_THROW(editor.deleteRelationship(PartName(u"/"), id), RelationshipNotFound);
    EXPECT_THROW(editor.retarget(PartName(u"/"), id, u"a.xml", TargetMode::Internal), RelationshipNotFound);
    EXPECT_EQ(told(), "");
}

} // namespace

#include "support/PackageTest.hpp"

#include <opc/core/ByteArrayAdaptors.hpp>
#include <opc/editing/Moving.hpp>
#include <opc/editing/Removing.hpp>

#include <functional>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

const std::string PACKAGE = "http://schemas.openxmlformats.org/package/2006/";

std::string relationshipTransform(const std::string& selection) {
    return "<Transforms><Transform Algorithm='" + PACKAGE + "RelationshipTransform'>" + selection +
           "</Transform></Transforms>";
}

/// A signature over these references.
Bytes signature(const std::string& references) {
    return toBytes("<Signature xmlns='http://www.w3.org/2000/09/xmldsig#' xmlns:p='" + PACKAGE +
                   "digital-signature'><Object Id='idPackageObject'><Manifest>" + references +
                   "</Manifest></Object></Signature>");
}

/// Of its two signatures, one signs /a.xml and the relationship r1 of the package, and the other one all relationships of
/// the type t:b that /b%20c.xml has. Nothing signs /free.xml.
class SignaturesTest : public PackageTest, public testing::WithParamInterface<const char*> {
protected:
    SignaturesTest() : PackageTest({u"/a.xml", u"/b c.xml", u"/free.xml", u"/lost.xml"}) {
        const std::string type = PACKAGE + "relationships/" + GetParam() + "/";
        const auto relate = [](const std::string& id, const std::string& ofType, const std::string& target) {
            return "<Relationship Id='" + id + "' Type='" + ofType + "' Target='" + target + "'/>";
        };
        store.setContentTypes(
            contentTypes(USUAL_CONTENT_TYPES + "<Default Extension='sigs' ContentType='o/o'/>"));
        store.setPart(u"/s/o.sigs", {});
        store.setPart(
            u"/s/1.xml",
            signature(
                "<Reference URI='/A.xml?ContentType=application/xml'/>"
                "<Reference URI='/lost.xml?ContentType=application/xml'/><Reference URI='/_rels/.rels'>" +
                relationshipTransform("<p:RelationshipReference SourceId='r1'/>") + "</Reference>"));
        store.setPart(u"/s/2.xml",
                      signature("<Reference URI='/_rels/b%20c.xml.rels'>" +
                                relationshipTransform("<p:RelationshipsGroupReference SourceType='t:b'/>") +
                                "</Reference>"));
        store.setPart(u"/_rels/.rels",
                      relationships(relate("r0", type + "origin", "s/o.sigs") + relate("r1", "t:t", "a.xml") +
                                    relate("r2", "t:t", "free.xml") + relate("r3", "t:t", "b c.xml")));
        store.setPart(u"/s/_rels/o.sigs.rels", relationships(relate("s1", type + "signature", "1.xml") +
                                                             relate("s2", type + "signature", "2.xml")));
        store.setPart(u"/_rels/b c.xml.rels",
                      relationships(relate("b1", "t:b", "a.xml") + relate("b2", "t:t", "free.xml")));
    }

    /// The signatures that an edit breaks.
    std::string brokenBy(const std::function<void(Editor&)>& edit) {
        package.open(OpenMode::ReadWrite);
        std::string broken;
        Editor editor(package);
        edit(editor);
        for (const std::string& part : editor.brokenSignatures())
            broken += part + " ";
        package.close(true);
        return broken;
    }
};

TEST_P(SignaturesTest, areBrokenByWhatTheySign) {
    const PartName root(u"/");
    const PartName a(u"/a.xml");
    const PartName b(u"/b c.xml");
    const PartName free(u"/free.xml");
    const auto replace = [](Editor& editor, const PartName& part) {
        const Bytes bytes = toBytes("x");
        opc::ByteArrayInAdaptor content(bytes);
        editor.replaceContent(part, content);
    };
    const std::tuple<const char*, std::function<void(Editor&)>, const char*> cases[] = {
        {"content", [&](Editor& e) { replace(e, a); }, "/s/1.xml "},
        {"content that isn't signed",
         [&](Editor& e) {
             replace(e, free);
             replace(e, b);
         },
         ""},
        {"type", [&](Editor& e) { e.retypePart(a, ContentType(u"x/y")); }, "/s/1.xml "},
        {"target by id", [&](Editor& e) { e.retarget(root, u"r1", u"b.xml", TargetMode::Internal); },
         "/s/1.xml "},
        {"target of another", [&](Editor& e) { e.retarget(root, u"r2", u"b.xml", TargetMode::Internal); },
         ""},
        {"new one of a type",
         [&](Editor& e) {
             e.addRelationship(b, {u"t:b", u"x", TargetMode::External});
         },
         "/s/2.xml "},
        {"new one",
         [&](Editor& e) {
             e.addRelationship(b, {u"t:t", u"x", TargetMode::External});
         },
         ""},
        {"without one of a type", [&](Editor& e) { e.deleteRelationship(b, u"b1"); }, "/s/2.xml "},
        {"without another", [&](Editor& e) { e.deleteRelationship(b, u"b2"); }, ""},
        {"other name", [&](Editor& e) { movePart(e, a, PartName(u"/d.xml")); }, "/s/1.xml /s/2.xml "},
        {"other name of what isn't signed", [&](Editor& e) { movePart(e, free, PartName(u"/d.xml")); }, ""},
        {"without part", [&](Editor& e) { removeParts(e, {"/b c.xml"}); }, "/s/2.xml "},
        {"without signature", [&](Editor& e) { removeParts(e, {"/s/2.xml"}); }, "/s/2.xml "},
        {"not found", [&](Editor& e) { e.deleteRelationship(root, u"r0"); }, "/s/1.xml /s/2.xml "},
        {"without origin", [&](Editor& e) { removeParts(e, {"/s/o.sigs"}); }, "/s/1.xml /s/2.xml "},
        {"garbage", [&](Editor& e) { EXPECT_EQ(collectUnreachable(e), 0U) << "signed, or of signatures"; },
         ""},
    };
    for (const auto& [what, edit, broken] : cases)
        EXPECT_EQ(brokenBy(edit), broken) << what;
    const auto move = [](Editor& editor) { movePart(editor, PartName(u"/s/1.xml"), PartName(u"/t.xml")); };
    EXPECT_RAISES(opc::Exception, "/s/1.xml belongs to signatures, which are found by its name",
                  brokenBy(move));
}

INSTANTIATE_TEST_SUITE_P(InBothForms, SignaturesTest,
                         testing::Values("digital-signature", "digitalsignature"));

} // namespace

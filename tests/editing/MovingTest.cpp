#include "support/PackageTest.hpp"

#include <opc/editing/Moving.hpp>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

/// What leads where: "source#id target", one a line.
std::string relationshipsOf(const Package& package) {
    std::string lines;
    const auto tell = [&lines](const RelationshipSource& source) {
        for (const Relationship& each : source.getRelationships())
            lines += opc::toUDEString(each.getSourceURI().toString() + u"#" + each.getID() + u" " +
                                      each.getTarget()) +
                     "\n";
    };
    tell(package);
    for (const Part& part : package.getParts())
        tell(part);
    return lines;
}

class Moving : public PackageTest {
protected:
    Moving() : PackageTest({u"/a/doc.xml", u"/a/b/x.xml", u"/c.xml"}) {
        store.setPart(u"/a/doc.xml", toBytes("content"));
        relate(u"/_rels/.rels", {{"r1", "a/doc.xml"}, {"r2", "/A/Doc.xml#place"}, {"r3", "c.xml"}});
        relate(u"/a/_rels/doc.xml.rels",
               {{"o1", "b/x.xml"}, {"o2", "../c.xml?q#f"}, {"o3", "#here"}, {"o4", "NULL"}, {"o5", "b/"}});
        relate(u"/_rels/c.xml.rels", {{"i1", "a/doc.xml"}});
        package.open(OpenMode::ReadWrite);
    }

    void relate(const std::u16string& name, const std::vector<std::pair<std::string, std::string>>& targets) {
        std::string elements;
        for (const auto& [id, target] : targets)
            elements += "<Relationship Id='" + id + "' Type='t:t' Target='" + target + "'/>";
        store.setPart(name, relationships(elements + "<Relationship Id='z' Type='t:t' Target='out.htm' "
                                                     "TargetMode='External'/>"));
    }

    std::string move(const char16_t* from, const char16_t* to) {
        Editor editor(package);
        return outcomeOf([&] { movePart(editor, PartName(from), PartName(to)); });
    }
};

TEST_F(Moving, takesAllRelationshipsAlong) {
    struct Case {
        const char16_t* to;
        const char* fromPackage;
        const char* own;
        const char* fromOther;
    };
    for (const Case& each : {
             Case{u"/new/deep/d.xml", "new/deep/d.xml",
                  "../../a/b/x.xml ../../c.xml?q#f #here ../../a/NULL ../../a/b/", "new/deep/d.xml"},
             Case{u"/A/DOC.XML", "A/DOC.XML", "../a/b/x.xml ../c.xml?q#f #here ../a/NULL ../a/b/",
                  "A/DOC.XML"},
             Case{u"/a/doc.xml/inside", "a/doc.xml/inside", "../b/x.xml ../../c.xml?q#f #here ../NULL ../b/",
                  "a/doc.xml/inside"},
         }) {
        EXPECT_EQ(move(u"/a/doc.xml", each.to), "");
        const std::string to = opc::toUDEString(each.to);
        const std::string from = each.fromPackage;
        std::string expected = "/#r1 " + from + "\n/#r2 " + from + "#place\n/#r3 c.xml\n/#z out.htm\n";
        std::string own;
        std::istringstream targets(each.own);
        std::string target;
        for (int i = 1; targets >> target; ++i)
            own += to + "#o" + std::to_string(i) + " " + target + "\n";
        own += to + "#z out.htm\n";
        const std::string other = std::string("/c.xml#i1 ") + each.fromOther + "\n/c.xml#z out.htm\n";
        expected += to[1] == 'n' ? other + own : own + other;
        package.close(false);
        package.open(OpenMode::ReadWrite);
        EXPECT_EQ(relationshipsOf(package), expected);
        const Part part = package.getPart(PartName(each.to));
        EXPECT_TRUE(part.getName().hasText(each.to));
        EXPECT_EQ(part.getContentType().toString(), u"application/xml");
        EXPECT_EQ(readAll(part), "content");
        EXPECT_EQ(package.getParts().size(), 3U);
        EXPECT_EQ(move(each.to, u"/a/doc.xml"), "") << "and back";
    }
}

TEST_F(Moving, refusesNamesInUseAndDerivedOnes) {
    const std::tuple<const char16_t*, const char16_t*, const char*> cases[] = {
        {u"/no.xml", u"/d.xml", "opc::model::PartNotFound: No part found with the name:/no.xml"},
        {u"/c.xml", u"/A/doc.xml",
         "opc::model::PartAlreadyExists: Cannot use a part name that already exists: /A/doc.xml"},
        {u"/c.xml", u"/a/b",
         "opc::model::PartIsDerivedFromExistingPartName: Cannot use a part name that is a subset of an "
         "existing "
         "name: /a/b"},
        {u"/c.xml", u"/_rels/d.rels",
         "opc::model::PartHasRelationshipName: Cannot use a part name that is a relationship name: "
         "/_rels/d.rels"},
        {u"/c.xml", u"/c.xml", ""},
    };
    for (const auto& [from, to, outcome] : cases)
        EXPECT_EQ(move(from, to), outcome);
    EXPECT_EQ(physical.countCalls("createPart"), 0U);
}

TEST_F(Moving, losesNoRelationshipThatWasNotRead) {
    package.close(true);
    store.setPart(u"/_rels/c.xml.rels",
                  toBytes("<p:Relationships xmlns:p='http://schemas.openxmlformats.org/package/2006/"
                          "relationships'><p:Relationship Id='a' Type='t:t' Target='x'/></p:Relationships>"));
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(move(u"/c.xml", u"/d.xml"),
              "opc::model::InvalidRelationshipContent: In /_rels/c.xml.rels: relationships that weren't read "
              "would be missing in a copy");
}

} // namespace

#include "support/PackageTest.hpp"

#include <opc/editing/Removing.hpp>

namespace {

using namespace opc::editing;
using namespace opc::model;
using namespace opc::test;

/// The package leads to /main.xml, which leads to /a.xml and /b.xml; both lead to /shared.xml, and /a.xml to /only.xml, which
/// leads back. Nothing leads to /orphan.xml, which leads to /of-orphan.xml and /only2.xml; /a.xml leads to /only2.xml, too.
class Removing : public PackageTest {
protected:
    Removing()
        : PackageTest({u"/main.xml", u"/a.xml", u"/b.xml", u"/shared.xml", u"/only.xml", u"/only2.xml",
                       u"/orphan.xml", u"/of-orphan.xml", u"/x/1*.xml", u"/x/12.xml"}) {
        package.open(OpenMode::ReadWrite);
        const std::pair<const char16_t*, const char16_t*> edges[] = {
            {u"/main.xml", u"/a.xml"},          {u"/main.xml", u"/b.xml"},
            {u"/a.xml", u"/shared.xml"},        {u"/b.xml", u"/shared.xml"},
            {u"/a.xml", u"/only.xml"},          {u"/only.xml", u"/a.xml"},
            {u"/a.xml", u"/only2.xml"},         {u"/orphan.xml", u"/only2.xml"},
            {u"/orphan.xml", u"/of-orphan.xml"}};
        package.createInternalRelationship(u"t:t", URI(u"/main.xml"));
        for (const auto& [from, to] : edges)
            package.getPart(PartName(from)).createInternalRelationship(u"t:t", URI(to));
        package.close(false);
        package.open(OpenMode::ReadWrite);
    }

    /// What was done, with numbers of relationships left out.
    static std::string told(const Editor& editor) {
        std::string words;
        for (const Change& change : editor.changes())
            words += (change.kind == Change::Kind::PartRemoved ? "" : change.before.text + " from ") +
                     change.place + "; ";
        return words;
    }

    std::string remove(const std::vector<std::string>& patterns, RemoveOptions options = {}) {
        package.close(true);
        package.open(OpenMode::ReadWrite);
        Editor editor(package);
        const std::string outcome = outcomeOf([&] { removeParts(editor, patterns, options); });
        return outcome.empty() ? told(editor) : outcome;
    }
};

TEST_F(Removing, takesWhatWasAskedFor) {
    const std::tuple<std::vector<std::string>, RemoveOptions, const char*> cases[] = {
        {{"/A.xml"}, {}, "/a.xml; "},
        {{"/a.xml"}, {true, false}, "a.xml from /main.xml; a.xml from /only.xml; /a.xml; "},
        {{"/a.xml"}, {false, true}, "/a.xml; /only.xml; "},
        {{"/a.xml", "/b.xml"},
         {true, true},
         "a.xml from /main.xml; b.xml from /main.xml; /a.xml; /b.xml; /only.xml; /shared.xml; "},
        {{"/orphan.xml", "/a.xml"},
         {false, true},
         "/a.xml; /of-orphan.xml; /only.xml; /only2.xml; /orphan.xml; "},
        {{"/o*.xml"}, {}, "/of-orphan.xml; /only.xml; /only2.xml; /orphan.xml; "},
        {{"/x/1*.xml"}, {}, "/x/1*.xml; "}, // the name of a part
        {{"/X/**"}, {}, "/x/1*.xml; /x/12.xml; "},
        {{"/a.xml", "/none*"}, {}, "opc::model::PartNotFound: No part found with the name:/none*"},
    };
    for (const auto& [patterns, options, outcome] : cases)
        EXPECT_EQ(remove(patterns, options), outcome) << patterns.front();
}

TEST_F(Removing, collectsWhatNothingLeadsTo) {
    Editor editor(package);
    EXPECT_EQ(collectUnreachable(editor), 4U);
    EXPECT_EQ(told(editor), "/of-orphan.xml; /orphan.xml; /x/1*.xml; /x/12.xml; ");
    EXPECT_EQ(collectUnreachable(editor), 0U);
}

TEST_F(Removing, collectsNothingWhereRelationshipsDoNotTell) {
    Editor editor(package);
    package.createExternalRelationship(u"http://schemas.microsoft.com/packaging/2010/07/manifest", u"x",
                                       u"n");
    EXPECT_RAISES(
        opc::Exception,
        "Programs find parts of such a package without relationships, so that it can't be said which are in "
        "use",
        collectUnreachable(editor));
    package.close(true);
    store.setPart(u"/_rels/b.xml.rels",
                  toBytes("<p:Relationships xmlns:p='http://schemas.openxmlformats.org/package/2006/"
                          "relationships'><p:Relationship Id='a' Type='t:t' Target='x'/></p:Relationships>"));
    package.open(OpenMode::ReadWrite);
    Editor again(package);
    EXPECT_RAISES(InvalidRelationshipContent,
                  "In /_rels/b.xml.rels: relationships that weren't read may lead to any part",
                  collectUnreachable(again));
    EXPECT_TRUE(again.changes().empty());
}

} // namespace

#include "support/Outcome.hpp"
#include "support/PackageContent.hpp"
#include "support/ScriptedPackage.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/StandardPartInfo.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;
using opc::interfaces::OpenMode;
using opc::physical::MemoryPackage;
namespace errc = boost::system::errc;

const char* const CORE_PROPERTIES =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

std::string coreRelationship(const std::string& id) {
    return R"(<Relationship Id=")" + id + R"(" Type=")" + CORE_PROPERTIES + R"(" Target="a.xml"/>)";
}

/// A package on an empty store with a content types stream, whose calls can be made to fail.
class LifecycleTest : public testing::Test {
protected:
    LifecycleTest() { fill(store, {}); }

    MemoryPackage store;
    ScriptedPackage physical{store};
    Package package{physical};
};
class PackageOpen : public LifecycleTest {};
class PackageClose : public LifecycleTest {};

template <typename Action>
boost::system::error_code codeOf(const Action& action) {
    try {
        action();
    } catch (const opc::Exception& e) {
        return e.code();
    }
    return {};
}

TEST_F(PackageOpen, translatesFailuresOfThePhysicalLayerAndKeepsTheirCode) {
    const auto open = [this] { package.open(OpenMode::ReadOnly); };
    physical.failAt("open", "gone", errc::no_such_file_or_directory);
    EXPECT_RAISES(PackageNotFound, "gone", open());
    EXPECT_EQ(codeOf(open), boost::system::error_code()) << "its class says all";
    physical.failAt("open", "denied", errc::permission_denied);
    EXPECT_RAISES(PackageOpenFailed, "denied", open());
    EXPECT_EQ(codeOf(open), errc::make_error_condition(errc::permission_denied));
    EXPECT_EQ(physical.countCalls("close"), 0U);

    physical.forgetScript();
    physical.failAt("getParts", "no list", errc::io_error);
    EXPECT_RAISES(PackageOpenFailed, "no list", open());
    EXPECT_EQ(codeOf(open), errc::make_error_condition(errc::io_error));
    EXPECT_EQ(physical.calls.back(), "close true");
    physical.failAt("close", "stuck");
    EXPECT_RAISES(opc::Exception, "stuck", open())
        << "a failure while cleaning up takes the place of the first one";
}

TEST_F(PackageOpen, andCloseKnowTheSystemsOwnCodesToo) {
    const auto failWith = [this](const std::string& call, int code) {
        physical.before(call, [code] {
            throw opc::Exception("failed", {code, boost::system::system_category()});
        });
    };
    const auto open = [this] { package.open(OpenMode::ReadOnly); };
    EXPECT_FALSE(package.isReadOnly());
    failWith("open", ENOENT);
    EXPECT_RAISES(PackageNotFound, "failed", open());
    EXPECT_TRUE(package.isReadOnly()) << "the mode of the last attempt";
    failWith("open", EIO);
    EXPECT_EQ(codeOf(open), boost::system::error_code(EIO, boost::system::system_category()));
    physical.forgetScript();
    open();
    failWith("close", EACCES);
    EXPECT_RAISES(PackagePermissionDenied, "failed", package.close(true));
    failWith("close", ENOSPC);
    EXPECT_EQ(codeOf([this] { package.close(true); }),
              boost::system::error_code(ENOSPC, boost::system::system_category()));
    physical.forgetScript();
}

TEST_F(PackageOpen, readsAndWritesInAnyOtherMode) {
    package.open(static_cast<OpenMode>(7));
    package.createExternalRelationship(u"t:t", u"x");
    physical.failAt("close", "full", errc::no_space_on_device);
    EXPECT_EQ(codeOf([this] { package.close(false); }), errc::make_error_condition(errc::no_space_on_device));
}

TEST_F(PackageOpen, staysOpenIfItCanNotBeClosedAfterAFailure) {
    store.setPart(u"/_rels/.rels", relationships(coreRelationship("r1") + coreRelationship("r2")));
    physical.failAt("close", "stuck");
    EXPECT_RAISES(PackageCloseFailed, "stuck", package.open(OpenMode::ReadWrite));
    EXPECT_TRUE(package.isOpen());
    physical.forgetScript();
    package.close(true);
    EXPECT_FALSE(package.isOpen());
}

TEST(BadPackages, areRefusedAndTheNextOneStartsClean) {
    using Spoil = std::function<void(MemoryPackage&)>;
    const auto withPart = [](const char16_t* name, const std::string& content = "") -> Spoil {
        return [=](MemoryPackage& store) { store.setPart(name, relationships(content)); };
    };
    const auto withTypes = [](const std::string& entries) -> Spoil {
        return [=](MemoryPackage& store) { store.setContentTypes(contentTypes(entries)); };
    };
    const auto withOverride = [&](const std::string& attributes) {
        return withTypes(USUAL_CONTENT_TYPES + "<Override " + attributes + "/>");
    };
    const std::string unmatched =
        "InconsistentPackage: Not all relationship parts were matched with regular parts";
    const std::string notASCII =
        "InvalidURI: Could not successfully parse URI string. URI must contain only US-ASCII.";
    struct Case {
        Spoil spoil;
        std::string outcome;
        std::string details;
    };
    const Case cases[] = {
        {withPart(u"/_rels/x.xml.rels"), unmatched, "/_rels/x.xml.rels has no source"},
        {withPart(u"/_rels/_rels/.rels.rels"), unmatched, "/_rels/_rels/.rels.rels has no source"},
        {withPart(u"/x./y.xml"), "InvalidPartName: A segment shall not end with a dot ('.') character [M1.9]",
         "/x./y.xml"},
        {withPart(u"/é.xml"), notASCII, "/é.xml"},
        {withPart(u"/b/c.png"), "ContentTypeNotFound: No content type was found for part:/b/c.png", ""},
        {withTypes(R"(<Default Extension="xml" ContentType="application/xml"/>)"),
         "ContentTypeNotFound: No content type was found for part:/_rels/.rels", ""},
        {withTypes("<p:Default xmlns:p='http://schemas.openxmlformats.org/package/2006/content-types' "
                   "Extension='rels' ContentType='a/b'/>"),
         "ContentTypeNotFound: No content type was found for part:/_rels/.rels",
         "the content types stream has elements that weren't read, as they have a namespace prefix or "
         "stand in the wrong place: 1"},
        {withPart(
             u"/_rels/a.xml.rels",
             "<!-- -->\n"
             R"(<Relationship Id="r" Type="t:t" Target="a"/><Relationship Id="s" Type="t:t" Target=""/>)"),
         "InvalidRelationshipContent: In /_rels/a.xml.rels: Target is empty", "relationship s in line 2"},
        {withPart(u"/_rels/a.xml.rels", "\n\n<Relationship></Relationships>"),
         "InvalidRelationshipContent: In /_rels/a.xml.rels: missing required attribute 'Target'",
         "line 3, column 15"},
        {withPart(u"/_rels/.rels", coreRelationship("r1") + coreRelationship("r2")),
         "InvalidCorePropertiesRelationships: No more than one core properties relationship can exist in a "
         "package",
         "one is r1 in /_rels/.rels"},
        {withOverride(R"(PartName="a/b" ContentType="a/b")"),
         "InvalidContentTypeStream: PartName is not a valid part name",
         "A part name shall start with a forward slash ('/') character [M1.4]; Override \"a/b\" in line 1 of "
         "the content types stream"},
        {withOverride(R"(PartName="/é" ContentType="a/b")"), notASCII,
         "Override \"/é\" in line 1 of the content types stream"},
        {withOverride("\nPartName=\"/a\" ContentType=\"a/b;c=&quot;&quot;\""),
         "InvalidContentType: Could not successfully parse content type string",
         "Override \"/a\" in line 2 of the content types stream"},
    };
    for (const auto& [spoil, outcome, details] : cases) {
        SCOPED_TRACE(outcome);
        MemoryPackage store;
        fill(store, {u"/a.xml", u"/b/c.xml"});
        store.setPart(u"/_rels/.rels", relationships(R"(<Relationship Id="r" Type="t:t" Target="a.xml"/>)"));
        spoil(store);
        ScriptedPackage physical(store);
        Package package(physical);
        EXPECT_EQ(outcomeOf([&] { package.open(OpenMode::ReadWrite); }), "opc::model::" + outcome);
        EXPECT_EQ(detailsOf([&] { package.open(OpenMode::ReadWrite); }), details);
        EXPECT_FALSE(package.isOpen());
        EXPECT_EQ(physical.calls.back(), "close true");
        EXPECT_RAISES(PackageNotOpen, "Package is not open", package.getParts());

        fill(store, {});
        for (const std::u16string& name : store.partNames())
            store.removePart(name);
        store.setPart(u"/d.xml", {});
        package.open(OpenMode::ReadWrite);
        EXPECT_EQ(package.getParts().size(), 1U);
        EXPECT_TRUE(package.getRelationships().empty());
        package.createPart(PartName(u"/b"), ContentType(u"a/b"),
                           StandardPartInfo()); // no prefix of /b/c.xml is left
    }
}

TEST_F(PackageOpen, givesRelationshipsPartsToTheirSources) {
    struct Case {
        std::vector<std::u16string> parts, relationshipsParts;
        const char* sources; ///< of the relationships parts, by the IDs in them: r0, r1, ...
    };
    const Case cases[] = {
        {{u"/a.xml", u"/a/b.xml", u"/a-/b.xml", u"/A/c.xml", u"/d.xml"},
         {u"/_rels/d.xml.rels", u"/a-/_rels/b.xml.rels", u"/a/_rels/B.xml.rels", u"/_rels/.rels"},
         "/:r3 /a-/b.xml:r1 /a/b.xml:r2 /d.xml:r0 "},
        {{u"/_rels.xml", u"/a_rels/b.xml", u"/_rels/c.xml", u"/_RELS/x/y.rels"},
         {u"/a_rels/_rels/b.xml.rels", u"/_rels/_rels.xml.rels", u"/_rels/_rels/c.xml.rels",
          u"/_rels/a/_RELS/b.xml.rels"},
         "orphaned"},
        {{u"/_rels.xml", u"/a_rels/b.xml", u"/_rels/c.xml", u"/_rels/a/b.xml"},
         {u"/a_rels/_rels/b.xml.rels", u"/_rels/_rels.xml.rels", u"/_rels/_rels/c.xml.rels",
          u"/_rels/a/_RELS/b.xml.rels"},
         "/_rels.xml:r1 /_rels/a/b.xml:r3 /_rels/c.xml:r2 /a_rels/b.xml:r0 "},
        {{u"/_RELS/x/y.rels"}, {u"/_rels/x/y.rels"}, "orphaned"},
        // A query counts in the name of a part, but not in that of its relationships part.
        {{u"/a.xml?q", u"/a.xml.xml"}, {u"/_rels/a.xml.rels"}, "/a.xml?q:r0 "},
        {{u"/a.xml?q", u"/a.xml", u"/b.xml"},
         {u"/_rels/b.xml.rels", u"/_rels/a.xml.rels"},
         "/a.xml:r1 /b.xml:r0 "},
        {{u"/a.xml"}, {u"/_rels/a.xml.rels?q"}, "orphaned"},
        {{u"/a.xml"}, {u"/_rels/a.xml.rels#/_rels/a.xml.rels"}, "orphaned"},
    };
    for (const Case& c : cases) {
        for (const std::u16string& name : store.partNames())
            store.removePart(name);
        fill(store, c.parts);
        std::string id = "r0";
        for (const std::u16string& name : c.relationshipsParts) {
            store.setPart(name, relationships("<Relationship Id=\"" + id + "\" Type=\"t:t\" Target=\"x\"/>"));
            ++id.back();
        }
        std::string sources;
        try {
            package.open(OpenMode::ReadOnly);
            for (const Relationship& relationship : package.getRelationships())
                sources += "/:" + opc::toUDEString(relationship.getID()) + ' ';
            for (const Part& part : package.getParts())
                for (const Relationship& relationship : part.getRelationships())
                    sources +=
                        opc::toUDEString(part.getName().toString() + u":" + relationship.getID()) + ' ';
            package.close(true);
        } catch (const InconsistentPackage&) {
            sources = "orphaned";
        }
        EXPECT_EQ(sources, c.sources);
    }
}

TEST_F(PackageClose, ofAPackageNeverOpenedDoesNothing) {
    EXPECT_TRUE(package.isCreateOnly());
    package.close(false);
    EXPECT_TRUE(physical.calls.empty());
}

TEST_F(PackageClose, failingLeavesThePackageOpenAndTheNextOneSucceeds) {
    package.open(OpenMode::CreateOnly);
    Part part = package.createPart(PartName(u"/a.xml"), ContentType(u"text/xml"), StandardPartInfo());
    writeAll(part, "content");
    package.createInternalRelationship(u"t:t", URI(u"/a.xml"));

    physical.failAt("close", "denied", errc::permission_denied);
    EXPECT_RAISES(PackagePermissionDenied, "denied", package.close(false));
    physical.failAt("close", "missing", errc::no_such_file_or_directory);
    EXPECT_RAISES(PackageCloseFailed, "missing", package.close(false));
    physical.forgetScript();
    EXPECT_TRUE(package.isOpen());
    EXPECT_EQ(part.getContentType().toString(), u"text/xml");
    EXPECT_TRUE(package.hasPart(PartName(u"/A.XML")));
    package.close(false);

    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(readAll(package.getPart(PartName(u"/a.xml"))), "content");
}

TEST_F(PackageClose, writesContentTypesAgainUnlessTheyWereWhole) {
    const auto fail = [] { throw InvalidPartContent("broken"); };
    for (const auto& [call, times] : {std::pair("getContentTypeOutputStream", 1U),
                                      std::pair("write types", 1U), std::pair("closeStream types", 0U)}) {
        package.open(OpenMode::CreateOnly);
        physical.before(call, fail);
        EXPECT_RAISES(InvalidContentTypeStream, "In content type stream: broken", package.close(false))
            << call;
        physical.forgetScript();
        physical.calls.clear();
        package.close(false);
        EXPECT_EQ(physical.countCalls("getContentTypeOutputStream"), times) << call;
        package.open(OpenMode::ReadOnly);
        package.close(false);
    }
}

TEST_F(PackageClose, writesInItsFixedOrder) {
    package.open(OpenMode::CreateOnly);
    for (const char16_t* name : {u"/b.xml", u"/A.xml"})
        package.createPart(PartName(name), ContentType(u"a/b"), StandardPartInfo())
            .createExternalRelationship(u"t:t", u"x");
    package.createExternalRelationship(u"t:t", u"x");
    physical.calls.clear();
    package.close(false);
    std::string closed;
    for (const std::string& call : physical.calls)
        if (call.compare(0, 5, "close") == 0)
            closed += call + ", ";
    EXPECT_EQ(closed, "closeStream types, closeStream /_rels/.rels, closeStream /_rels/A.xml.rels, "
                      "closeStream /_rels/b.xml.rels, close false, ");
}

TEST_F(PackageClose, writesNothingWhereNothingChangedOrAllIsAbandoned) {
    fill(store, {u"/a.xml"});
    store.setPart(u"/_rels/.rels", relationships(R"(<Relationship Id="r" Type="t:t" Target="a.xml"/>)"));

    package.open(OpenMode::ReadOnly);
    package.close(false);
    EXPECT_EQ(physical.calls.back(), "close false");
    package.open(OpenMode::ReadWrite);
    package.close(false);
    package.open(OpenMode::ReadWrite);
    package.createExternalRelationship(u"t:t", u"http://e/");
    package.createPart(PartName(u"/b.xml"), ContentType(u"a/b"), StandardPartInfo());
    package.close(true);
    EXPECT_EQ(physical.countCalls("getOutputStream") + physical.countCalls("getContentTypeOutputStream"), 0U);
    EXPECT_EQ(store.partNames().size(), 2U);
}

TEST(PackageLifecycle, aStoreWithoutAContentTypesStreamKnowsTheTypesItself) {
    MemoryPackage store(MemoryPackage::ContentTypes::InParts);
    Package package(store);
    package.open(OpenMode::CreateOnly);
    package.createPart(PartName(u"/a.xml"), ContentType(u"text/xml"), StandardPartInfo());
    package.createExternalRelationship(u"t:t", u"x");
    package.close(false);
    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(package.getPart(PartName(u"/a.xml")).getContentType().toString(), u"text/xml");
    package.deletePart(PartName(u"/a.xml"));
    package.close(false);
    EXPECT_FALSE(store.hasContentTypes());
}

} // namespace

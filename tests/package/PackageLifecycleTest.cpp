#include "support/PackageContent.hpp"
#include "support/ScriptedPackage.hpp"
#include "support/Throws.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>
#include <opc/model/PackageHelper.hpp>
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

/// Opens a package on a store that has been spoilt, and then makes sure that a mended one opens.
template <typename E>
void expectOpenFails(const std::string& message, const std::function<void(MemoryPackage&)>& spoil) {
    SCOPED_TRACE(message);
    MemoryPackage store;
    fill(store, {u"/a.xml", u"/b/c.xml"});
    store.setPart(u"/_rels/.rels", relationships(R"(<Relationship Id="r" Type="t:t" Target="a.xml"/>)"));
    spoil(store);
    ScriptedPackage physical(store);
    Package package(physical);
    EXPECT_RAISES(E, message, package.open(OpenMode::ReadWrite));
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

TEST_F(PackageOpen, translatesFailuresOfThePhysicalLayer) {
    physical.failAt("open", "gone", errc::no_such_file_or_directory);
    EXPECT_RAISES(PackageNotFound, "gone", package.open(OpenMode::ReadOnly));
    physical.failAt("open", "denied", errc::permission_denied);
    EXPECT_RAISES(PackageOpenFailed, "denied", package.open(OpenMode::ReadOnly));
    EXPECT_EQ(physical.countCalls("close"), 0U);

    physical.forgetScript();
    physical.failAt("getParts", "no list", errc::io_error);
    try {
        package.open(OpenMode::ReadOnly);
        FAIL();
    } catch (const PackageOpenFailed& e) {
        EXPECT_STREQ(e.what(), "no list");
        EXPECT_EQ(e.code(), errc::make_error_condition(errc::io_error));
    }
    EXPECT_EQ(physical.calls.back(), "close true");

    physical.failAt("close", "stuck");
    EXPECT_RAISES(opc::Exception, "stuck", package.open(OpenMode::ReadOnly))
        << "a failure while cleaning up takes the place of the first one";
}

TEST_F(PackageOpen, keepsTheCodeOfTheCause) {
    const auto expectCode = [](errc::errc_t code, const auto& action) {
        try {
            action();
            FAIL();
        } catch (const opc::Exception& e) {
            EXPECT_EQ(e.code(), errc::make_error_condition(code)) << e.what();
        }
    };
    physical.failAt("open", "denied", errc::permission_denied);
    expectCode(errc::permission_denied, [&] { package.open(OpenMode::ReadOnly); });
    physical.forgetScript();
    package.open(static_cast<OpenMode>(7));
    package.createExternalRelationship(u"t:t", u"x"); // any other mode reads and writes
    physical.failAt("close", "full", errc::no_space_on_device);
    expectCode(errc::no_space_on_device, [&] { package.close(false); });
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
    const auto withPart = [](const char16_t* name, const std::string& content = "") {
        return [=](MemoryPackage& store) { store.setPart(name, relationships(content)); };
    };
    const auto withTypes = [](const std::string& entries) {
        return [=](MemoryPackage& store) { store.setContentTypes(contentTypes(entries)); };
    };
    const auto withOverride = [&](const std::string& attributes) {
        return withTypes(USUAL_CONTENT_TYPES + "<Override " + attributes + "/>");
    };
    expectOpenFails<InconsistentPackage>("Not all relationship parts were matched with regular parts",
                                         withPart(u"/_rels/x.xml.rels"));
    expectOpenFails<InconsistentPackage>("Not all relationship parts were matched with regular parts",
                                         withPart(u"/_rels/_rels/.rels.rels"));
    expectOpenFails<InvalidPartName>("A segment shall not end with a dot ('.') character [M1.9]",
                                     withPart(u"/x./y.xml"));
    expectOpenFails<InvalidURI>("Could not successfully parse URI string. URI must contain only US-ASCII.",
                                withPart(u"/é.xml"));
    expectOpenFails<ContentTypeNotFound>("No content type was found for part:/b/c.png",
                                         withPart(u"/b/c.png"));
    expectOpenFails<ContentTypeNotFound>(
        "No content type was found for part:/_rels/.rels",
        withTypes(R"(<Default Extension="xml" ContentType="application/xml"/>)"));
    expectOpenFails<InvalidRelationshipContent>(
        "In /_rels/a.xml.rels: Target is empty",
        withPart(u"/_rels/a.xml.rels", R"(<Relationship Id="r" Type="t:t" Target=""/>)"));
    expectOpenFails<InvalidCorePropertiesRelationships>(
        "No more than one core properties relationship can exist in a package",
        withPart(u"/_rels/.rels", coreRelationship("r1") + coreRelationship("r2")));
    expectOpenFails<InvalidContentTypeStream>("PartName is not a valid part name",
                                              withOverride(R"(PartName="a/b" ContentType="a/b")"));
    expectOpenFails<InvalidURI>("Could not successfully parse URI string. URI must contain only US-ASCII.",
                                withOverride(R"(PartName="/é" ContentType="a/b")"));
    expectOpenFails<InvalidContentType>("Could not successfully parse content type string",
                                        withOverride(R"(PartName="/a" ContentType="a/b;c=&quot;&quot;")"));
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
        const auto add = [&sources](const std::string& name, const RelationshipSource& source) {
            for (const Relationship& relationship : source.getRelationships())
                sources += name + ':' + opc::toUDEString(relationship.getID()) + ' ';
        };
        try {
            package.open(OpenMode::ReadOnly);
            add("/", package);
            for (const Part& part : package.getParts())
                add(opc::toUDEString(part.getName().toString()), part);
            package.close(true);
        } catch (const InconsistentPackage&) {
            sources = "orphaned";
        }
        EXPECT_EQ(sources, c.sources);
    }
}

TEST_F(PackageOpen, aSecondCorePropertiesRelationshipAndASecondOpenAreRefused) {
    store.setPart(u"/_rels/.rels", relationships(coreRelationship("r1")));
    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(InvalidCorePropertiesRelationships,
                  "No more than one core properties relationship can exist in a package",
                  package.createInternalRelationship(PackageHelper::getCorePropertiesRelationshipType(),
                                                     URI(u"b.xml")));
    EXPECT_RAISES(PackageAlreadyOpen, "Package is already open", package.open(OpenMode::ReadOnly));
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

TEST_F(PackageClose, writesInItsFixedOrder) {
    package.open(OpenMode::CreateOnly);
    for (const char16_t* name : {u"/b.xml", u"/A.xml"})
        package.createPart(PartName(name), ContentType(u"a/b"), StandardPartInfo())
            .createExternalRelationship(u"t:t", u"x");
    package.createExternalRelationship(u"t:t", u"x");
    physical.calls.clear();
    package.close(false);
    std::vector<std::string> closed;
    for (const std::string& call : physical.calls)
        if (call.compare(0, 5, "close") == 0)
            closed.push_back(call);
    EXPECT_EQ(closed, (std::vector<std::string>{"closeStream types", "closeStream /_rels/.rels",
                                                "closeStream /_rels/A.xml.rels",
                                                "closeStream /_rels/b.xml.rels", "close false"}));
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

TEST(PackageLifecycle, createdPackageReadsBack) {
    MemoryPackage store;
    Package package(store);
    package.open(OpenMode::CreateOnly);
    Part main = package.createPart(PartName(u"/doc/main.xml"), ContentType(u"text/xml"), StandardPartInfo());
    writeAll(main, "<main/>");
    package.createPart(PartName(u"/doc/image.png"), ContentType(u"image/png"), StandardPartInfo());
    package.createInternalRelationship(u"urn:main", URI(u"/doc/main.xml"));
    main.createInternalRelationship(u"urn:image", URI(u"image.png"));
    main.createExternalRelationship(u"urn:link", u"http://example.com/é");
    package.close(false);

    package.open(OpenMode::ReadOnly);
    std::vector<std::u16string> names;
    for (const Part& part : package.getParts())
        names.push_back(part.getName().toString());
    EXPECT_EQ(names, (std::vector<std::u16string>{u"/doc/image.png", u"/doc/main.xml"}));
    const Part read = package.getPart(PartName(u"/DOC/main.xml"));
    EXPECT_EQ(read.getContentType().toString(), u"text/xml");
    EXPECT_EQ(readAll(read), "<main/>");
    EXPECT_EQ(read.getRelationshipByID(u"rId1").getTargetURI().toString(), u"/doc/image.png");
    EXPECT_EQ(read.getRelationshipByID(u"rId2").getTargetURI().toString(), u"http://example.com/%C3%A9");
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

#include "support/Cases.hpp"
#include "support/PackageTest.hpp"
#include "support/Texts.hpp"

namespace {

using namespace opc::model;
using namespace opc::test;
namespace errc = boost::system::errc;

const char* const CORE_PROPERTIES =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

std::string coreRelationship(const std::string& id) {
    return R"(<Relationship Id=")" + id + R"(" Type=")" + CORE_PROPERTIES + R"(" Target="a.xml"/>)";
}

class PackageOpen : public PackageTest {};
class PackageClose : public PackageTest {};

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

#ifdef _WIN32
constexpr int ACCESS_DENIED_BY_SYSTEM = 5;
#else
constexpr int ACCESS_DENIED_BY_SYSTEM = EACCES;
#endif

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
    failWith("close", ACCESS_DENIED_BY_SYSTEM);
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
    const auto check = [](const std::u16string& name, const std::string& content, const std::string& outcome,
                          const std::string& details) {
        MemoryPackage store;
        fill(store, {u"/a.xml", u"/b/c.xml"});
        store.setPart(u"/_rels/.rels", relationships(R"(<Relationship Id="r" Type="t:t" Target="a.xml"/>)"));
        if (name == u"types")
            store.setContentTypes(contentTypes(content));
        else
            store.setPart(name, relationships(content));
        ScriptedPackage physical(store);
        Package package(physical);
        EXPECT_EQ(outcomeOf([&] { package.open(OpenMode::ReadWrite); }), "opc::model::" + outcome);
        EXPECT_EQ(detailsOf([&] { package.open(OpenMode::ReadWrite); }), details);
        EXPECT_FALSE(package.isOpen());
        EXPECT_EQ(physical.calls.back(), "close true");
        EXPECT_RAISES(PackageNotOpen, "Package is not open", package.getParts());

        fill(store, {});
        for (const std::u16string& part : store.partNames())
            store.removePart(part);
        store.setPart(u"/d.xml", {});
        package.open(OpenMode::ReadWrite);
        EXPECT_EQ(package.getParts().size(), 1U);
        EXPECT_TRUE(package.getRelationships().empty());
        package.createPart(PartName(u"/b"), ContentType(u"a/b"),
                           StandardPartInfo()); // no prefix of /b/c.xml is left
    };
    forEachCase("packages/refused.txt", check);
}

TEST_F(PackageOpen, givesRelationshipsPartsToTheirSources) {
    const auto check = [this](const std::u16string& parts, const std::u16string& relationshipsParts,
                              const std::string& expected) {
        for (const std::u16string& name : store.partNames())
            store.removePart(name);
        fill(store, words(parts));
        std::string id = "r0";
        for (const std::u16string& name : words(relationshipsParts)) {
            store.setPart(name, relationships("<Relationship Id=\"" + id + "\" Type=\"t:t\" Target=\"x\"/>"));
            ++id.back();
        }
        std::u16string sources;
        const std::string failure = outcomeOf([&] {
            package.open(OpenMode::ReadOnly);
            for (const Relationship& relationship : package.getRelationships())
                sources += u"/:" + relationship.getID() + u' ';
            for (const Part& part : package.getParts())
                for (const Relationship& relationship : part.getRelationships())
                    sources += part.getName().toString() + u":" + relationship.getID() + u' ';
            package.close(true);
        });
        EXPECT_EQ(opc::toUDEString(sources), expected == "orphaned" ? "" : expected + ' ');
        EXPECT_EQ(failure.find("InconsistentPackage") != std::string::npos, expected == "orphaned");
    };
    forEachCase("packages/relationships-parts.txt", check);
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

TEST_F(PackageClose, writesRelationshipsAgainIfTheirStreamFailedToClose) {
    package.open(OpenMode::CreateOnly);
    package.createExternalRelationship(u"t:t", u"x");
    physical.before("closeStream /_rels/.rels", [] { throw InvalidPartContent("broken"); });
    EXPECT_RAISES(InvalidPartContent, "broken", package.close(false));
    physical.forgetScript();
    physical.calls.clear();
    package.close(false);
    EXPECT_EQ(physical.countCalls("closeStream /_rels/.rels"), 1U);
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

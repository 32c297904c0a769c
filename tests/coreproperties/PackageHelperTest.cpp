#include "coreproperties/CorePropertiesDocument.hpp"
#include "support/PackageTest.hpp"

namespace {

using namespace opc::model;
using namespace opc::test;

const std::u16string TYPE =
    u"http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
const char16_t* const CORE = u"/docProps/core.xml";

class CorePropertiesOfPackage : public PackageTest {
protected:
    /// A package with core properties of this content.
    void makeStore(const std::string& content, const std::string& target = "docProps/core.xml") {
        fill(store, {u"/docProps/core.xml", u"/other.xml"});
        store.setPart(CORE, toBytes(content));
        addRelationships(R"(<Relationship Id="core" Type=")" + std::string(TYPE.begin(), TYPE.end()) +
                         R"(" Target=")" + target + R"("/>)");
    }

    std::u16string title() const { return PackageHelper::getCoreProperties(package).getTitle().value(); }
    void update(const std::u16string& title) {
        CoreProperties properties;
        properties.setTitle(title);
        PackageHelper::createOrUpdateCoreProperties(package, properties);
    }
    void remove() { PackageHelper::deleteCoreProperties(package); }

    void addRelationships(const std::string& elements) {
        store.setPart(u"/_rels/.rels", relationships(elements));
    }
};

TEST_F(CorePropertiesOfPackage, aNewPackageGetsThemAtTheFixedPlace) {
    package.open(OpenMode::CreateOnly);
    EXPECT_TRUE(PackageHelper::getCoreProperties(package).isEmpty());
    update(u"t");
    EXPECT_EQ(physical.countCalls("createPart /metadata/coreProperties.xml "
                                  "application/vnd.openxmlformats-package.core-properties+xml"),
              1U);
    const auto relationships = package.getRelationships();
    ASSERT_EQ(relationships.size(), 1U);
    EXPECT_EQ(relationships.begin()->getID(), u"rId1");
    EXPECT_EQ(relationships.begin()->getType(), TYPE);
    EXPECT_EQ(relationships.begin()->getTarget(), u"metadata/coreProperties.xml");
    package.close(false);

    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(title(), u"t");
    update(u"u");
    EXPECT_EQ(package.getRelationships().size(), 1U);
    EXPECT_EQ(package.getParts().size(), 1U);
    EXPECT_EQ(title(), u"u");
    package.close(false);
}

TEST_F(CorePropertiesOfPackage, anUpdateReplacesThePartWhereItStands) {
    makeStore(corePropertiesDocument("<dc:creator>c</dc:creator>"));
    package.open(OpenMode::ReadWrite);
    update(u"t");
    EXPECT_EQ(package.getParts().size(), 2U);
    package.close(false);

    EXPECT_EQ(physical.countCalls("createPart"), 0U);
    EXPECT_EQ(physical.countCalls("getOutputStream"), 1U);
    package.open(OpenMode::ReadOnly);
    const CoreProperties properties = PackageHelper::getCoreProperties(package);
    EXPECT_EQ(properties.getTitle().value(), u"t");
    EXPECT_FALSE(properties.getCreator()) << "nothing is merged";
}

TEST_F(CorePropertiesOfPackage, canBeReadMoreThanOnce) {
    makeStore(corePropertiesDocument("<dc:title>t</dc:title>"));
    package.open(OpenMode::ReadOnly);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(title(), u"t");
    readAll(package.getPart(PartName(CORE)));
    EXPECT_EQ(title(), u"t");
    EXPECT_EQ(physical.countCalls("getInputStream /docProps/core.xml"), 1U);
}

TEST_F(CorePropertiesOfPackage, aSecondUpdateGoesOnInTheSameStream) {
    makeStore(corePropertiesDocument(""));
    package.open(OpenMode::ReadWrite);
    update(u"1");
    const std::string once = readAll(package.getPart(PartName(CORE)));
    update(u"2");
    package.close(false);
    EXPECT_EQ(physical.countCalls("getOutputStream /docProps/core.xml"), 1U);
    EXPECT_EQ(store.partBytes(CORE).size(), 2 * once.size());
}

TEST_F(CorePropertiesOfPackage, deletingTakesPartAndRelationship) {
    makeStore(corePropertiesDocument(""));
    package.open(OpenMode::ReadWrite);
    remove();
    EXPECT_EQ(package.getRelationships().size(), 0U);
    EXPECT_FALSE(package.hasPart(PartName(CORE)));
    EXPECT_NO_THROW(remove());
    package.close(false);
    EXPECT_EQ(store.partNames(), std::vector<std::u16string>{u"/other.xml"});
}

TEST_F(CorePropertiesOfPackage, failuresOfTheCalleesPass) {
    makeStore(corePropertiesDocument("<dcterms:created>2024</dcterms:created>"));
    package.open(OpenMode::ReadOnly);
    EXPECT_RAISES(InvalidPartContent,
                  "Core properties must use the xsi:type attribute on the \"created\" and \"modified\" "
                  "elements. [M4.5]",
                  title());
    EXPECT_THROW(update(u"t"), PackageReadOnly);
    EXPECT_THROW(remove(), PackageReadOnly);
    package.close(false);

    makeStore("");
    package.open(OpenMode::ReadOnly);
    EXPECT_THROW(title(), InvalidPartContent);
    package.close(false);

    addRelationships("");
    package.open(OpenMode::ReadOnly);
    EXPECT_THROW(update(u"t"), PackageReadOnly);
    EXPECT_NO_THROW(remove()) << "there is nothing to delete";
    package.close(false);

    store.setPart(u"/Metadata/CoreProperties.xml", {});
    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(PartAlreadyExists,
                  "Cannot use a part name that already exists: /metadata/coreProperties.xml", update(u"t"));
}

TEST_F(CorePropertiesOfPackage, whereTheRelationshipLeadsToNoPart) {
    const auto check = [this](const std::string& target, auto failure, const std::u16string& mended) {
        using E = decltype(failure);
        SCOPED_TRACE(target);
        makeStore("", target);
        package.open(OpenMode::ReadWrite);
        EXPECT_TRUE(PackageHelper::hasDanglingCoreProperties(package));
        EXPECT_EQ(detailsOf([this] {
                      PackageHelper::getCoreProperties(package);
                  }).rfind("the core properties relationship core leads to ", 0),
                  0U);
        EXPECT_THROW(PackageHelper::getCoreProperties(package), E);
        EXPECT_THROW(PackageHelper::createOrUpdateCoreProperties(package, {}), E);
        EXPECT_EQ(package.getRelationships().size(), 1U);
        EXPECT_THROW(remove(), E);
        EXPECT_EQ(package.getRelationships().size(), 0U) << "the relationship goes before its target";
        package.close(true);

        package.open(OpenMode::ReadOnly);
        EXPECT_THROW(PackageHelper::mendCoreProperties(package, {}), PackageReadOnly);
        package.close(false);
        package.open(OpenMode::ReadWrite);
        CoreProperties properties;
        properties.setTitle(u"\u0001");
        EXPECT_THROW(PackageHelper::mendCoreProperties(package, properties), InvalidPartContent);
        EXPECT_EQ(package.getParts().size(), 2U);
        properties.setTitle(u"t");
        PackageHelper::mendCoreProperties(package, properties);
        package.close(false);

        package.open(OpenMode::ReadWrite);
        EXPECT_FALSE(PackageHelper::hasDanglingCoreProperties(package));
        EXPECT_EQ(title(), u"t");
        const Relationship relationship = *package.getRelationships().begin();
        EXPECT_EQ(relationship.getTargetURI().toString(), mended);
        EXPECT_EQ(relationship.getID() == u"core", target == "none.xml") << "it stays if it can";
        properties.setTitle(u"u");
        PackageHelper::mendCoreProperties(package, properties);
        EXPECT_EQ(title(), u"u");
        package.close(true);
        store.removePart(mended);
    };
    const std::u16string fixed = u"/metadata/coreProperties.xml";
    check("none.xml", PartNotFound(""), u"/none.xml");
    check("docProps/core.xml/below.xml", PartNotFound(""), fixed);
    check("none.xml#there", PartNotFound(""), fixed);
    check(R"(http://example.com/core.xml" TargetMode="External)", InvalidPartName(""), fixed);
    check("a/%2F", InvalidPartName(""), fixed);
}

TEST_F(CorePropertiesOfPackage, aTextThatCanNotBeWrittenChangesNothing) {
    package.open(OpenMode::CreateOnly);
    EXPECT_THROW(update(u"\u0001"), InvalidPartContent);
    EXPECT_TRUE(package.getParts().empty());
    update(u"t");
    package.close(false);
    package.open(OpenMode::ReadWrite);
    EXPECT_THROW(update(u"\uFFFE"), InvalidPartContent);
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(title(), u"t");
}

TEST_F(CorePropertiesOfPackage, deletesTargetsOfOneTypeUpToAFailure) {
    fill(store, {u"/a.xml", u"/b.xml", u"/c.xml", u"/source.xml"});
    const std::string elements = R"(<Relationship Id="r1" Type="urn:t" Target="/a.xml"/>)"
                                 R"(<Relationship Id="r2" Type="urn:T" Target="/b.xml"/>)"
                                 R"(<Relationship Id="r3" Type="urn:t" Target="/b.xml"/>)"
                                 R"(<Relationship Id="r4" Type="urn:t" Target="/A.xml"/>)"
                                 R"(<Relationship Id="r5" Type="urn:t" Target="/c.xml"/>)";
    addRelationships(elements);
    store.setPart(u"/_rels/source.xml.rels", relationships(elements));

    const auto check = [this](const RelationshipSource& source, const std::function<void()>& deleteTargets) {
        EXPECT_RAISES(PartNotFound, "No part found with the name:/A.xml", deleteTargets());
        EXPECT_FALSE(package.hasPart(PartName(u"/a.xml")));
        EXPECT_FALSE(package.hasPart(PartName(u"/b.xml")));
        EXPECT_TRUE(package.hasPart(PartName(u"/c.xml")));
        EXPECT_TRUE(source.hasRelationship(u"r2")) << "letter case counts in a type";
        EXPECT_FALSE(source.hasRelationship(u"r4"));
        EXPECT_TRUE(source.hasRelationship(u"r5"));
        EXPECT_NO_THROW(deleteTargets()) << "what is left can be deleted";
        EXPECT_EQ(source.getRelationships().size(), 1U);
        EXPECT_FALSE(package.hasPart(PartName(u"/c.xml")));
        package.close(true);
    };
    package.open(OpenMode::ReadWrite);
    check(package, [this] { PackageHelper::deleteRelationshipsAndTargets(package, u"urn:t"); });
    package.open(OpenMode::ReadWrite);
    Part source = package.getPart(PartName(u"/source.xml"));
    check(source, [&] { PackageHelper::deleteRelationshipsAndTargets(package, source, u"urn:t"); });
    EXPECT_THROW(PackageHelper::deleteRelationshipsAndTargets(package, source, u"urn:t"), InvalidObject);
}

TEST_F(CorePropertiesOfPackage, nothingIsDeletedWhileAPackageIsCreated) {
    package.open(OpenMode::CreateOnly);
    EXPECT_NO_THROW(remove());
    PackageHelper::createOrUpdateCoreProperties(package, {});
    EXPECT_THROW(remove(), PackageCreateOnly);
    EXPECT_EQ(package.getRelationships().size(), 1U);
}

} // namespace

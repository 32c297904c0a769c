#include "support/PackageTest.hpp"

#include <opc/model/DataManager.hpp>

namespace {

using namespace opc::model;
using namespace opc::test;

class CountingManager : public DataManager {
public:
    CountingManager(Package& managed, bool eager) : DataManager(managed, eager) {}
    ~CountingManager() override = default;

    using DataManager::load;
    using DataManager::markAsDirty;

    int loads = 0;
    int saves = 0;
    std::function<void()> onLoad = [] {};
    std::function<void()> onSave = [] {};

private:
    void doLoad() override {
        ++loads;
        onLoad();
    }
    void doSave() override {
        ++saves;
        onSave();
    }
    std::vector<std::u16string> doGetManagedPartNames() const override { return {u"/MANAGED.xml"}; }
    std::vector<std::u16string> doGetManagedRelationshipTypes() const override { return {u"urn:managed"}; }
};

class DataManagers : public PackageTest {
protected:
    DataManagers() : PackageTest({u"/a.xml", u"/managed.xml"}) {}
};

TEST_F(DataManagers, loadOnceAndSaveWhenDirty) {
    const std::tuple<OpenMode, bool, int, int, int> cases[] = {
        {OpenMode::ReadOnly, false, 0, 1, 0},   {OpenMode::ReadOnly, true, 1, 1, 0},
        {OpenMode::ReadWrite, false, 0, 1, 0},  {OpenMode::ReadWrite, true, 1, 1, 0},
        {OpenMode::CreateOnly, false, 0, 0, 1}, {OpenMode::CreateOnly, true, 0, 0, 1},
    };
    for (const auto& [mode, loadOnOpen, loadsAfterOpen, loadsAfterLoad, savesAfterClose] : cases) {
        CountingManager manager(package, loadOnOpen);
        for (int round = 1; round <= 2; ++round) { // each open sets the flags again
            manager.loads = manager.saves = 0;
            package.open(mode);
            EXPECT_EQ(manager.loads, loadsAfterOpen);
            manager.load();
            manager.load();
            EXPECT_EQ(manager.loads, loadsAfterLoad);
            package.close(false);
            EXPECT_EQ(manager.saves, savesAfterClose);
        }
    }
}

TEST_F(DataManagers, saveBeforeAnythingIsWritten) {
    CountingManager manager(package, false);
    package.open(OpenMode::ReadWrite);
    manager.onSave = [&] {
        EXPECT_EQ(physical.countCalls("getContentTypeOutputStream"), 0U);
        package.createPart(PartName(u"/new"), ContentType(u"a/b"), StandardPartInfo());
        package.createExternalRelationship(u"urn:managed", u"x");
    };
    manager.markAsDirty();
    package.close(false);
    EXPECT_TRUE(store.hasPart(u"/_rels/.rels"));
    EXPECT_NE(toText(store.contentTypes()).find("/new"), std::string::npos);
}

TEST_F(DataManagers, failuresPassAndLeaveThingsToBeTriedAgain) {
    CountingManager manager(package, false);
    package.open(OpenMode::ReadWrite);
    manager.onLoad = [] { throw opc::Exception("not now"); };
    EXPECT_RAISES(opc::Exception, "not now", manager.load());
    manager.onLoad = [] {};
    manager.load();
    EXPECT_EQ(manager.loads, 2);

    manager.markAsDirty();
    manager.onSave = [] { throw opc::Exception("not yet"); };
    EXPECT_RAISES(opc::Exception, "not yet", package.close(false));
    EXPECT_TRUE(package.isOpen());
    manager.onSave = [] {};
    package.close(false);
    EXPECT_EQ(manager.saves, 2);

    CountingManager eager(package, true);
    eager.onLoad = [] { throw PartNotFound("broken"); };
    EXPECT_RAISES(PartNotFound, "broken", package.open(OpenMode::ReadWrite));
    EXPECT_FALSE(package.isOpen());
    EXPECT_EQ(physical.calls.back(), "close true");
}

TEST_F(DataManagers, hearNothingOfAPackageThatIsRefused) {
    const std::string core =
        "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";
    std::string twice;
    for (const std::string id : {"r1", "r2"})
        twice += "<Relationship Id=\"" + id + "\" Type=\"" + core + "\" Target=\"a.xml\"/>";
    store.setPart(u"/_rels/.rels", relationships(twice));
    const CountingManager manager(package, true);
    EXPECT_THROW(package.open(OpenMode::ReadWrite), InvalidCorePropertiesRelationships);
    EXPECT_EQ(manager.loads, 0);
}

TEST_F(DataManagers, areMadeForAClosedPackageAndForgottenWhenDestroyed) {
    auto gone = std::make_unique<CountingManager>(package, true);
    CountingManager stays(package, false);
    auto next = std::make_unique<CountingManager>(package, false);
    package.open(OpenMode::ReadWrite);
    EXPECT_RAISES(PackageAlreadyOpen, "Can't add a data manager when package is already open",
                  CountingManager(package, false));
    for (CountingManager* manager : {gone.get(), &stays, next.get()})
        manager->markAsDirty();
    stays.load();
    EXPECT_EQ(stays.loads, 0) << "dirty data aren't loaded over";
    gone->onSave = next->onSave = [] { FAIL() << "destroyed by then"; };
    gone.reset();
    stays.onSave = [&] { next.reset(); };
    package.close(false);
    EXPECT_EQ(stays.saves, 1);
}

TEST_F(DataManagers, keepTheirPartsAndTypesOutOfEnumerations) {
    const auto open = [this] {
        package.open(OpenMode::ReadWrite);
        package.createExternalRelationship(u"urn:managed", u"x");
        package.createExternalRelationship(u"urn:Managed", u"y");
    };
    open();
    EXPECT_EQ(package.getParts(ExcludeMode::ExcludeManaged).size(), 2U) << "no manager, nothing managed";
    package.close(true);

    CountingManager manager(package, false);
    open();
    EXPECT_EQ(package.getParts().size(), 2U);
    const auto parts = package.getParts(ExcludeMode::ExcludeManaged);
    ASSERT_EQ(parts.size(), 1U) << "names are compared without regard to letter case";
    EXPECT_EQ(parts.begin()->getName(), u"/a.xml");
    EXPECT_EQ(package.getParts(static_cast<ExcludeMode>(7)).size(), 2U);

    const auto kept = package.getRelationships(ExcludeMode::ExcludeManaged);
    ASSERT_EQ(kept.size(), 1U) << "types are compared with letter case counting";
    EXPECT_EQ(kept.begin()->getTarget(), u"y");
    EXPECT_EQ(package.getRelationshipsByType(u"urn:managed").size(), 1U);
}

} // namespace

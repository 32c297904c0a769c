#include "PhysicalSupport.hpp"

#include <opc/core/Text.hpp>
#include <opc/physical/MemoryPackage.hpp>

#include <cerrno>
#include <memory>

/// @file
/// What all stores have in common.

namespace {

using namespace opc::test;
using opc::physical::MemoryPackage;

using Layer = std::unique_ptr<opc::interfaces::IPhysicalPackage> (*)();

Layer const LAYERS[] = {
    [] { return std::unique_ptr<opc::interfaces::IPhysicalPackage>(new MemoryPackage); },
    [] { return std::unique_ptr<opc::interfaces::IPhysicalPackage>(new ZipPackage(ZipPackage::Bytes{})); },
};

class PhysicalLayers : public testing::TestWithParam<Layer> {
protected:
    PhysicalLayers() {
        package->open(OpenMode::CreateOnly);
        EXPECT_TRUE(package->getParts().empty());
        create(*package, u"/b", "beta");
        create(*package, u"/a", "alpha");
        package->createPart(u"/empty", u"text/plain", PartInfo());
        putContentTypes(*package, "types");
        package->close(false);
    }

    /// Content types and parts as the next `open` finds them.
    std::string stored() {
        package->open(OpenMode::ReadOnly);
        std::string text = rest(*package->getContentTypeInputStream());
        for (auto* part : package->getParts())
            text += ' ' + opc::toUDEString(part->getName()) + '=' + content(*part);
        package->close(false);
        return text;
    }

    std::unique_ptr<opc::interfaces::IPhysicalPackage> package = GetParam()();
};

TEST_P(PhysicalLayers, keepTheirContentFromOneOpenToTheNext) {
    EXPECT_EQ(stored(), "types /b=beta /a=alpha /empty=");
    package->open(OpenMode::ReadWrite);
    EXPECT_EQ(names(*package), u"/b /a /empty ");
    package->deletePart(u"/B");
    create(*package, u"/c", "gamma");
    putContentTypes(*package, "new types");
    package->close(false);
    EXPECT_EQ(stored(), "new types /a=alpha /empty= /c=gamma");
}

TEST_P(PhysicalLayers, dropEveryChangeWhenAbandoned) {
    for (const OpenMode mode : {OpenMode::ReadWrite, OpenMode::CreateOnly}) {
        package->open(mode);
        create(*package, u"/a", "changed");
        create(*package, u"/new", "new");
        package->deletePart(u"/a");
        putContentTypes(*package, "changed");
        package->close(true);
        EXPECT_EQ(stored(), "types /b=beta /a=alpha /empty=");
    }
}

TEST_P(PhysicalLayers, giveOldContentToOldStreamsAndNewToNew) {
    package->open(OpenMode::ReadWrite);
    auto* part = find(*package, u"/a");
    auto* early = part->getInputStream();
    unsigned char first = 0;
    early->read(&first, 1);
    auto* stale = part->getOutputStream();
    put(*stale, "lost");
    EXPECT_EQ(create(*package, u"/A", "new "), part);
    EXPECT_FAILS(EBADF, "a", put(*stale, "x"));
    auto* output = part->getOutputStream();
    put(*output, "new ");
    auto* late = part->getInputStream();
    EXPECT_EQ(rest(*late), "new ");
    put(*output, "and more");
    EXPECT_FALSE(late->isDone());
    EXPECT_EQ(rest(*late), "and more");
    EXPECT_EQ(dynamic_cast<opc::interfaces::IPhysicalPartSize&>(*part).getSize(), 12U);
    EXPECT_EQ(rest(*early), "lpha");
    early->close();
    early->open();
    EXPECT_EQ(rest(*early), "new and more");
    package->close(false);
    EXPECT_EQ(stored(), "types /b=beta /a=new and more /empty=");
}

TEST_P(PhysicalLayers, refuseWhatTheStateForbids) {
    const auto absent = GetParam()();
    EXPECT_FAILS(ENOENT, "in memory: ", absent->open(OpenMode::ReadOnly));
    EXPECT_FAILS(ENOENT, "in memory: ", absent->open(OpenMode::ReadWrite));
    EXPECT_FAILS(EBADF, "not open", absent->getParts());
    EXPECT_FAILS(EBADF, "not open", absent->close(true));

    package->open(OpenMode::ReadOnly);
    EXPECT_FAILS(EBUSY, "open", package->open(OpenMode::ReadOnly));
    EXPECT_FAILS(EACCES, "opened to read", find(*package, u"/a")->getOutputStream());
    EXPECT_FAILS(EACCES, "/new", package->createPart(u"/new", u"", PartInfo()));
    EXPECT_FAILS(EACCES, "/a", package->deletePart(u"/a"));
    EXPECT_FAILS(EACCES, "[Content_Types].xml", package->getContentTypeOutputStream());
    package->close(false);
    package->open(OpenMode::ReadWrite);
    EXPECT_FAILS(ENOENT, "no such part", package->deletePart(u"/x"));
    package->close(true);

    absent->open(OpenMode::CreateOnly);
    create(*absent, u"/a", "alpha");
    absent->close(false);
    absent->open(OpenMode::ReadOnly);
    EXPECT_FAILS(ENOENT, "in memory: ", absent->getContentTypeInputStream());
}

INSTANTIATE_TEST_SUITE_P(All, PhysicalLayers, testing::ValuesIn(LAYERS), [](const auto& instance) {
    return std::string(instance.index == 0 ? "memory" : "zip");
});

} // namespace

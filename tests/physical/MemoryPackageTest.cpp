#include "PhysicalSupport.hpp"

#include <opc/physical/MemoryPackage.hpp>

#include <cerrno>

namespace {

using namespace opc::test;
using opc::physical::MemoryPackage;

MemoryPackage::Bytes bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

MemoryPackage& fill(MemoryPackage& package) {
    package.setContentTypes(bytes("types"));
    package.setPart(u"/b", bytes("beta"), u"text/b");
    package.setPart(u"/a", bytes("alpha"), u"text/a");
    return package;
}

TEST(MemoryPackage, keepsItsContentFromOneOpenToTheNext) {
    MemoryPackage package;
    package.open(OpenMode::CreateOnly);
    EXPECT_TRUE(package.getParts().empty());
    create(package, u"/b", "beta");
    create(package, u"/a", "alpha");
    package.createPart(u"/empty", u"text/plain", PartInfo());
    putContentTypes(package, "types");
    package.close(false);

    package.open(OpenMode::ReadWrite);
    EXPECT_EQ(names(package), u"/b /a /empty ");
    EXPECT_EQ(content(*find(package, u"/b")), "beta");
    EXPECT_EQ(content(*find(package, u"/empty")), "");
    EXPECT_EQ(rest(*package.getContentTypeInputStream()), "types");
    package.deletePart(u"/B");
    create(package, u"/c", "gamma");
    putContentTypes(package, "new types");
    package.close(false);

    EXPECT_EQ(package.partNames(), (std::vector<std::u16string>{u"/a", u"/empty", u"/c"}));
    EXPECT_EQ(package.contentTypes(), bytes("new types"));
}

TEST(MemoryPackage, dropsEveryChangeWhenAbandoned) {
    for (const OpenMode mode : {OpenMode::ReadWrite, OpenMode::CreateOnly}) {
        MemoryPackage package;
        fill(package).open(mode);
        create(package, u"/a", "changed");
        create(package, u"/new", "new");
        package.deletePart(u"/a");
        putContentTypes(package, "changed");
        package.close(true);
        EXPECT_EQ(package.partNames(), (std::vector<std::u16string>{u"/b", u"/a"}));
        EXPECT_EQ(package.partBytes(u"/a"), bytes("alpha"));
        EXPECT_EQ(package.contentTypes(), bytes("types"));
    }
}

TEST(MemoryPackage, replacesContentUnderTheSamePointer) {
    MemoryPackage package;
    fill(package).open(OpenMode::ReadWrite);
    auto* part = find(package, u"/a");
    auto* early = part->getInputStream();
    unsigned char first = 0;
    early->read(&first, 1);
    EXPECT_EQ(create(package, u"/A", "new"), part);
    EXPECT_EQ(names(package), u"/b /a ");
    EXPECT_EQ(content(*part), "new");
    EXPECT_EQ(rest(*early), "lpha");
    early->close();
    early->open();
    EXPECT_EQ(rest(*early), "new");

    auto* stale = part->getOutputStream();
    put(*stale, "lost");
    put(*part->getOutputStream(), "kept");
    EXPECT_FAILS(EBADF, "/a", put(*stale, "x"));
    package.close(false);
    EXPECT_EQ(package.partBytes(u"/a"), bytes("kept"));
}

TEST(MemoryPackage, canKeepTypesWithTheParts) {
    MemoryPackage package(MemoryPackage::ContentTypes::InParts);
    package.open(OpenMode::CreateOnly);
    EXPECT_FALSE(package.usesContentTypeStream());
    create(package, u"/a", "alpha");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(find(package, u"/a")->getContentType(), u"text/plain");
}

TEST(MemoryPackage, refusesWhatTheStateForbids) {
    MemoryPackage absent;
    EXPECT_FAILS(ENOENT, "doesn't exist", absent.open(OpenMode::ReadOnly));
    EXPECT_FAILS(ENOENT, "doesn't exist", absent.open(OpenMode::ReadWrite));
    EXPECT_FAILS(EBADF, "not open", absent.getParts());
    EXPECT_FAILS(EBADF, "not open", absent.close(true));

    MemoryPackage package;
    fill(package).removeContentTypes();
    package.open(OpenMode::ReadOnly);
    auto* part = find(package, u"/a");
    EXPECT_FAILS(EBUSY, "open", package.open(OpenMode::ReadOnly));
    EXPECT_FAILS(EBUSY, "open", package.partBytes(u"/a"));
    EXPECT_FAILS(ENOENT, "no content types", package.getContentTypeInputStream());
    EXPECT_FAILS(EACCES, "/a", part->getOutputStream());
    EXPECT_FAILS(EACCES, "/new", package.createPart(u"/new", u"", PartInfo()));
    EXPECT_FAILS(EACCES, "/a", package.deletePart(u"/a"));
    EXPECT_FAILS(EACCES, "Content_Types", package.getContentTypeOutputStream());
    package.close(false);
    EXPECT_FAILS(ENOENT, "/x", package.partBytes(u"/x"));
    package.open(OpenMode::ReadWrite);
    EXPECT_FAILS(ENOENT, "/x", package.deletePart(u"/x"));
}

} // namespace

#include "PhysicalSupport.hpp"

#include <opc/physical/MemoryPackage.hpp>

#include <cerrno>

namespace {

using namespace opc::test;
using opc::physical::MemoryPackage;

TEST(MemoryPackage, canKeepTypesWithTheParts) {
    MemoryPackage package(MemoryPackage::ContentTypes::InParts);
    package.open(OpenMode::CreateOnly);
    EXPECT_FALSE(package.usesContentTypeStream());
    create(package, u"/a", "alpha");
    package.close(false);
    package.open(OpenMode::ReadOnly);
    EXPECT_EQ(find(package, u"/a")->getContentType(), u"text/plain");
}

TEST(MemoryPackage, showsItsContentWhileItIsClosed) {
    MemoryPackage package;
    package.setContentTypes({'t'});
    package.setPart(u"/a", {'a'}, u"text/a");
    package.removeContentTypes();
    EXPECT_EQ(package.partBytes(u"/A"), MemoryPackage::Bytes{'a'});
    EXPECT_FAILS(ENOENT, "/x", package.partBytes(u"/x"));
    package.open(OpenMode::ReadOnly);
    EXPECT_FAILS(EBUSY, "open", package.partBytes(u"/a"));
    EXPECT_FAILS(ENOENT, "no content types", package.getContentTypeInputStream());
}

} // namespace

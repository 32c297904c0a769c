#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

namespace {

using namespace opc::model;

TEST(StandardPartInfo, hasTheDefaultsOfTheLibrary) {
    const StandardPartInfo info;
    EXPECT_EQ(static_cast<int>(info.getCompressionType()), 1);
    EXPECT_EQ(info.getGrowthHint(), 0U);
    EXPECT_EQ(info.getExtraInfo(u"any"), nullptr);
}

TEST(PackageHelper, thumbnailsTakeAnExtensionWithOrWithoutItsDot) {
    EXPECT_EQ(PackageHelper::getThumbnailURI(u"").toString(), u"/metadata/thumbnail");
    EXPECT_EQ(PackageHelper::getThumbnailURI(u"png").toString(), u"/metadata/thumbnail.png");
    EXPECT_EQ(PackageHelper::getThumbnailURI(u".png").toString(), u"/metadata/thumbnail.png");
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string. URI must contain only US-ASCII.",
                  PackageHelper::getThumbnailURI(u"é"));
}

} // namespace

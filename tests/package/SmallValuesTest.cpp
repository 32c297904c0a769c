#include "support/Throws.hpp"

#include <opc/model/Enumerator.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <vector>

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

TEST(Enumerator, isASnapshot) {
    std::vector<int> source = {1, 2, 3};
    const Enumerator<std::vector<int>> snapshot(source);
    source.clear();
    int sum = 0;
    for (const int element : snapshot)
        sum += element;
    EXPECT_EQ(sum, 6);
    EXPECT_EQ(snapshot.size(), 3U);
    EXPECT_FALSE(snapshot.empty());
}

} // namespace

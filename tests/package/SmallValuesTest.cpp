#include "support/Throws.hpp"

#include <opc/model/Errors.hpp>
#include <opc/model/PackageHelper.hpp>
#include <opc/model/StandardPartInfo.hpp>

#include <type_traits>

namespace {

using namespace opc::model;

TEST(StandardPartInfo, hasTheDefaultsOfTheLibrary) {
    const StandardPartInfo info;
    EXPECT_EQ(static_cast<int>(info.getCompressionType()), 1);
    EXPECT_EQ(info.getGrowthHint(), 0U);
    EXPECT_EQ(info.getExtraInfo(u"any"), nullptr);
}

TEST(Failures, keepTheirDetailsInCopiesAndTranslations) {
    static_assert(std::is_nothrow_copy_constructible_v<opc::Exception>);
    static_assert(std::is_nothrow_copy_assignable_v<opc::Exception>);
    PackageNotFound cause("gone");
    for (const char* phrase : {"line 3", "", "relationship r1"})
        cause.addDetails(phrase);
    const opc::Exception copy = cause;
    cause.addDetails("later");
    const auto raised = opc::translated<PackageOpenFailed>(copy, "no", copy.code());
    EXPECT_STREQ(raised.what(), "no");
    EXPECT_STREQ(raised.details(), "line 3; relationship r1");
    EXPECT_STREQ(opc::translated<PackageNotFound>(opc::Exception("none"), "no").details(), "");
}

TEST(PackageHelper, thumbnailsTakeAnExtensionWithOrWithoutItsDot) {
    EXPECT_EQ(PackageHelper::getThumbnailURI(u"").toString(), u"/metadata/thumbnail");
    EXPECT_EQ(PackageHelper::getThumbnailURI(u"png").toString(), u"/metadata/thumbnail.png");
    EXPECT_EQ(PackageHelper::getThumbnailURI(u".png").toString(), u"/metadata/thumbnail.png");
    EXPECT_RAISES(InvalidURI, "Could not successfully parse URI string. URI must contain only US-ASCII.",
                  PackageHelper::getThumbnailURI(u"é"));
}

} // namespace

#include <opc/model/Errors.hpp>

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace opc::model;
using bedrock::codesigning_verifier::ErrorMap;

TEST(Errors, invalidSignatureKeepsItsCodeThroughCopies) {
    std::unique_ptr<InvalidSignature> copy;
    try {
        throw InvalidSignature("digest differs", ErrorMap<101>());
    } catch (const InvalidSignature& caught) {
        copy = std::make_unique<InvalidSignature>(caught);
    }
    EXPECT_EQ(copy->getErrorCode().value(), 101);
    EXPECT_STREQ(copy->what(), "digest differs");
}

TEST(Errors, onlyOpenAndCloseFailuresCarryACode) {
    const auto denied = make_error_code(boost::system::errc::permission_denied);
    EXPECT_EQ(PackageOpenFailed("x", denied).code(), denied);
    EXPECT_EQ(PackageCloseFailed("x", denied).code(), denied);
    EXPECT_EQ(PackageNotFound("x").code(), boost::system::error_code());
    EXPECT_EQ(PackageNotFound("x").code().category(), boost::system::system_category());
}

TEST(Errors, aHandlerCatchesItsClassAlone) {
    EXPECT_TRUE((std::is_base_of_v<opc::Exception, PartNotFound>));
    EXPECT_FALSE((std::is_base_of_v<PartDeleteFailed, PartNotFound>));
}

} // namespace

#include "support/Cases.hpp"

#include <opc/core/Time.hpp>

#include <boost/date_time/posix_time/posix_time.hpp>

namespace {

using boost::posix_time::ptime;
using opc::test::forEachCase;

TEST(Time, readsEveryFormOfW3CDTF) {
    forEachCase("times/accepted.txt", [](const std::u16string& text, const std::string& expected) {
        EXPECT_EQ(to_iso_extended_string(opc::convertStringToTime(text)), expected);
    });
}

TEST(Time, whatIsNoTimeGivesNotADateTime) {
    forEachCase("times/refused.txt", [](const std::u16string& text) {
        EXPECT_TRUE(opc::convertStringToTime(text).is_not_a_date_time());
    });
}

TEST(Time, writesUTCInSeconds) {
    EXPECT_EQ(opc::convertTimeToString(opc::convertStringToTime(u"2024-02-29T13:45:59.987+02:00")),
              u"2024-02-29T11:45:59Z");
    EXPECT_EQ(opc::convertTimeToString(opc::convertStringToTime(u"1400")), u"1400-01-01T00:00:00Z");
    EXPECT_EQ(
        opc::convertTimeToString(std::chrono::system_clock::time_point(std::chrono::seconds(9000000000))),
        u"2255-03-14T16:00:00Z");
    EXPECT_EQ(opc::convertTimeToString(ptime()), u"");
    EXPECT_EQ(opc::convertTimeToString(ptime(boost::posix_time::pos_infin)), u"");
}

} // namespace

#include "support/Texts.hpp"

#include <opc/core/Text.hpp>
#include <opc/core/Time.hpp>

#include <boost/date_time/posix_time/posix_time.hpp>
#include <gtest/gtest.h>

namespace {

using boost::posix_time::ptime;

TEST(Time, readsEveryFormOfW3CDTF) {
    const std::u16string cases[] = {
        // dates
        u"2024 | 2024-01-01T00:00:00", u"2024-02 | 2024-02-01T00:00:00", u"2024-02-29 | 2024-02-29T00:00:00",
        // times
        u"2024-02-29T13:45 | 2024-02-29T13:45:00", u"2024-02-29T13:45Z | 2024-02-29T13:45:00",
        u"2024-02-29T13:45:59 | 2024-02-29T13:45:59", u"2024-02-29T13:45:59Z | 2024-02-29T13:45:59",
        u"2024-02-29T13:45:59.5 | 2024-02-29T13:45:59.500000",
        u"2024-02-29T13:45:59.123456789Z | 2024-02-29T13:45:59.123456",
        u"2024-02-29T00:30:00+01:00 | 2024-02-28T23:30:00", u"2023-12-31T23:30-14:00 | 2024-01-01T13:30:00",
        u"1400-01-01T00:00:00Z | 1400-01-01T00:00:00",
        u"9999-12-31T23:59:59.999999Z | 9999-12-31T23:59:59.999999"};
    for (const std::u16string& row : cases) {
        const auto [text, expected] = opc::test::columns<2>(row);
        EXPECT_EQ(to_iso_extended_string(opc::convertStringToTime(text)), opc::toUDEString(expected));
    }
}

TEST(Time, whatIsNoTimeGivesNotADateTime) {
    const std::u16string cases[] = {
        // dates
        u"", u"24", u"now", u"2024-", u"2024-1", u"2024-13", u"2024-00-01", u"2024-02-30", u"2023-02-29",
        u"2024-02-00",
        // times
        u"2024-02-29 13:45", u"2024-02-29T", u"2024-02-29T13", u"2024-02-29T24:00:00Z", u"2024-02-29T13:60",
        u"2024-02-29T13:45:60", u"2024-02-29T13:45:59.", u"2024-02-29T13:45:59.Z", u"2024-02-29T13:45:59z",
        u"2024-02-29T13:45:59+1:00", u"2024-02-29T13:45:59+24:00", u"2024-02-29T13:45:59+01:60",
        u"2024-02-29T13:45:59+01",
        // both
        u"2024-02-29Z", u"2024Z", u" 2024", u"2024 ", u"1399-12-31", u"0000", u"10000-01-01", u"-2024-01-01",
        u"1400-01-01T00:00:00+00:01", u"9999-12-31T23:59:59-00:01", u"２０２４"};
    for (const std::u16string& text : cases)
        EXPECT_TRUE(opc::convertStringToTime(text).is_not_a_date_time()) << opc::toUDEString(text);
}

TEST(Time, writesUTCInSeconds) {
    EXPECT_EQ(opc::convertTimeToString(opc::convertStringToTime(u"2024-02-29T13:45:59.987+02:00")),
              u"2024-02-29T11:45:59Z");
    EXPECT_EQ(opc::convertTimeToString(opc::convertStringToTime(u"1400")), u"1400-01-01T00:00:00Z");
    EXPECT_EQ(opc::convertTimeToString(ptime()), u"");
    EXPECT_EQ(opc::convertTimeToString(ptime(boost::posix_time::pos_infin)), u"");
}

} // namespace

#include <opc/core/Time.hpp>

#include <boost/date_time/posix_time/posix_time_types.hpp>

#include <optional>

namespace opc {

namespace {

using boost::gregorian::date;
using boost::posix_time::not_a_date_time;
using boost::posix_time::ptime;
using boost::posix_time::time_duration;

/// The years that `ptime` can hold.
constexpr int FIRST_YEAR = 1400;
constexpr int LAST_YEAR = 9999;

/// Reads fields of digits from a text, one after the other.
class FieldReader {
public:
    explicit FieldReader(const std::u16string& source) noexcept : source(source) {}

    bool atEnd() const noexcept { return position == source.size(); }

    bool take(char16_t expected) noexcept {
        if (atEnd() || source[position] != expected)
            return false;
        ++position;
        return true;
    }

    std::optional<int> takeDigit() noexcept {
        if (atEnd() || source[position] < u'0' || source[position] > u'9')
            return std::nullopt;
        return source[position++] - u'0';
    }

    /// A number of exactly `digits` digits within the range.
    std::optional<int> takeNumber(int digits, int least, int most) noexcept {
        int number = 0;
        for (int i = 0; i < digits; ++i) {
            const std::optional<int> digit = takeDigit();
            if (!digit)
                return std::nullopt;
            number = number * 10 + *digit;
        }
        return number < least || number > most ? std::nullopt : std::optional<int>(number);
    }

private:
    const std::u16string& source;
    std::size_t position = 0;
};

std::optional<date> readDate(FieldReader& reader) {
    const auto year = reader.takeNumber(4, FIRST_YEAR, LAST_YEAR);
    if (!year)
        return std::nullopt;
    int month = 1;
    int day = 1;
    if (reader.take(u'-')) {
        const auto field = reader.takeNumber(2, 1, 12);
        if (!field)
            return std::nullopt;
        month = *field;
        if (reader.take(u'-')) {
            const int last = boost::gregorian::gregorian_calendar::end_of_month_day(
                static_cast<unsigned short>(*year), static_cast<unsigned short>(month));
            const auto dayField = reader.takeNumber(2, 1, last);
            if (!dayField)
                return std::nullopt;
            day = *dayField;
        } else if (!reader.atEnd()) {
            return std::nullopt;
        }
    } else if (!reader.atEnd()) {
        return std::nullopt;
    }
    return date(static_cast<unsigned short>(*year), static_cast<unsigned short>(month),
                static_cast<unsigned short>(day));
}

/// The fraction after the decimal point of the seconds: one digit or more. Digits after the sixth don't count.
std::optional<time_duration> readFraction(FieldReader& reader) {
    std::int64_t micros = 0;
    std::int64_t weight = 100000;
    int digits = 0;
    for (auto digit = reader.takeDigit(); digit; digit = reader.takeDigit(), ++digits) {
        micros += *digit * weight;
        weight /= 10;
    }
    if (digits == 0)
        return std::nullopt;
    return boost::posix_time::microseconds(micros);
}

/// The time of day, in the time zone of the text.
std::optional<time_duration> readTimeOfDay(FieldReader& reader) {
    const auto hours = reader.takeNumber(2, 0, 23);
    if (!hours || !reader.take(u':'))
        return std::nullopt;
    const auto minutes = reader.takeNumber(2, 0, 59);
    if (!minutes)
        return std::nullopt;
    time_duration result = boost::posix_time::hours(*hours) + boost::posix_time::minutes(*minutes);
    if (!reader.take(u':'))
        return result;
    const auto seconds = reader.takeNumber(2, 0, 59);
    if (!seconds)
        return std::nullopt;
    result += boost::posix_time::seconds(*seconds);
    if (!reader.take(u'.'))
        return result;
    const auto fraction = readFraction(reader);
    if (!fraction)
        return std::nullopt;
    return result + *fraction;
}

/// The offset of the text's time zone from UTC, positive if it is ahead.
std::optional<time_duration> readOffset(FieldReader& reader) {
    if (reader.atEnd() || reader.take(u'Z'))
        return time_duration();
    const bool ahead = reader.take(u'+');
    if (!ahead && !reader.take(u'-'))
        return std::nullopt;
    const auto hours = reader.takeNumber(2, 0, 23);
    if (!hours || !reader.take(u':'))
        return std::nullopt;
    const auto minutes = reader.takeNumber(2, 0, 59);
    if (!minutes)
        return std::nullopt;
    const time_duration offset = boost::posix_time::hours(*hours) + boost::posix_time::minutes(*minutes);
    return ahead ? offset : -offset;
}

void appendNumber(std::u16string& text, int number, int digits) {
    std::u16string field(static_cast<std::size_t>(digits), u'0');
    for (auto place = field.rbegin(); place != field.rend(); ++place, number /= 10)
        *place = static_cast<char16_t>(u'0' + number % 10);
    text += field;
}

} // namespace

std::u16string convertTimeToString(const ptime& time) {
    if (time.is_special())
        return {};
    const auto day = time.date().year_month_day();
    const time_duration clock = time.time_of_day();
    std::u16string text;
    appendNumber(text, day.year, 4);
    text += u'-';
    appendNumber(text, day.month, 2);
    text += u'-';
    appendNumber(text, day.day, 2);
    text += u'T';
    appendNumber(text, static_cast<int>(clock.hours()), 2);
    text += u':';
    appendNumber(text, static_cast<int>(clock.minutes()), 2);
    text += u':';
    appendNumber(text, static_cast<int>(clock.seconds()), 2);
    text += u'Z';
    return text;
}

std::u16string convertTimeToString(std::chrono::system_clock::time_point time) {
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    return convertTimeToString(ptime(date(1970, 1, 1), boost::posix_time::milliseconds(since.count())));
}

ptime convertStringToTime(const std::u16string& text) {
    FieldReader reader(text);
    const auto day = readDate(reader);
    if (!day)
        return not_a_date_time;
    if (reader.atEnd())
        return ptime(*day, time_duration());
    if (!reader.take(u'T'))
        return not_a_date_time;
    const auto clock = readTimeOfDay(reader);
    if (!clock)
        return not_a_date_time;
    const auto offset = readOffset(reader);
    if (!offset || !reader.atEnd())
        return not_a_date_time;

    // The offset can lead out of the years that a ptime can hold.
    const time_duration clockInUTC = *clock - *offset;
    const bool dayBefore = clockInUTC.is_negative();
    const bool dayAfter = clockInUTC >= boost::posix_time::hours(24);
    if ((dayBefore && *day == date(FIRST_YEAR, 1, 1)) || (dayAfter && *day == date(LAST_YEAR, 12, 31)))
        return not_a_date_time;
    return ptime(*day, time_duration()) + clockInUTC;
}

} // namespace opc

#pragma once

#include <opc/core/Export.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <chrono>
#include <string>

namespace opc {

/// Formats a time in UTC as `YYYY-MM-DDThh:mm:ssZ`, without fractions of a second. A special value (not-a-date-time, an
/// infinity) gives the empty text.
OPC_CORE_EXPORT std::u16string convertTimeToString(const boost::posix_time::ptime& time);

/// The same for a point in time.
OPC_CORE_EXPORT std::u16string convertTimeToString(std::chrono::system_clock::time_point time);

/// Reads every form of W3CDTF: a year, a month, a date, or a date with a time to the minute, the second or a fraction of
/// it. The time can have Z or an offset; without them it is UTC. Throws nothing.
/// @return the time in UTC, to the microsecond. Not-a-date-time for every other text, for fields out of range, and for
///         times before the year 1400 or after 9999
OPC_CORE_EXPORT boost::posix_time::ptime convertStringToTime(const std::u16string& text);

} // namespace opc

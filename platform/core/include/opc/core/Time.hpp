#pragma once

#include <opc/core/Export.hpp>

#include <boost/date_time/posix_time/ptime.hpp>

#include <string>

namespace opc {

/// `time`, which is UTC, as `YYYY-MM-DDThh:mm:ssZ`: what is finer than a second is cut off.
/// A time that isn't a time (not-a-date-time, the infinities) gives the empty text.
OPC_CORE_EXPORT std::u16string convertTimeToString(const boost::posix_time::ptime& time);

/// Reads every form of W3CDTF: a year, a year and month, a date, or a date and a time to the minute, the
/// second or any fraction of it; the time with Z or an offset, or with none, which counts as UTC.
/// @return the time in UTC, to the microsecond. Not-a-date-time for any other text, for fields out of
///         their range, and for times before the year 1400 or after 9999. Raises nothing.
OPC_CORE_EXPORT boost::posix_time::ptime convertStringToTime(const std::u16string& text);

} // namespace opc

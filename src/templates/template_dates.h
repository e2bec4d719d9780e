// The date and time placeholders of the date macros: "%dd%-%mm%-%yy%" and the like, matched
// without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace ks::tpl {

struct DateTime {
  int year = 0, month = 0, day = 0;  // month 1-12; outside that no month or weekday names
  int hour = 0, minute = 0, second = 0;
};

// The system's date order.
enum class DateOrder { kEuropean, kAmerican, kScandinavian };

// The date format of an order: "%dd%-%mm%-%yy%", "%mm%-%dd%-%yy%" or "%yy%-%mm%-%dd%".
std::string_view DateFormat(DateOrder order);
inline constexpr std::string_view kTimeFormat = "%hh%:%mm%";

// `format` with its placeholders replaced. In a date format "%mm%" and "%m%" are the month,
// in a time format (`time` true) the minute. Unknown placeholders stay as they are.
std::string FormatDate(std::string_view format, const DateTime& when, bool time = false);

// Day of the week, 0 = Sunday (Gregorian calendar).
int Weekday(int year, int month, int day);
// Day of the year, 1 = the first of January.
int DayOfYear(int year, int month, int day);

}  // namespace ks::tpl

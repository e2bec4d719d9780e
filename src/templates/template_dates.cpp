#include "templates/template_dates.h"

#include <cctype>
#include <cstdio>

namespace ks::tpl {

namespace {

constexpr const char* kDayNames[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
constexpr const char* kMonthNames[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                       "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

std::string Two(int n) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d", n);
  return buf;
}

bool LeapYear(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

// The value of one placeholder name (upper-cased, without the "%" signs), or false.
bool Placeholder(const std::string& name, const DateTime& w, bool time, std::string& out) {
  const bool month_ok = w.month >= 1 && w.month <= 12;
  if (name == "DDD") {
    out = month_ok ? kDayNames[Weekday(w.year, w.month, w.day)] : "";
  } else if (name == "DD") {
    out = Two(w.day);
  } else if (name == "D") {
    out = std::to_string(w.day);
  } else if (name == "MMM") {
    out = month_ok ? kMonthNames[w.month - 1] : "";
  } else if (name == "MM") {
    out = Two(time ? w.minute : w.month);
  } else if (name == "M") {
    out = std::to_string(time ? w.minute : w.month);
  } else if (name == "YYYY" || name == "Y") {
    out = std::to_string(w.year);
  } else if (name == "YY") {
    out = Two(((w.year % 100) + 100) % 100);
  } else if (name == "HH") {
    out = Two(w.hour);
  } else if (name == "H") {
    out = std::to_string(w.hour);
  } else if (name == "SS") {
    out = Two(w.second);
  } else if (name == "S") {
    out = std::to_string(w.second);
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::string_view DateFormat(DateOrder order) {
  switch (order) {
    case DateOrder::kAmerican:
      return "%mm%-%dd%-%yy%";
    case DateOrder::kScandinavian:
      return "%yy%-%mm%-%dd%";
    default:
      return "%dd%-%mm%-%yy%";
  }
}

int Weekday(int y, int m, int d) {
  static const int t[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
  if (m < 1 || m > 12) return 0;
  if (m < 3) y -= 1;
  return ((y + y / 4 - y / 100 + y / 400 + t[m - 1] + d) % 7 + 7) % 7;
}

int DayOfYear(int y, int m, int d) {
  static const int before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  if (m < 1 || m > 12) return d;
  return before[m - 1] + d + (m > 2 && LeapYear(y) ? 1 : 0);
}

std::string FormatDate(std::string_view format, const DateTime& when, bool time) {
  std::string out;
  std::size_t i = 0;
  while (i < format.size()) {
    if (format[i] == '%') {
      const std::size_t close = format.find('%', i + 1);
      if (close != std::string_view::npos && close - i <= 5) {
        std::string name;
        for (std::size_t j = i + 1; j < close; ++j)
          name += static_cast<char>(std::toupper(static_cast<unsigned char>(format[j])));
        std::string value;
        if (Placeholder(name, when, time, value)) {
          out += value;
          i = close + 1;
          continue;
        }
      }
    }
    out += format[i++];
  }
  return out;
}

}  // namespace ks::tpl

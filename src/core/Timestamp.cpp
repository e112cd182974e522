#include "vorn/core/Timestamp.hpp"

#include <cstdio>

namespace vorn {
namespace {

void putTwoDigits(char* out, unsigned value) {
  out[0] = static_cast<char>('0' + value / 10);
  out[1] = static_cast<char>('0' + value % 10);
}

std::string formatSecond(std::chrono::sys_seconds second) {
  const auto day = std::chrono::floor<std::chrono::days>(second);
  const std::chrono::year_month_day ymd{day};
  const std::chrono::hh_mm_ss time{second - day};
  const int year = static_cast<int>(ymd.year());
  if (year < 0 || year > 9999) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02uT%02d:%02d:%02dZ", year,
                  static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return buffer;
  }
  std::string text = "0000-00-00T00:00:00Z";
  const auto y = static_cast<unsigned>(year);
  putTwoDigits(&text[0], y / 100);
  putTwoDigits(&text[2], y % 100);
  putTwoDigits(&text[5], static_cast<unsigned>(ymd.month()));
  putTwoDigits(&text[8], static_cast<unsigned>(ymd.day()));
  putTwoDigits(&text[11], static_cast<unsigned>(time.hours().count()));
  putTwoDigits(&text[14], static_cast<unsigned>(time.minutes().count()));
  putTwoDigits(&text[17], static_cast<unsigned>(time.seconds().count()));
  return text;
}

}  // namespace

std::string formatTimestamp(Date date) {
  // Most calls stamp "now", many times a second: remember the last second per thread.
  struct Cache {
    bool valid = false;
    std::chrono::sys_seconds second;
    std::string text;
  };
  thread_local Cache cache;
  const auto second = std::chrono::floor<std::chrono::seconds>(date);
  if (!cache.valid || cache.second != second) {
    cache.text = formatSecond(second);
    cache.second = second;
    cache.valid = true;
  }
  return cache.text;
}

std::string currentTimestamp() {
  return formatTimestamp(std::chrono::system_clock::now());
}

}  // namespace vorn

#include "vorn/base/Timestamp.hpp"

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
  // Date holds nanoseconds, so its years (1677 to 2262) always have four digits.
  const auto y = static_cast<unsigned>(static_cast<int>(ymd.year()));
  std::string text = "0000-00-00T00:00:00Z";
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

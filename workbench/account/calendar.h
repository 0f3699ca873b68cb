// Days of the accounting calendar.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "workbench/tsql/values/value.h"

namespace quillon::account {

using Day = std::chrono::sys_days;

inline Day dayOf(int year, int month, int day) {
  return std::chrono::year{year} / month / day;
}
inline int daysInMonth(int year, int month) {
  return static_cast<int>(static_cast<unsigned>((std::chrono::year{year} / month / std::chrono::last).day()));
}

inline tsql::DateTime toDateTime(Day day) {
  constexpr Day epoch = std::chrono::year{1900} / 1 / 1;
  return {(day - epoch).count() * tsql::DateTime::ticksPerDay};
}

// `number` in decimal with at least `width` digits.
inline std::string padded(std::int64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

// "202403"
inline std::string periodText(int year, int month) {
  return std::to_string(year) + padded(month, 2);
}

}  // namespace quillon::account

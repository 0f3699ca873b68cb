#include "workbench/tsql/values/datetime.h"

#include <gtest/gtest.h>

#include "workbench/tsql/engine/engine.h"

namespace quillon::tsql {
namespace {

std::string read(std::string_view text, DateOrder order = DateOrder::monthFirst) {
  const DateTextResult result = parseDateTime(text, order);
  if (result.value) return toText(*result.value);
  return result.error == DateTextError::notADate ? "not a date" : "out of range";
}

DateTime at(std::string_view text) {
  return parseDateTime(text).value.value();
}

TEST(DateTimeText, ReadsDatesThatBeginWithTheYear) {
  for (const char* text :
       {"2024-3-5", "2024-03-05", "20240305", "2024/3/5", "2024.03.05", " 2024-03-05 ", "240305", "2024-03-05T00:00:00",
        "2024-03-05T00:00:00Z", "Mar 5 2024", "March 5, 2024", "5 Mar 2024"}) {
    EXPECT_EQ(read(text), "2024-03-05 00:00:00.000") << text;
  }
  EXPECT_EQ(read("2024"), "2024-01-01 00:00:00.000");
}

TEST(DateTimeText, ReadsTimes) {
  EXPECT_EQ(read("2024/3/5 8:05"), "2024-03-05 08:05:00.000");
  EXPECT_EQ(read("2024-01-02 13:14:15"), "2024-01-02 13:14:15.000");
  EXPECT_EQ(read("20240102 13:14:15.5"), "2024-01-02 13:14:15.500");
  EXPECT_EQ(read("2024-01-02 1:14 PM"), "2024-01-02 13:14:00.000");
  EXPECT_EQ(read("2024-01-02 12:00AM"), "2024-01-02 00:00:00.000");
  EXPECT_EQ(read("8:05"), "1900-01-01 08:05:00.000");
  EXPECT_EQ(read("Mar  5 2024  1:14PM"), "2024-03-05 13:14:00.000");
}

TEST(DateTimeText, RoundsTo300thsOfASecond) {
  EXPECT_EQ(read("2024-01-01 00:00:00.456"), "2024-01-01 00:00:00.457");
  EXPECT_EQ(read("2024-01-01 00:00:00.999"), "2024-01-01 00:00:01.000");
  EXPECT_EQ(read("2024-01-01 00:00:00.001"), "2024-01-01 00:00:00.000");
  EXPECT_EQ(read("2024-01-01 00:00:00.002"), "2024-01-01 00:00:00.003");
  EXPECT_EQ(read("2024-01-01 00:00:00.005"), "2024-01-01 00:00:00.007");
  EXPECT_EQ(read("2024-12-31 23:59:59.999"), "2025-01-01 00:00:00.000");
  EXPECT_EQ(read("2024-12-31 23:59:59.997"), "2024-12-31 23:59:59.997");
}

TEST(DateTimeText, TheEmptyTextIsDayZero) {
  EXPECT_EQ(read(""), "1900-01-01 00:00:00.000");
  EXPECT_EQ(read("   "), "1900-01-01 00:00:00.000");
}

TEST(DateTimeText, ReadsOtherOrders) {
  EXPECT_EQ(read("3/5/2024"), "2024-03-05 00:00:00.000");
  EXPECT_EQ(read("5/3/2024", DateOrder::dayFirst), "2024-03-05 00:00:00.000");
  EXPECT_EQ(read("49/1/2", DateOrder::yearFirst), "not a date");
  EXPECT_EQ(read("49/01/02", DateOrder::yearFirst), "2049-01-02 00:00:00.000");
  EXPECT_EQ(read("50/01/02", DateOrder::yearFirst), "1950-01-02 00:00:00.000");
}

TEST(DateTimeText, TellsWrongDatesFromTextsThatAreNoDates) {
  for (const char* text : {"2024-13-01", "2024-02-30", "2023-02-29", "1752-12-31", "2024-01-01 25:00", "20241301",
                           "9999-12-31 23:59:59.999"}) {
    EXPECT_EQ(read(text), "out of range") << text;
  }
  for (const char* text : {"x", "2024-3-5x", "2024-", "2024-3", "12", "2024-01-01 2024-01-01", "8:05 9:05",
                           "2024-3-5-1", "2024-01-01 00:00:00.4567", "2024-01-01T", "Mar"}) {
    EXPECT_EQ(read(text), "not a date") << text;
  }
}

TEST(DateTimeText, HoldsTheWholeCalendar) {
  EXPECT_EQ(read("1753-01-01"), "1753-01-01 00:00:00.000");
  EXPECT_EQ(read("9999-12-31 23:59:59.997"), "9999-12-31 23:59:59.997");
  EXPECT_EQ(read("1899-12-31 23:59:59.997"), "1899-12-31 23:59:59.997");
  EXPECT_EQ(read("2000-02-29"), "2000-02-29 00:00:00.000");
  EXPECT_EQ(at("1900-01-02").ticks, DateTime::ticksPerDay);
  EXPECT_EQ(at("1899-12-31").ticks, -DateTime::ticksPerDay);
}

TEST(DateTimeText, WritesStyles) {
  const DateTime value = at("2024-03-05 13:14:15.457");
  EXPECT_EQ(formatDateTime(value, 0), "Mar  5 2024  1:14PM");
  EXPECT_EQ(formatDateTime(at("2024-12-15"), 0), "Dec 15 2024 12:00AM");
  EXPECT_EQ(formatDateTime(value, 120), "2024-03-05 13:14:15");
  EXPECT_EQ(formatDateTime(value, 121), "2024-03-05 13:14:15.457");
  EXPECT_EQ(formatDateTime(value, 23), "2024-03-05");
  EXPECT_EQ(formatDateTime(value, 111), "2024/03/05");
  EXPECT_EQ(formatDateTime(value, 112), "20240305");
  EXPECT_EQ(formatDateTime(value, 102), "2024.03.05");
  EXPECT_EQ(formatDateTime(value, 126), "2024-03-05T13:14:15.457");
  EXPECT_EQ(formatDateTime(value, 108), "13:14:15");
  EXPECT_EQ(formatDateTime(value, 103), "05/03/2024");
  EXPECT_EQ(formatDateTime(value, 999), std::nullopt);
}

TEST(DateParts, AreFoundByAnyOfTheirNames) {
  EXPECT_EQ(datePartNamed("YEAR"), DatePart::year);
  EXPECT_EQ(datePartNamed("mm"), DatePart::month);
  EXPECT_EQ(datePartNamed("mi"), DatePart::minute);
  EXPECT_EQ(datePartNamed("ms"), DatePart::millisecond);
  EXPECT_EQ(datePartNamed("fortnight"), std::nullopt);
  EXPECT_EQ(nameOf(DatePart::dayOfYear), "dayofyear");
}

TEST(DateParts, AreReadFromADate) {
  const DateTime value = at("2024-03-05 13:14:15.457");  // a Tuesday
  EXPECT_EQ(datePart(DatePart::year, value), 2024);
  EXPECT_EQ(datePart(DatePart::quarter, value), 1);
  EXPECT_EQ(datePart(DatePart::month, value), 3);
  EXPECT_EQ(datePart(DatePart::day, value), 5);
  EXPECT_EQ(datePart(DatePart::dayOfYear, value), 65);
  EXPECT_EQ(datePart(DatePart::weekday, value), 3);
  EXPECT_EQ(datePart(DatePart::week, value), 10);
  EXPECT_EQ(datePart(DatePart::hour, value), 13);
  EXPECT_EQ(datePart(DatePart::minute, value), 14);
  EXPECT_EQ(datePart(DatePart::second, value), 15);
  EXPECT_EQ(datePart(DatePart::millisecond, value), 457);
  EXPECT_EQ(dateName(DatePart::month, value), "March");
  EXPECT_EQ(dateName(DatePart::weekday, value), "Tuesday");
  EXPECT_EQ(dateName(DatePart::year, value), "2024");
}

TEST(DateParts, AreAdded) {
  EXPECT_EQ(toText(dateAdd(DatePart::month, 1, at("2024-01-31"))), "2024-02-29 00:00:00.000");
  EXPECT_EQ(toText(dateAdd(DatePart::month, -2, at("2024-01-31 08:00"))), "2023-11-30 08:00:00.000");
  EXPECT_EQ(toText(dateAdd(DatePart::year, 1, at("2024-02-29"))), "2025-02-28 00:00:00.000");
  EXPECT_EQ(toText(dateAdd(DatePart::day, -1, at("2024-03-01"))), "2024-02-29 00:00:00.000");
  EXPECT_EQ(toText(dateAdd(DatePart::hour, 25, at("2024-03-01"))), "2024-03-02 01:00:00.000");
  EXPECT_EQ(toText(dateAdd(DatePart::week, 1, at("2024-12-30"))), "2025-01-06 00:00:00.000");
  EXPECT_THROW(dateAdd(DatePart::year, 8000, at("2024-01-01")), SqlError);
  EXPECT_THROW(dateAdd(DatePart::day, -100000, at("1900-01-01")), SqlError);
  EXPECT_THROW(dateAdd(DatePart::day, 9'000'000'000'000'000'000, at("1900-01-01")), SqlError);
}

TEST(DateParts, CountTheBoundariesBetweenTwoDates) {
  EXPECT_EQ(dateDiff(DatePart::year, at("2023-12-31"), at("2024-01-01")), 1);
  EXPECT_EQ(dateDiff(DatePart::month, at("2024-01-31"), at("2024-02-01")), 1);
  EXPECT_EQ(dateDiff(DatePart::month, at("2024-02-01"), at("2023-11-30")), -3);
  EXPECT_EQ(dateDiff(DatePart::day, at("2024-02-28 23:00"), at("2024-03-01 01:00")), 2);
  EXPECT_EQ(dateDiff(DatePart::day, at("1899-12-31 12:00"), at("1900-01-01")), 1);
  EXPECT_EQ(dateDiff(DatePart::hour, at("2024-01-01 08:59"), at("2024-01-01 09:00")), 1);
  EXPECT_EQ(dateDiff(DatePart::quarter, at("2024-03-31"), at("2024-04-01")), 1);
  EXPECT_EQ(dateDiff(DatePart::week, at("2024-03-02"), at("2024-03-03")), 1);  // Saturday to Sunday
  EXPECT_EQ(dateDiff(DatePart::second, at("2024-01-01"), at("2024-01-02")), 86400);
}

TEST(CurrentDateTime, LiesInThisCentury) {
  EXPECT_GT(currentDateTime().ticks, at("2024-01-01").ticks);
  EXPECT_LT(currentDateTime().ticks, at("2100-01-01").ticks);
}

}  // namespace
}  // namespace quillon::tsql

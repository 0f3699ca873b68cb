#include "frame/calendar_date.h"

#include <gtest/gtest.h>

#include "frame/automation_error.h"

namespace quillon {
namespace {

std::string date(std::string_view text) {
  return isoDate(text, "The filter item dKeepDate");
}

TEST(CalendarDate, ComesWithFourDigitYearAndTwoDigitMonthAndDay) {
  EXPECT_EQ(date("2024-03-05"), "2024-03-05");
  EXPECT_EQ(date("2024-3-5"), "2024-03-05");
  EXPECT_EQ(date("2024/3/5"), "2024-03-05");
  EXPECT_EQ(date("2024.03.05"), "2024-03-05");
  EXPECT_EQ(date("20240305"), "2024-03-05");
  EXPECT_EQ(date(" 2024-03-05 "), "2024-03-05");
}

TEST(CalendarDate, LosesItsTimeOfDay) {
  EXPECT_EQ(date("2024-03-05 13:45:10"), "2024-03-05");
  EXPECT_EQ(date("2024-03-05T13:45:10.123"), "2024-03-05");
  EXPECT_EQ(date("20240305 8:05"), "2024-03-05");
}

TEST(CalendarDate, FollowsTheCalendar) {
  EXPECT_EQ(date("2024-02-29"), "2024-02-29");
  EXPECT_THROW(date("2023-02-29"), AutomationError);
  EXPECT_THROW(date("2024-04-31"), AutomationError);
  EXPECT_THROW(date("2024-13-01"), AutomationError);
  EXPECT_THROW(date("2024-00-10"), AutomationError);
}

TEST(CalendarDate, RefusesWhatIsNoDate) {
  for (const char* text : {"", "March", "2024", "2024-03", "2024-03-", "2024-03/05", "24-03-05", "2024-03-055",
                           "2024-03-05x", "2024-03-05 noon", "202403051", "2024-03-05T", "-2024-03-05"}) {
    EXPECT_THROW(date(text), AutomationError) << text;
  }
}

TEST(CalendarDate, TheErrorNamesValueAndMeaning) {
  try {
    date("soon");
    FAIL() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.code(), hresult::typeMismatch);
    EXPECT_EQ(error.description(),
              "The filter item dKeepDate has the value \"soon\"; give it a date, such as 2024-06-30.");
  }
}

}  // namespace
}  // namespace quillon

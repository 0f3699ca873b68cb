#include "frame/automation_error.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(AutomationError, CarriesWhatTheFailingCallSaid) {
  const AutomationError error(hresult::typeMismatch, "ADODB.Connection", "Login failed.");
  EXPECT_EQ(error.code(), static_cast<HResult>(0x80020005U));
  EXPECT_LT(error.code(), 0);
  EXPECT_EQ(error.source(), "ADODB.Connection");
  EXPECT_EQ(error.description(), "Login failed.");
  EXPECT_STREQ(error.what(), "Login failed.");
}

}  // namespace
}  // namespace quillon

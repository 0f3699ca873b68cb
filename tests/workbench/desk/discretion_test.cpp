#include "workbench/desk/discretion.h"

#include <gtest/gtest.h>

#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::desk {
namespace {

TEST(Discretion, CallsAFileByItsName) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "accounts";
  const Discretion discretion(AccountSource::inFile(folder / "a.account"), {folder / "filters"});
  EXPECT_EQ(discretion.accountName(), "a.account");
  EXPECT_EQ(discretion.of("Unable to open '" + utf8FromPath(folder / "a.account") + "'"), "Unable to open 'a.account'");
  EXPECT_EQ(discretion.of("in " + utf8FromPath(folder / "filters" / "x.json")), "in x.json");
  EXPECT_EQ(discretion.of("in " + utf8FromPath(std::filesystem::temp_directory_path() / "rows-1")), "in rows-1");
  EXPECT_EQ(discretion.of("1/2 of it"), "1/2 of it");
}

TEST(Discretion, KeepsConnectionStringAndPasswordToItself) {
  const std::string text = "Driver={FreeTDS};Server=db;Database=Books;UID=sa;PWD={s e;cret}";
  const Discretion discretion(AccountSource(text), {});
  EXPECT_EQ(discretion.accountName(), "Books");
  EXPECT_EQ(discretion.of("cannot connect to " + text), "cannot connect to Books");
  EXPECT_EQ(discretion.of("the password s e;cret is wrong"), "the password *** is wrong");
}

}  // namespace
}  // namespace quillon::workbench::desk

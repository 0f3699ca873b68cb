// Books as files: what the reader refuses, and where.
#include "workbench/runs/book_file.h"

#include <gmock/gmock.h>

#include "tests/workbench/account/test_folder.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;

TEST(BookFile, TellsTheLineOfAFault) {
  const account::testing::TestFolder folder;
  const auto refused = [&folder](const std::string& text) {
    const auto file = folder / "book.json";
    account::testing::write(file, text);
    try {
      readBook(utf8FromPath(file));
    } catch (const UserError& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_THAT(refused("{\"items\": [\n{\"report\": \"sfc-item\",\n \"colums\": []}]}"),
              HasSubstr("line 3: item 1, \"colums\" is not known; did you mean columns?"));
  EXPECT_THAT(refused("{\"items\": [{}]}"), HasSubstr("lacks \"report\""));
  EXPECT_THAT(refused("{\"items\": []}"), HasSubstr("must not be empty"));
  EXPECT_THAT(refused("{}"), HasSubstr("lacks \"items\""));
}

TEST(BookFile, HasTheSchemaThatShips) {
  EXPECT_EQ(std::string(bookFileSchema), account::testing::contentOf(QUILLON_BOOK_SCHEMA));
}

}  // namespace
}  // namespace quillon::workbench

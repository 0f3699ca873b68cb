#include "workbench/desk/row_spool.h"

#include <gmock/gmock.h>

#include "tests/workbench/platform/temporary_file.h"

namespace quillon::workbench::desk {
namespace {

class RowSpoolTest : public testing::Test {
 protected:
  static WindowRow row(RowKind kind, int number) {
    return {.kind = kind, .level = number % 3, .ledgerLine = number, .cells = "[\"" + std::to_string(number) + " \"]"};
  }
  static std::vector<std::string> cellsOf(const std::vector<WindowRow>& rows) {
    std::vector<std::string> cells;
    cells.reserve(rows.size());
    for (const WindowRow& each : rows)
      cells.push_back(each.cells);
    return cells;
  }

  test::TemporaryFile file_{".rows"};
};

TEST_F(RowSpoolTest, GivesAnyPage) {
  constexpr int count = 5'000;
  RowSpool spool(file_.path(), false);
  for (int i = 0; i < count; ++i)
    spool.add(row(RowKind::line, i));
  spool.finish();
  ASSERT_EQ(spool.size(), count);
  for (const int offset : {0, 1, 31, 32, 33, 255, 256, 4'990}) {
    const std::vector<WindowRow> page = spool.read(offset, 40);
    ASSERT_EQ(page.size(), static_cast<std::size_t>(std::min(40, count - offset))) << offset;
    for (std::size_t i = 0; i < page.size(); ++i) {
      const WindowRow expected = row(RowKind::line, offset + static_cast<int>(i));
      EXPECT_EQ(page[i].cells, expected.cells);
      EXPECT_EQ(page[i].level, expected.level);
      EXPECT_EQ(page[i].ledgerLine, expected.ledgerLine);
    }
  }
  EXPECT_TRUE(spool.read(count, 10).empty());
  EXPECT_TRUE(spool.read(-1, 10).empty());
}

TEST_F(RowSpoolTest, FoldsDetailsAway) {
  RowSpool spool(file_.path(), true);
  for (int i = 0; i < 100; ++i) {
    spool.add({.kind = RowKind::line, .cells = "[" + std::to_string(i) + "]"});
    for (int part = 0; part < i % 3; ++part)
      spool.add({.kind = RowKind::detail, .cells = "[" + std::to_string(i) + "." + std::to_string(part) + "]"});
  }
  spool.finish();
  EXPECT_EQ(spool.size(), 100);
  EXPECT_THAT(cellsOf(spool.read(31, 3)), testing::ElementsAre("[31]", "[32]", "[33]"));
  EXPECT_EQ(spool.read(32, 1)[0].details, 2);
  EXPECT_FALSE(spool.read(32, 1)[0].ledgerLine.has_value());
  EXPECT_THAT(cellsOf(spool.details(32)), testing::ElementsAre("[32.0]", "[32.1]"));
  EXPECT_THAT(cellsOf(spool.details(33)), testing::IsEmpty());
  EXPECT_THAT(cellsOf(spool.details(98)), testing::ElementsAre("[98.0]", "[98.1]"));
}

TEST_F(RowSpoolTest, ItsFileGoesWithIt) {
  {
    RowSpool spool(file_.path(), false);
    EXPECT_TRUE(std::filesystem::exists(file_.path()));
  }
  EXPECT_FALSE(std::filesystem::exists(file_.path()));
}

TEST_F(RowSpoolTest, SaysWhenItCannotBeMade) {
  EXPECT_THROW(RowSpool(file_.path() / "nowhere" / "rows", false), std::runtime_error);
}

}  // namespace
}  // namespace quillon::workbench::desk

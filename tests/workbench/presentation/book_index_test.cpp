// The page in front of a book's pages.
#include "workbench/presentation/book_index.h"

#include <gmock/gmock.h>

#include <sstream>

#include "workbench/presentation/html_style.h"
#include "workbench/presentation/sha256.h"

namespace quillon::workbench {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(BookIndex, ListsItsPages) {
  std::ostringstream out;
  writeBookIndex(out,
                 {.language = Language::english,
                  .title = "Month <end>",
                  .company = "Works & Sons",
                  .printed = "2024-03-31",
                  .pages = {{.title = "Issues <all>", .file = "01-a\"b.html", .rows = 12345, .digest = "3F2A 91BC"},
                            {.title = "Receipts", .file = "02-Receipts.html", .rows = 0, .digest = "77F1 02DE"}}});
  const std::string page = out.str();
  EXPECT_THAT(page, HasSubstr("<title>Month &lt;end&gt;</title>"));
  EXPECT_THAT(
      page, HasSubstr("<h1>Month &lt;end&gt;</h1>\n<p class=note>Works &amp; Sons</p>\n<p class=note>2024-03-31</p>"));
  EXPECT_THAT(page, HasSubstr("<a href=\"01-a&quot;b.html\">Issues &lt;all&gt;</a><td class=n>12,345<td>3F2A 91BC\n"));
  EXPECT_THAT(page, HasSubstr("<a href=\"02-Receipts.html\">Receipts</a><td class=n>0<td>77F1 02DE\n"));
}

TEST(BookIndex, HoldsNoScriptAndOneStyleSheet) {
  std::ostringstream out;
  writeBookIndex(out, {.title = "月末", .company = "", .printed = "2024-03-31", .pages = {}});
  EXPECT_THAT(out.str(), HasSubstr("<html lang=\"zh-CN\">"));
  EXPECT_THAT(out.str(), HasSubstr("default-src 'none'; style-src 'sha256-" + sha256Base64(commonStyle()) + "'; "));
  EXPECT_THAT(out.str(), Not(HasSubstr("<script")));
}

TEST(BookIndex, NamesPagesSoThatEverySystemTakesThem) {
  EXPECT_EQ(bookPageFile(3, "Issues/2024: \"all\""), "03-Issues-2024---all-.html");
  EXPECT_EQ(bookPageFile(12, "发出汇总"), "12-发出汇总.html");
  EXPECT_EQ(bookPageFile(1, ""), "01.html");
}

}  // namespace
}  // namespace quillon::workbench

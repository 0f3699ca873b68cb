#include "workbench/desk/pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "workbench/desk/embedded_pages.h"

namespace quillon::workbench::desk {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

TEST(Pages, HaveNamesThatChangeWithThem) {
  for (const EmbeddedPage& page : embeddedPages()) {
    if (page.path == "/") continue;
    EXPECT_TRUE(std::regex_match(std::string(page.path), std::regex("/assets/[0-9a-f]{16}/[a-z0-9_.-]+"))) << page.path;
    EXPECT_FALSE(page.content.empty());
  }
}

// Whatever a page or a module names is there.
TEST(Pages, FindEachOther) {
  const std::regex reference(R"re((?:src|href)="(/[^"]*)"|(?:from|import) *\(?["']\./([^"']*)["'])re");
  for (const EmbeddedPage& page : embeddedPages()) {
    const std::string text(page.content), folder(page.path.substr(0, page.path.rfind('/') + 1));
    for (std::sregex_iterator found(text.begin(), text.end(), reference), end; found != end; ++found) {
      const std::string wanted = (*found)[1].matched ? (*found)[1].str() : folder + (*found)[2].str();
      EXPECT_TRUE(findPage(wanted)) << page.path << " names " << wanted;
    }
  }
}

TEST(Pages, AreStoredUnlessTheyAreTheStartPage) {
  const auto start = findPage("/");
  ASSERT_TRUE(start);
  EXPECT_TRUE(start->headers.empty());
  EXPECT_THAT(start->body, HasSubstr("type=\"module\""));
  EXPECT_FALSE(findPage("/index.html"));
  EXPECT_FALSE(findPage("/assets/"));
}

TEST(Pages, BringTheTermsOfWhatOthersWrote) {
  ASSERT_EQ(pageLicences().size(), 2U);
  EXPECT_THAT(std::string(pageLicences()[0].name), HasSubstr("regular-table 0.9"));
  EXPECT_EQ(pageLicences()[0].licence, "Apache-2.0");
  EXPECT_THAT(std::string(pageLicences()[0].text), HasSubstr("Apache License"));
  EXPECT_THAT(std::string(pageLicences()[1].name), HasSubstr("chart.js 4."));
  EXPECT_EQ(pageLicences()[1].licence, "MIT");
  EXPECT_THAT(std::string(pageLicences()[1].text), HasSubstr("Chart.js Contributors"));
  EXPECT_THAT(std::string(pageLicences()[1].text), HasSubstr("Jukka Kurkela"));
}

}  // namespace
}  // namespace quillon::workbench::desk

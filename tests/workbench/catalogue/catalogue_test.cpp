// Every report of the catalogue has all its parts, and what it says of tables, columns and keys is so.
#include "workbench/catalogue/catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "frame/text.h"
#include "workbench/account/schema.h"
#include "workbench/platform/resource_texts.h"

namespace quillon::workbench {
namespace {

class CatalogueReport : public testing::TestWithParam<const Report*> {
 protected:
  const Report& report() const { return *GetParam(); }

  bool hasColumn(std::string_view name) const {
    return std::ranges::any_of(report().columns,
                               [name](const ReportColumn& column) { return equalIgnoringCase(column.name, name); });
  }
};

std::vector<const Report*> everyReport() {
  std::vector<const Report*> all;
  for (const Report& report : reports())
    all.push_back(&report);
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, CatalogueReport, testing::ValuesIn(everyReport()), [](const auto& report) {
  std::string name = report.param->registration.name;
  std::erase(name, '-');
  return name;
});

TEST_P(CatalogueReport, HasNameTitlesAndIdentifier) {
  const ReportRegistration& registration = report().registration;
  EXPECT_TRUE(std::regex_match(registration.name, std::regex("[a-z]+(-[a-z]+)*"))) << registration.name;
  EXPECT_FALSE(registration.chinese.empty());
  EXPECT_FALSE(registration.english.empty());
  EXPECT_NE(registration.chinese, registration.english);
  EXPECT_TRUE(std::regex_match(registration.identifier, std::regex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")))
      << registration.identifier;
}

TEST_P(CatalogueReport, HasItsClassAndItsDialogs) {
  EXPECT_THAT(std::string(report().reportClass), testing::StartsWith("cls"));
  EXPECT_NE(report().make, nullptr);
  ASSERT_NE(report().dialog, nullptr);
  EXPECT_THAT(std::string(report().dialog->name), testing::StartsWith("cls"));
  EXPECT_THAT(std::string(report().dialog->traceName), testing::StartsWith("dialog-"));
  EXPECT_NE(report().dialog->make, nullptr);
}

TEST_P(CatalogueReport, HasItemsWithColumnsOrChoices) {
  ASSERT_FALSE(report().registration.items.empty());
  std::set<std::string> keys;
  for (const ItemRegistration& item : report().registration.items) {
    EXPECT_TRUE(keys.insert(item.key).second) << item.key << " twice";
    const bool listOfTheDialog = item.kind == InputKind::choice;
    EXPECT_TRUE(!item.column.empty() || !item.choices.empty() || listOfTheDialog)
        << item.key << " has neither a column to be compared with nor choices";
    EXPECT_FALSE(item.range && item.multiple) << item.key;
  }
}

TEST_P(CatalogueReport, HasColumnsWithCaptionsInBothLanguages) {
  ASSERT_FALSE(report().columns.empty());
  std::set<std::string> names;
  for (const ReportColumn& column : report().columns) {
    std::string name = column.name;
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    EXPECT_TRUE(names.insert(name).second) << column.name << " twice";
    EXPECT_FALSE(column.chinese.empty()) << column.name;
    EXPECT_FALSE(column.english.empty()) << column.name;
    EXPECT_NE(column.chinese, column.english) << column.name;
  }
}

TEST_P(CatalogueReport, IsOrderedByColumnsThatItHas) {
  EXPECT_TRUE(std::ranges::any_of(report().order, [this](std::string_view name) { return hasColumn(name); }));
}

// A cross view has states, with names, and sums by cost item.
TEST_P(CatalogueReport, HasAllThatItsCrossViewNeeds) {
  if (report().crossStates == nullptr) return;
  EXPECT_FALSE(report().isLedger) << "balances cannot be summed";
  EXPECT_TRUE(hasColumn("cFXCode"));
  EXPECT_TRUE(hasColumn("cFXName"));
  for (const char* mode : {"0", "1", "2"}) {
    const std::vector<CrossState> states = report().crossStates(mode);
    EXPECT_FALSE(states.empty());
    for (const CrossState& state : states) {
      EXPECT_NE(resourceText(state.nameKey, Language::chinese), state.nameKey);
      EXPECT_NE(resourceText(state.nameKey, Language::english), state.nameKey);
      EXPECT_FALSE(state.quantity.empty());
      EXPECT_FALSE(state.money.empty());
    }
  }
}

std::vector<std::string> columnsOfKey(std::string_view columns) {
  std::vector<std::string> names;
  while (!columns.empty()) {
    const std::size_t comma = columns.find(',');
    names.emplace_back(trimBlanks(columns.substr(0, comma)));
    columns = comma == std::string_view::npos ? std::string_view() : columns.substr(comma + 1);
  }
  return names;
}

TEST_P(CatalogueReport, JoinsByKeysOfTheAccountsTables) {
  EXPECT_FALSE(report().joinKeys.empty());
  for (const account::JoinKey& key : report().joinKeys) {
    const auto table = std::ranges::find(account::tables(), key.table, &account::TableDefinition::name);
    ASSERT_NE(table, account::tables().end()) << key.table;
    EXPECT_EQ(key.statement.empty(), key.describe == nullptr) << key.table;
    if (!key.statement.empty()) continue;
    for (const std::string& name : columnsOfKey(key.columns)) {
      EXPECT_TRUE(std::ranges::any_of(table->columns,
                                      [&name](const account::ColumnDefinition& column) { return column.name == name; }))
          << key.table << "." << name;
    }
  }
}

TEST_P(CatalogueReport, OpensDocumentsByColumnsThatItHas) {
  for (const std::string_view name : report().documentColumns)
    EXPECT_TRUE(hasColumn(name)) << name;
  for (const auto needed : {report().sourceDocumentColumns, report().ledgerVoucherColumns}) {
    EXPECT_EQ(needed.empty(), !report().opensDocuments());
    for (const std::string_view name : needed)
      EXPECT_THAT(report().documentColumns, testing::Contains(name));
  }
}

TEST(Catalogue, TellsItsReportsApart) {
  std::set<std::string> names, identifiers;
  std::set<std::string_view> classes;
  for (const Report& report : reports()) {
    EXPECT_TRUE(names.insert(report.registration.name).second) << report.registration.name;
    EXPECT_TRUE(identifiers.insert(report.registration.identifier).second) << report.registration.name;
    EXPECT_TRUE(classes.insert(report.reportClass).second) << report.reportClass;
  }
}

TEST(Catalogue, TellsItsDialogsApart) {
  std::set<std::string_view> classes, traceNames;
  for (const DialogClass* dialog : dialogClasses()) {
    EXPECT_TRUE(classes.insert(dialog->name).second) << dialog->name;
    EXPECT_TRUE(traceNames.insert(dialog->traceName).second) << dialog->traceName;
  }
}

TEST(Catalogue, FindsAReportByItsName) {
  for (const Report& report : reports())
    EXPECT_EQ(&reportNamed(report.registration.name), &report);
  try {
    reportNamed("outsum");
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(error.what(), "there is no report \"outsum\"; the reports are: " + reportNames());
  }
  EXPECT_THAT(reportNames(), testing::StartsWith("sfc-item, outsum-item, fx-detail, fx-wt"));
  for (const Report& report : reports()) {
    EXPECT_THAT(reportNames(), testing::HasSubstr(report.registration.name));
  }
}

// A report that reads cost items of lines is touched by lines that do not sum, one that shows openings by those too.
TEST(Catalogue, SaysWhichReportsACheckTouches) {
  using account::Check;
  EXPECT_EQ(reportsTouchedBy(Check::lineSum), "sfc-item, outsum-item, fx-detail, fx-wt");
  EXPECT_EQ(reportsTouchedBy(Check::issueSum), "outsum-item");
  EXPECT_EQ(reportsTouchedBy(Check::openingBalance), "sfc-item, fx-detail");
  EXPECT_EQ(reportsTouchedBy(Check::periodGap), "fx-detail");
  EXPECT_EQ(reportsTouchedBy(Check::strayItem), "");
}

}  // namespace
}  // namespace quillon::workbench

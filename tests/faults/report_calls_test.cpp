// Every call of a report run fails once: what the report then does, what it leaves in the account and with the thread,
// and that the next run on the thread is right.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "frame/module.h"
#include "reports/fx_detail/fx_detail.h"
#include "reports/fx_wt/fx_wt.h"
#include "reports/outsum_item/outsum_item.h"
#include "reports/sfc_item/sfc_item.h"
#include "tests/faults/outside.h"
#include "tests/faults/tally.h"
#include "tests/faults/thread.h"
#include "tests/faults/tiny_account.h"
#include "tests/faults/trial.h"
#include "workbench/platform/filter_object.h"

namespace quillon::faults {
namespace {

using workbench::FilterObject;
using workbench::ItemRegistration;
using workbench::ReportRegistration;
using workbench::WorkbenchArgument;

struct Item {
  std::string key;
  std::string value = {};
  std::string value2 = {};
};

ItemRegistration itemOf(const std::string& key) {
  ItemRegistration item;
  item.key = key;
  item.column = "base." + key;
  return item;
}

// A filter of these items and of one that no report knows, so that it becomes a condition of the filter object's own.
std::shared_ptr<FilterObject> filterOf(const std::vector<Item>& items) {
  auto filter = std::make_shared<FilterObject>(ReportRegistration{});
  for (const Item& item : items) {
    workbench::FilterEntry& entry = filter->add(itemOf(item.key));
    entry.value = item.value;
    entry.value2 = item.value2;
  }
  filter->add(itemOf("cHandler"));
  return filter;
}

// --- What statements do to the account's tables ----------------------------------------------------------------------

std::string lowered(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The table behind the first `words` of a statement, without its brackets; empty when the words are not there.
std::string tableBehind(const std::string& sql, std::string_view words) {
  const std::size_t at = lowered(sql).find(words);
  if (at == std::string::npos) return {};
  const std::size_t start = at + words.size();
  std::string name = sql.substr(start, sql.find_first_of(" \r\n", start) - start);
  std::erase_if(name, [](char c) { return c == '[' || c == ']'; });
  return name;
}

// The tables that the statements before the failing call made and none of them dropped, by name. Tables of the session
// ("#...") go with the session.
std::vector<std::string> tablesMade(const Outside& outside, std::size_t failAt) {
  std::vector<std::string> tables;
  for (std::size_t i = 0; i < outside.calls().size() && i + 1 != failAt; ++i) {
    const OutsideCall& call = outside.calls()[i];
    if (call.member != "Session.execute") continue;
    const std::string verb = lowered(call.text.substr(call.text.find_first_not_of(' '), 6));
    if (verb == "select") {
      const std::string table = tableBehind(call.text, "into ");
      if (!table.empty() && table.front() != '#') tables.push_back(table);
    } else if (verb.starts_with("if ")) {
      std::erase(tables, tableBehind(call.text, "drop table "));
    }
  }
  std::ranges::sort(tables);
  return tables;
}

// --- The reports ------------------------------------------------------------------------------------------------------

// What is stated of a report's failures.
struct Rules {
  bool absorbsBuild = false;  // an error inside the build only leaves the connection open
  bool releasesAll = false;   // after a failed run nothing of the account stays with the thread
};
template <class Report>
constexpr Rules rules{.absorbsBuild = true};
template <>
constexpr Rules rules<FxDetail>{.releasesAll = true};
template <>
constexpr Rules rules<FxWt>{};

class ReportCalls : public testing::Test {
 protected:
  static constexpr std::string_view table = "ReportOfFaults";

  // One run; gives how it ended and, in `resultTable`, where the rows are.
  template <class Report>
  static Ending run(Thread& thread, const TinyAccount& account, const std::vector<Item>& items, std::size_t failAt,
                    std::string& resultTable) {
    WorkbenchArgument inner(filterOf(items), account.login(), std::string(table));
    const std::unique_ptr<ReportArgument> argument = watched(thread.outside, inner);
    Ending ending = runWithFault(thread.outside, failAt, [&] {
      Report report(thread.module);
      report.getSql(*argument);
    });
    resultTable = inner.dataSourceState().resultTable;
    return ending;
  }

  // A run without a fault: nothing stays but the result, whose rows it gives, and with the thread what it keeps for the
  // next run.
  template <class Report>
  static std::string cleanRun(Thread& thread, const TinyAccount& account, const std::vector<Item>& items) {
    std::string resultTable;
    const Ending ending = run<Report>(thread, account, items, 0, resultTable);
    EXPECT_FALSE(ending.has_value()) << ending->description();
    const std::vector<std::string> tables = account.newTables();
    EXPECT_EQ(tables, std::vector{resultTable});
    EXPECT_EQ(thread.outside.held(Thing::session), 0);
    EXPECT_EQ(thread.outside.held(Thing::filter), 0);
    EXPECT_EQ(thread.outside.held(Thing::other), 0);
    std::string rows = tables.empty() ? std::string() : account.rows("Select * From " + tables.front());
    account.drop(tables);
    return rows;
  }

  // What the thread holds after a run whose call `failAt` failed.
  template <class Report>
  static void expectHeld(const Thread& thread, std::size_t failAt, bool closing) {
    const Outside& outside = thread.outside;
    const auto was = [&](std::string_view member) { return answered(outside, failAt, member); };
    EXPECT_EQ(outside.held(Thing::filter), 0);
    EXPECT_EQ(outside.held(Thing::other), 0);
    const bool keeps = !rules<Report>.releasesAll;
    EXPECT_EQ(outside.held(Thing::session), keeps && !closing ? was("Platform.createSession") : 0);
    EXPECT_EQ(outside.held(Thing::login), keeps ? was("ReportArgument.login") : 0);
    EXPECT_EQ(outside.held(Thing::sharedComponent), (keeps ? was("Platform.createPublicComponent") : 0) +
                                                        was("Platform.createResourceService") +
                                                        was("Platform.createUniqueNameSource"));
  }

  // Whether the run that is tried gives rows.
  enum class Result { rows, empty };

  template <class Report>
  static void surviveCallFailures(const std::string& subject, const TinyAccount& account,
                                  const std::vector<Item>& items, const std::string& namingNumber = {},
                                  Result result = Result::rows) {
    Thread counted(account, namingNumber);
    const std::string expected = cleanRun<Report>(counted, account, items);
    const std::size_t calls = counted.outside.calls().size();
    EXPECT_EQ(std::ranges::count(expected, '\n') == 1 ? Result::empty : Result::rows, result);
    Tally tally(subject, "calls");
    for (std::size_t failAt = 1; failAt <= calls; ++failAt)
      tally.fault([&] { surviveCallFailure<Report>(account, items, namingNumber, failAt, expected); });
  }

  template <class Report>
  static void surviveCallFailure(const TinyAccount& account, const std::vector<Item>& items,
                                 const std::string& namingNumber, std::size_t failAt, const std::string& expected) {
    Thread thread(account, namingNumber);
    const Outside& outside = thread.outside;
    std::string resultTable;
    const Ending ending = run<Report>(thread, account, items, failAt, resultTable);
    ASSERT_GE(outside.calls().size(), failAt) << "the run was not the one that was counted";
    const OutsideCall failed = outside.calls()[failAt - 1];
    SCOPED_TRACE("call " + std::to_string(failAt) + ": " + shown(failed));

    const bool closing = failed.member == "Session.state" || failed.member == "Session.close";
    const bool absorbed =
        rules<Report>.absorbsBuild && answered(outside, failAt, "DataSource.resultTable") == 1 && !closing;
    if (absorbed) {
      EXPECT_FALSE(ending.has_value()) << "the build's error was passed on: " << ending->description();
      EXPECT_EQ(outside.calls().size(), failAt) << "the build went on after a call had failed";
      ASSERT_NE(thread.module.session, nullptr);
      EXPECT_NE(thread.module.session->state(), stateClosed) << "the connection is not left as it was";
    } else {
      expectPassedOn(ending, outside, failAt);
    }
    expectHeld<Report>(thread, failAt, closing);
    const std::vector<std::string> left = account.newTables();
    EXPECT_EQ(left, tablesMade(outside, failAt));
    account.drop(left);

    EXPECT_EQ(cleanRun<Report>(thread, account, items), expected);
  }
};

// --- MoveDataDetail on its own -----------------------------------------------------------------------------------------

// The build alone, over the connection that a build which failed at its first call has left open; then once more on the
// same instance, without a fault.
template <class Report>
void surviveMoveDataDetail(const std::string& subject, const TinyAccount& account, const std::vector<Item>& items,
                           std::string_view lastBeforeBuild) {
  const auto failFirst = [&](Thread& thread, Report& report, ReportArgument& argument) {
    runWithFault(thread.outside, 0, [&] { report.getSql(argument); });
    const auto& calls = thread.outside.calls();
    const auto before = std::ranges::find(calls, lastBeforeBuild, &OutsideCall::member);
    ASSERT_NE(before, calls.end());
    account.drop(account.newTables());
    const auto first = static_cast<std::size_t>(before - calls.begin()) + 2;
    runWithFault(thread.outside, first, [&] { report.getSql(argument); });
    ASSERT_NE(thread.module.session, nullptr);
    EXPECT_EQ(account.newTables(), std::vector<std::string>());
  };
  std::string text;
  const auto move = [&](Thread& thread, Report& report, std::size_t failAt) {
    text = "nothing";
    return runWithFault(thread.outside, failAt, [&] { text = report.moveDataDetail(); });
  };

  std::size_t calls = 0;
  std::string expected;
  Tally tally(subject, "calls");
  for (std::size_t failAt = 0; failAt <= calls; ++failAt) {
    const auto trial = [&] {
      Thread thread(account);
      const Outside& outside = thread.outside;
      WorkbenchArgument inner(filterOf(items), account.login(), "ReportOfFaults");
      const std::unique_ptr<ReportArgument> argument = watched(thread.outside, inner);
      Report report(thread.module);
      failFirst(thread, report, *argument);
      if (failAt > 0) {
        const Ending ending = move(thread, report, failAt);
        SCOPED_TRACE("call " + std::to_string(failAt) + " of " + subject);
        if (rules<Report>.absorbsBuild) {
          EXPECT_FALSE(ending.has_value()) << ending->description();
          EXPECT_EQ(text, " ");
          EXPECT_EQ(outside.calls().size(), failAt) << "the build went on after a call had failed";
        } else {
          expectPassedOn(ending, outside, failAt);
        }
        const std::vector<std::string> left = account.newTables();
        EXPECT_EQ(left, tablesMade(outside, failAt));
        account.drop(left);
      }
      EXPECT_FALSE(move(thread, report, 0).has_value());
      EXPECT_EQ(text, "");
      ASSERT_NE(thread.module.session, nullptr) << "MoveDataDetail on its own closes nothing";
      EXPECT_NE(thread.module.session->state(), stateClosed);
      EXPECT_EQ(outside.held(Thing::session), 1);
      EXPECT_EQ(account.newTables(), std::vector<std::string>{"ReportOfFaults"});
      const std::string rows = account.rows("Select * From ReportOfFaults");
      if (failAt == 0) {
        calls = outside.calls().size();
        expected = rows;
      }
      EXPECT_EQ(rows, expected);
      account.drop(account.newTables());
    };
    if (failAt == 0) {
      trial();
    } else {
      tally.fault(trial);
    }
  }
}

// --- Receipt/issue/balance ---------------------------------------------------------------------------------------------

// A range of dates that begins within the year, so that earlier lines become openings.
std::vector<Item> summaryItems(const std::string& mode) {
  return {{"iYear", "2024"},
          {"cModal", mode},
          {"iGrade", "1"},
          {"dKeepDate", "2024-05-01", "2024-09-30"},
          {"cInvCode", std::string(TinyAccount::inventory)}};
}

TEST_F(ReportCalls, SfcItemByCostItemClasses) {
  surviveCallFailures<SfcItem>("sfc-item by cost-item classes", byWarehouse(), summaryItems("0"));
}

TEST_F(ReportCalls, SfcItemByCostItems) {
  surviveCallFailures<SfcItem>("sfc-item by cost items", byWarehouse(), summaryItems("1"));
}

TEST_F(ReportCalls, MoveDataDetailOfSfcItem) {
  surviveMoveDataDetail<SfcItem>("sfc-item, MoveDataDetail", byWarehouse(), summaryItems("0"),
                                 "DataSource.resultTable");
}

TEST_F(ReportCalls, SfcItemByExpenseTypes) {
  surviveCallFailures<SfcItem>("sfc-item by expense types", byWarehouse(), summaryItems("2"));
}

// The group index is dropped by its bare name, which an account takes when it begins with a letter.
TEST_F(ReportCalls, SfcItemWithBalanceConditions) {
  std::vector<Item> items = summaryItems("1");
  items.push_back({"cFSType", "1"});
  surviveCallFailures<SfcItem>("sfc-item with balance conditions", byWarehouse(), items, "N7");
}

// --- Outbound summary --------------------------------------------------------------------------------------------------

TEST_F(ReportCalls, OutsumItemByCostItemClasses) {
  surviveCallFailures<OutsumItem>("outsum-item by cost-item classes", byWarehouse(), summaryItems("0"));
}

TEST_F(ReportCalls, OutsumItemByCostItems) {
  std::vector<Item> items = summaryItems("1");
  items.push_back({"cSource", "1"});
  surviveCallFailures<OutsumItem>("outsum-item by cost items", byWarehouse(), items);
}

TEST_F(ReportCalls, MoveDataDetailOfOutsumItem) {
  surviveMoveDataDetail<OutsumItem>("outsum-item, MoveDataDetail", byWarehouse(), summaryItems("0"),
                                    "DataSource.resultTable");
}

TEST_F(ReportCalls, OutsumItemByExpenseItems) {
  surviveCallFailures<OutsumItem>("outsum-item by expense items", byWarehouse(), summaryItems("2"));
}

// --- Detail ledger -----------------------------------------------------------------------------------------------------

// An item that is not given is there all the same.
std::vector<Item> ledgerItems(const std::vector<Item>& given) {
  std::vector<Item> items = given;
  for (const char* key : {"cInvCode", "cDepCode", "cWhCode", "iYear", "dKeepDate", "cBatchIA"}) {
    if (std::ranges::find(items, key, &Item::key) == items.end()) items.push_back({key});
  }
  for (int number = 1; number <= 10; ++number)
    items.push_back({"cFree" + std::to_string(number)});
  return items;
}

TEST_F(ReportCalls, FxDetailByWarehouse) {
  surviveCallFailures<FxDetail>("fx-detail by warehouse", byWarehouse(),
                                ledgerItems({{"iYear", "2024"},
                                             {"cInvCode", std::string(TinyAccount::inventory)},
                                             {"cWhCode", std::string(TinyAccount::warehouse)},
                                             {"dKeepDate", "2024-05-01", "2024-07-31"}}));
}

TEST_F(ReportCalls, FxDetailByDepartment) {
  const std::string department = byDepartment().value(
      "Select Top 1 cAccDep From ia_subsidiary Where cInvCode = N'0402-00019' And cAccDep Is Not Null");
  surviveCallFailures<FxDetail>(
      "fx-detail by department", byDepartment(),
      ledgerItems({{"iYear", "2024"}, {"cInvCode", std::string(TinyAccount::inventory)}, {"cDepCode", department}}));
}

// Cost items start in 2024: an empty result.
TEST_F(ReportCalls, FxDetailOfAYearWithoutCostItems) {
  surviveCallFailures<FxDetail>("fx-detail of a year without cost items", byWarehouse(),
                                ledgerItems({{"iYear", "2023"},
                                             {"cInvCode", std::string(TinyAccount::inventory)},
                                             {"cWhCode", std::string(TinyAccount::warehouse)}}),
                                {}, Result::empty);
}

TEST_F(ReportCalls, FxDetailByInventory) {
  surviveCallFailures<FxDetail>("fx-detail by inventory", byInventory(),
                                ledgerItems({{"iYear", "2024"}, {"cInvCode", std::string(TinyAccount::inventory)}}));
}

// --- Voucher report ----------------------------------------------------------------------------------------------------

std::vector<Item> voucherItems() {
  return {{"dKeepDate", "2024-01-01", "2024-12-31"},
          {"cVouType", "01\t30\t32\t08"},
          {"Inventory.cInvCode", std::string(TinyAccount::inventory)}};
}

TEST_F(ReportCalls, FxWt) {
  surviveCallFailures<quillon::FxWt>("fx-wt", byWarehouse(), voucherItems());
}

TEST_F(ReportCalls, MoveDataDetailOfFxWt) {
  surviveMoveDataDetail<quillon::FxWt>("fx-wt, MoveDataDetail", byWarehouse(), voucherItems(),
                                       "ReportArgument.languageId");
}

}  // namespace
}  // namespace quillon::faults

// The ledgers of sample accounts, one account a valuation method, and sums of ia_subsidiary that tests compare them with.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "tests/workbench/platform/temporary_file.h"
#include "workbench/account/account.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

struct ValuedAccount {
  const char* name;
  account::Valuation valuation;
  const char* placeKey;  // the filter item of the place by which costs are kept; null for none

  friend void PrintTo(const ValuedAccount& account, std::ostream* out) { *out << account.name; }
};
inline constexpr std::array valuedAccounts = {ValuedAccount{"inventory", account::Valuation::inventory, nullptr},
                                              ValuedAccount{"warehouse", account::Valuation::warehouse, "cWhCode"},
                                              ValuedAccount{"department", account::Valuation::department, "cDepCode"}};

inline std::string nameOfAccount(const testing::TestParamInfo<ValuedAccount>& info) {
  return info.param.name;
}

inline constexpr int lastYear = account::lastSampleYear;

// Made once for all tests. Of the first year, cost items begin with April.
inline const std::filesystem::path& sampleOf(const ValuedAccount& account) {
  static std::map<std::string, std::unique_ptr<TemporaryFile>> files;
  auto& file = files[account.name];
  if (!file) {
    file = std::make_unique<TemporaryFile>(".qacc");
    account::createSample(file->path(), {.rows = 6000, .seed = 7, .years = 2, .valuation = account.valuation});
  }
  return file->path();
}

// One ledger: an inventory, and a place where costs are kept by one.
struct LedgerChoice {
  std::string place;
  std::string inventory;

  std::vector<std::string> settings(const ValuedAccount& account, int year) const {
    std::vector<std::string> settings = {"iYear=" + std::to_string(year), "cInvCode=" + inventory};
    if (account.placeKey != nullptr) settings.push_back(std::string(account.placeKey) + "=" + place);
    return settings;
  }
  // The ledger's lines in ia_subsidiary, by this alias; direct shipments and opening differences never come in.
  std::string condition(const ValuedAccount& account, int year, const std::string& alias) const {
    std::string text = alias + ".iYear = " + std::to_string(year) + " And " + alias + ".cInvCode = N'" + inventory +
                       "' And " + alias + ".cVouType <> N'33' And IsNull(" + alias +
                       ".cBusType, N'') Not In (N'直运销售', N'直运采购')";
    if (account.placeKey != nullptr) text += " And " + alias + "." + account.placeKey + " = N'" + place + "'";
    return text;
  }
};

// `count` ledgers of the year, evenly chosen among all that have a movement.
inline std::vector<LedgerChoice> someLedgers(const ValuedAccount& account, int year, std::size_t count) {
  std::vector<LedgerChoice> all;
  const auto connection = tsql::Connection::open(sampleOf(account), tsql::OpenMode::readOnly);
  const std::string place = account.placeKey == nullptr ? "N''" : account.placeKey;
  const auto rows =
      connection->query("Select Distinct " + place +
                        " As cPlace, cInvCode From ia_subsidiary Where iMonth > 0 And iYear = " + std::to_string(year) +
                        " And IsNull(cBusType, N'') Not In (N'直运销售', N'直运采购') Order By 1, 2");
  while (rows->next()) {
    LedgerChoice choice{tsql::toText(rows->value(0)).value_or(""), tsql::toText(rows->value(1)).value_or("")};
    if (account.placeKey == nullptr || !choice.place.empty()) all.push_back(std::move(choice));
  }
  std::vector<LedgerChoice> chosen;
  for (std::size_t i = 0; i < count && i < all.size(); ++i)
    chosen.push_back(all[i * all.size() / std::min(count, all.size())]);
  return chosen;
}

// A number without the zeros at its end, so that 1.50 and 1.5000 are the same; "0" for nothing.
inline std::string plainNumber(const tsql::Value& value) {
  std::string text = tsql::toText(value).value_or("0");
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text == "-0" || text.empty() ? "0" : text;
}

// The rows of a query: the key from its first columns, joined by bars, and the numbers from the others.
inline std::map<std::string, std::vector<std::string>> numbersByKey(tsql::Database& account, const std::string& query,
                                                                    std::size_t keyColumns) {
  std::map<std::string, std::vector<std::string>> result;
  const auto rows = account.query(query);
  while (rows->next()) {
    std::string key;
    for (std::size_t i = 0; i < keyColumns; ++i)
      key += (i == 0 ? "" : "|") + tsql::toText(rows->value(i)).value_or("");
    std::vector<std::string>& numbers = result[key];
    for (std::size_t i = keyColumns; i < rows->columns().size(); ++i)
      numbers.push_back(plainNumber(rows->value(i)));
  }
  return result;
}

}  // namespace quillon::workbench::test

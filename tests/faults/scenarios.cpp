#include "tests/faults/scenarios.h"

#include <algorithm>
#include <cctype>

#include "workbench/catalogue/catalogue.h"

namespace quillon::faults {

using workbench::FilterObject;
using workbench::ItemRegistration;
using workbench::ReportRegistration;
using workbench::RowValues;

namespace {

ItemRegistration itemOf(const std::string& key) {
  ItemRegistration item;
  item.key = key;
  item.column = "base." + key;
  return item;
}

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

// A report's registration with only those of its items that its dialog looks at.
ReportRegistration dialogOf(const ReportRegistration& report, const std::vector<std::string>& keys) {
  ReportRegistration reduced{
      .name = report.name, .chinese = report.chinese, .english = report.english, .identifier = report.identifier};
  for (const auto& item : report.items) {
    if (std::ranges::find(keys, item.key) != keys.end()) reduced.items.push_back(item);
  }
  return reduced;
}

}  // namespace

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

std::vector<Item> summaryItems(const std::string& mode) {
  return {{"iYear", "2024"},
          {"cModal", mode},
          {"iGrade", "1"},
          {"dKeepDate", "2024-05-01", "2024-09-30"},
          {"cInvCode", std::string(TinyAccount::inventory)}};
}

std::vector<Item> ledgerItems(const std::vector<Item>& given) {
  std::vector<Item> items = given;
  for (const char* key : {"cInvCode", "cDepCode", "cWhCode", "iYear", "dKeepDate", "cBatchIA"}) {
    if (std::ranges::find(items, key, &Item::key) == items.end()) items.push_back({key});
  }
  for (int number = 1; number <= 10; ++number)
    items.push_back({"cFree" + std::to_string(number)});
  return items;
}

std::vector<Item> voucherItems() {
  return {{"dKeepDate", "2024-01-01", "2024-12-31"},
          {"cVouType", "01\t30\t32\t08"},
          {"Inventory.cInvCode", std::string(TinyAccount::inventory)}};
}

Changes changesOf(const std::vector<std::string>& statements) {
  Changes changes;
  for (const std::string& sql : statements) {
    constexpr std::size_t verbLength = 6;
    const std::string verb = lowered(sql.substr(sql.find_first_not_of(' '), verbLength));
    if (verb == "select") {
      const std::string table = tableBehind(sql, "into ");
      if (table.empty() || table.front() == '#') continue;
      changes.any = true;
      changes.tables.push_back(table);
    } else if (verb.starts_with("if ")) {
      std::erase(changes.tables, tableBehind(sql, "drop table "));
    }
  }
  std::ranges::sort(changes.tables);
  return changes;
}

ReportRegistration balanceDialog() {
  return dialogOf(workbench::reportNamed("sfc-item").registration,
                  {"iYear", "cModal", "cFSType", "bIncludeExpire", "bIncludeTransVouch", "iGrade", "cInvClass",
                   "cInvCode", "cWhCode", "cDepCode"});
}

ReportRegistration outboundDialog() {
  return dialogOf(
      workbench::reportNamed("outsum-item").registration,
      {"iYear", "cModal", "cSource", "iGrade", "cVouType", "cBusType", "cInvCCode", "cInvCode", "cWhCode", "cDepCode"});
}

ReportRegistration voucherDialog() {
  return dialogOf(workbench::reportNamed("fx-wt").registration,
                  {"cVouType", "cBusType", "Inventory.cInvCCode", "Inventory.cInvCode", "Customer.cCCCode",
                   "Customer.cCusCode", "Vendor.cVCCode", "Vendor.cVenCode", "cWhCode", "cDepCode"});
}

ReportRegistration ledgerDialog() {
  return dialogOf(workbench::reportNamed("fx-detail").registration,
                  {"iYear", "cCaType", "cInvCCode", "cInvCode", "cWhCode", "cDepCode", "cBatchIA", "cFree1"});
}

std::string stateOf(const FilterObject& filter) {
  std::string text;
  for (const auto& entry : filter.entries()) {
    text += entry->item.key + "=" + entry->value + ".." + entry->value2 + (entry->available ? " " : " unavailable ") +
            entry->lookupCondition;
    for (const workbench::Choice& choice : entry->item.choices)
      text += " " + choice.code + ":" + choice.chinese;
    text += "\n";
  }
  return text;
}

RowValues rowOf(const std::string& condition, const std::string& type) {
  const auto field = [&](const std::string& column) {
    return byWarehouse().value("Select Top 1 " + column + " From ia_subsidiary Where " + condition);
  };
  RowValues row = {{"cVouType", type},      {"cVouCode", field("cVouCode")}, {"cBusType", field("cBusType")},
                   {"ID", field("AutoID")}, {"cPZID", field("cPZID")},       {"iPZID", ""}};
  row.back().second =
      byWarehouse().value("Select Top 1 i_id From gl_AccVouch Where coutNo_ID = N'" + row[4].second + "'");
  return row;
}

RowValues rowOfType(const std::string& type) {
  return rowOf("cVouType = N'" + type + "' Order By AutoID", type);
}

RowValues postedRow() {
  return rowOf("cPZID Is Not Null And iMonth <> 0 Order By AutoID", "32");
}

}  // namespace quillon::faults

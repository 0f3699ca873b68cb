#include "tests/faults/tiny_account.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "workbench/account/account.h"

namespace quillon::faults {

namespace {

// Beside the inventory's first months stays one line of each voucher type that a drill-through tells apart, and of the
// second kind of issue adjustments.
constexpr std::array thinOut = {
    "Delete From ia_subsidiary Where (cInvCode Is Null Or cInvCode <> N'0402-00019' Or iMonth > 6) And AutoID Not In "
    "(Select Min(AutoID) From ia_subsidiary Where cVouType In (N'20', N'21', N'24', N'30', N'32', N'70') Group By "
    "cVouType) And AutoID Not In (Select Min(AutoID) From ia_subsidiary Where cBusType = N'分项调整')",
    // The sample has no planned price adjustment.
    "Update ia_subsidiary Set cVouType = N'22' Where cVouType = N'70'",
    "Delete From ia_subsidiary_Item Where iSubID Not In (Select AutoID From ia_subsidiary)",
    "Delete From ia_subsidiary_ItemOut Where iSubID Not In (Select AutoID From ia_subsidiary)",
    "Delete From IA_Subsidiary_QC Where cInvCode <> N'0402-00019'",
    "Delete From IA_Subsidiary_QC_Item Where iSubQcID Not In (Select AutoID From IA_Subsidiary_QC)",
    "Delete From Ca_CostExpDetail_Period Where iPeriod > 202404",
    // A ledger without dates ends with month 5.
    "Update IA_PeriodState Set bSettled = 0 Where iMonth > 4",
    // The ledger asks for the conditions of what the inventory is checked for.
    "Update Inventory Set bCheckBatch = 1, bCheckFree1 = 1 Where cInvCode = N'0402-00019'",
};

}  // namespace

TinyAccount::TinyAccount(account::Valuation valuation, int costItemStartMonth)
    : source_(workbench::AccountSource::inFile(file_.path()).withScratch(scratch_.file())) {
  account::SampleOptions options;
  options.rows = account::minimumSampleRowsAYear;
  options.years = 1;
  options.valuation = valuation;
  options.costItemStartMonth = costItemStartMonth;
  account::createSample(file_.path(), options);
  for (const char* statement : thinOut)
    open()->execute(statement);
  account_ = source_.open(tsql::OpenMode::existing);
  tables_ = account_->tables("");
  std::ranges::sort(tables_);
}

std::unique_ptr<tsql::Connection> TinyAccount::open() const {
  return tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
}

std::shared_ptr<workbench::AccountSession> TinyAccount::openSession() const {
  auto session = std::make_shared<workbench::AccountSession>();
  session->setAccount(source_);
  session->open("", "", optionsUnspecified);
  return session;
}

std::shared_ptr<workbench::WorkbenchLogin> TinyAccount::login() const {
  return std::make_shared<workbench::WorkbenchLogin>(
      workbench::accountLogin(*openSession(), source_, workbench::Language::chinese, "", ""));
}

std::vector<std::string> TinyAccount::newTables() const {
  std::vector<std::string> now = account_->tables("");
  std::ranges::sort(now);
  std::vector<std::string> added;
  std::ranges::set_difference(now, tables_, std::back_inserter(added));
  return added;
}

void TinyAccount::drop(const std::vector<std::string>& tables) const {
  for (const std::string& table : tables)
    account_->execute("Drop Table [" + table + "]");
}

std::string TinyAccount::rows(const std::string& sql) const {
  const std::unique_ptr<tsql::Cursor> cursor = account_->query(sql);
  std::vector<std::string> lines;
  while (cursor->next()) {
    std::string line;
    for (std::size_t column = 0; column < cursor->columns().size(); ++column)
      line += tsql::toText(cursor->value(column)).value_or("null") + "|";
    lines.push_back(std::move(line));
  }
  std::ranges::sort(lines);
  std::string text;
  for (const tsql::Column& column : cursor->columns())
    text += column.name + "|";
  text += "\n";
  for (const std::string& line : lines)
    text += line + "\n";
  return text;
}

std::string TinyAccount::value(const std::string& sql) const {
  const std::unique_ptr<tsql::Cursor> cursor = account_->query(sql);
  if (!cursor->next()) return {};
  return tsql::toText(cursor->value(0)).value_or("");
}

const TinyAccount& byWarehouse() {
  static const TinyAccount account(account::Valuation::warehouse, 4);
  return account;
}

const TinyAccount& byDepartment() {
  static const TinyAccount account(account::Valuation::department, 1);
  return account;
}

const TinyAccount& byInventory() {
  static const TinyAccount account(account::Valuation::inventory, 4);
  return account;
}

}  // namespace quillon::faults

#include "tests/long_life/small_account.h"

#include <cstdlib>
#include <sstream>

#include "workbench/account/account.h"
#include "workbench/cli/drill_command.h"
#include "workbench/cli/run_notes.h"
#include "workbench/platform/account_source.h"
#include "workbench/presentation/report_output.h"
#include "workbench/runs/report_run.h"

namespace quillon::long_life {

namespace {

constexpr const char* mostLines =
    "(Select Top 1 cInvCode From ia_subsidiary Where cInvCode Is Not Null Group By cInvCode Order By Count(*) Desc, "
    "cInvCode)";

// The ledger of one inventory stays, and a line of every voucher type. Its dialog shall not ask for batch and free items.
void thinOut(tsql::Connection& account) {
  account.execute("Delete From ia_subsidiary Where (cInvCode Is Null Or cInvCode <> " + std::string(mostLines) +
                  ") And AutoID Not In (Select Min(AutoID) From ia_subsidiary Group By cVouType)");
  std::string asksForNothing = "bCheckBatch = 0";
  for (const tsql::Column& column : account.describe("Inventory"))
    if (column.name.starts_with("bCheckFree")) asksForNothing += ", " + column.name + " = 0";
  account.execute("Update Inventory Set " + asksForNothing);
  account.execute("Delete From ia_subsidiary_Item Where iSubID Not In (Select AutoID From ia_subsidiary)");
  account.execute("Delete From ia_subsidiary_ItemOut Where iSubID Not In (Select AutoID From ia_subsidiary)");
}

}  // namespace

SmallAccount::SmallAccount(std::uint64_t seed) {
  account::createSample(
      file_.path(),
      {.rows = 500, .seed = seed, .years = 1, .valuation = account::Valuation::inventory, .costItemStartMonth = 1});
  {
    const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::existing);
    thinOut(*account);
  }
  inventory_ = value(std::string("Select cInvCode From Inventory Where cInvCode = ") + mostLines);
  voucherType_ = value(
      "Select Top 1 cVouType From ia_subsidiary Where cVouType In (N'10', N'11', N'32') Group By cVouType Order By "
      "Count(*) Desc, cVouType");
}

std::string SmallAccount::value(const std::string& sql) const {
  const auto account = tsql::Connection::open(file_.path(), tsql::OpenMode::readOnly);
  const auto rows = account->query(sql);
  if (!rows->next()) throw std::runtime_error("no row for: " + sql);
  return tsql::toText(rows->value(0)).value_or("");
}

std::vector<Use> SmallAccount::uses() const {
  using Kind = Use::Kind;
  std::vector<Use> uses;
  for (const char* report : {"sfc-item", "outsum-item"}) {
    for (const char* mode : {"cModal=0", "cModal=1", "cModal=2"})
      uses.push_back({.kind = Kind::report, .report = report, .settings = {mode}});
    uses.push_back({.kind = Kind::reportWithDialog, .report = report, .settings = {"cModal=1"}});
  }
  for (const Kind kind : {Kind::report, Kind::reportWithDialog}) {
    uses.push_back({.kind = kind, .report = "fx-detail", .settings = {"cInvCode=" + inventory_}});
    uses.push_back({.kind = kind, .report = "fx-wt", .settings = {"cVouType=" + voucherType_}});
  }
  uses.push_back({.kind = Kind::document, .report = "fx-wt", .settings = {"cVouType=" + voucherType_}});
  return uses;
}

std::string SmallAccount::resultOf(const Use& use) const {
  const workbench::ReportRequest request{.report = use.report,
                                         .account = workbench::AccountSource::inFile(file_.path()),
                                         .settings = use.settings,
                                         .dialog = use.kind == Use::Kind::reportWithDialog};
  std::ostringstream out, notes;
  if (use.kind == Use::Kind::document) {
    workbench::runDrill(
        {.report = request, .row = {"cVouType=" + voucherType_}, .format = workbench::DrillFormat::json}, out, notes);
  } else {
    workbench::RunNotes observer(notes, workbench::Language::english);
    workbench::writeCsv(out, workbench::makeReport(request, observer)->table());
  }
  return out.str() + notes.str();
}

int numberFromEnvironment(const char* name, int otherwise) {
  const char* const text = std::getenv(name);
  return text == nullptr ? otherwise : std::stoi(text);
}

}  // namespace quillon::long_life

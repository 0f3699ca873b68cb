// QuillonWorkbench.Platform: the stand-alone platform for scripts. While it has an account open, the script's process
// finds the workbench's components under the platform's ProgIDs, and under ADO's the embedded account, unless the
// account is on a server: then ADO is the machine's own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/dispatch_object.h"
#include "component/ado_session.h"
#include "workbench/account/scratch.h"
#include "workbench/com/exposed_platform.h"
#include "workbench/platform/account_source.h"

namespace quillon::workbench {

// Keeps what the last failing statement of any session said, so that a script can ask why a report is incomplete.
class FailureKeeper final : public SessionMonitor {
 public:
  void opened() override {}
  void started(std::string_view) override {}
  void finished(std::string_view, double, std::int64_t) override {}
  void failed(const StatementFailure& failure) override { last_ = failure; }
  void closed() override {}

  const StatementFailure& last() const { return last_; }

 private:
  StatementFailure last_;
};

// Keeps what the user was told and shown, for scripts to read.
struct ShownToUser {
  std::vector<automation::Variant> messages;
  std::vector<automation::Variant> vouchers;
};

// Its members:
// - Language: "zh" (the default) or "en"; written before OpenAccount.
// - OpenAccount(source): an account file, its connection string, or ADO's connection string to an account on a server;
//   once for an object. An account file is only read; the reports' tables lie in a scratch file that goes with the object.
// - NewArgument(report): an argument object e for the report ("sfc-item"): a filter with its defaults, the account's
//   login, a data source whose SQL is a fresh table name, and RelateData without a row until TakeRow gives it one.
// - NewDialog(report): the same with a filter in which nothing is entered yet and which is in a dialog: e.rawFilter is
//   what a filter-control class takes. For embedded accounts.
// - Query(sql): a Recordset with the rows of a query on the platform's own connection, which finds the reports' result
//   tables.
// - FailureNumber, FailureText, FailureStatement: SQL Server's number and text of the last statement that failed on an
//   embedded account in this process (0 and empty when none did), and the statement: what a report absorbed is read
//   here.
// - Messages, Vouchers: collections of what reports and dialogs told the user and of the documents that they opened, in
//   order, since the account was opened (objects of voucher_objects.h).
// - LiveObjects: how many of the workbench's automation objects are alive.
class WorkbenchPlatform : public automation::DispatchObject<WorkbenchPlatform> {
 public:
  static std::span<const Member> members();

 private:
  automation::Variant language(automation::Call& call);
  automation::Variant openAccount(automation::Call& call);
  automation::Variant newArgument(automation::Call& call);
  automation::Variant newDialog(automation::Call& call);
  automation::Variant query(automation::Call& call);
  automation::Variant failureNumber(automation::Call& call);
  automation::Variant failureText(automation::Call& call);
  automation::Variant failureStatement(automation::Call& call);
  automation::Variant messages(automation::Call& call);
  automation::Variant vouchers(automation::Call& call);
  automation::Variant liveObjects(automation::Call& call);
  const char* sourceName() const override { return "QuillonWorkbench.Platform"; }

  component::AdoSession& account();

  Language language_ = Language::chinese;
  std::shared_ptr<FailureKeeper> failures_ = std::make_shared<FailureKeeper>();
  std::shared_ptr<ShownToUser> shown_ = std::make_shared<ShownToUser>();
  std::optional<account::Scratch> scratch_;  // outlives the connections to it
  AccountSource source_;
  std::unique_ptr<EmbeddedPlatform> platform_;
  std::optional<PlatformStandIn> standIn_;
  std::optional<component::AdoSession> account_;  // open
};

}  // namespace quillon::workbench

// An ADO look-alike over the embedded account: the automation objects that a script or Quillon.dll finds under ADO's
// own ProgIDs in a process where EmbeddedAdo lives. Only what the library and the workbench's scripts use of ADO is
// here, and what is here behaves as ADO's: argument forms, states, error codes, the Errors collection.
//
// Rows are always read to the client when a recordset opens, whatever cursor is asked for; nothing is updatable.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "automation/class_factory.h"
#include "automation/dispatch_object.h"
#include "workbench/platform/account_session.h"

namespace quillon::workbench {

// One entry of a connection's Errors: what the account said when a statement or the opening failed.
struct ProviderError {
  HResult number = 0;
  std::string description;
  std::string source;
  int nativeError = 0;  // SQL Server's number; 0 when the failure was no statement's
};

// ADODB.Connection. Its members:
//   CursorLocation, ConnectionTimeout, CommandTimeout  read and written
//   ConnectionString                                   read; written while closed
//   Open([connection string], [user], [password], [options])
//   Execute(command text, [by reference: records affected], [options])
//                                                      gives a Recordset, closed when there are no rows
//   State                                              0 closed, 1 open
//   Close, Errors, Version, Provider
class AdoConnection : public automation::DispatchObject<AdoConnection> {
 public:
  static std::span<const Member> members();

  // `monitor` watches the session; it may be null.
  explicit AdoConnection(std::shared_ptr<SessionMonitor> monitor)
      : monitor_(std::move(monitor)), session_(std::make_shared<AccountSession>(monitor_.get())) {}
  // A connection that shares `session`, which is open already.
  AdoConnection(std::shared_ptr<SessionMonitor> monitor, std::shared_ptr<AccountSession> session)
      : monitor_(std::move(monitor)), session_(std::move(session)) {}

  // The connection behind an automation reference, or null when it is another program's object.
  static automation::ComPtr<AdoConnection> from(IDispatch* object);
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;

  AccountSession& session() { return *session_; }
  const std::shared_ptr<SessionMonitor>& monitor() const { return monitor_; }
  int cursorLocation() const { return cursorLocation_; }
  void openWith(const std::string& connectionString);
  BatchResult runBatch(const std::string& sql);

 private:
  automation::Variant cursorLocationMember(automation::Call& call);
  automation::Variant connectionString(automation::Call& call);
  automation::Variant connectionTimeout(automation::Call& call);
  automation::Variant commandTimeout(automation::Call& call);
  automation::Variant open(automation::Call& call);
  automation::Variant execute(automation::Call& call);
  automation::Variant state(automation::Call& call);
  automation::Variant close(automation::Call& call);
  automation::Variant errors(automation::Call& call);
  automation::Variant version(automation::Call& call);
  automation::Variant provider(automation::Call& call);
  const char* sourceName() const override { return "ADODB.Connection"; }

  // Runs `action`; a failure of the account (not one of how ADO is used) becomes the content of Errors.
  template <typename Action>
  auto collectingErrors(Action action);

  std::shared_ptr<SessionMonitor> monitor_;
  std::shared_ptr<AccountSession> session_;
  int cursorLocation_ = static_cast<int>(CursorLocation::server);
  int connectionTimeout_ = 15;  // ADO's defaults, in seconds
  int commandTimeout_ = 30;
  std::shared_ptr<std::vector<ProviderError>> errors_ = std::make_shared<std::vector<ProviderError>>();
};

// ADODB.Recordset. Its members:
//   Open([source], [connection object or string], [cursor type], [lock type], [options])
//                                                       what is left out is taken from the properties of that name
//   Source, ActiveConnection, CursorLocation, CursorType, LockType
//                                                       read; written while closed
//   EOF, BOF, MoveFirst, MoveNext, RecordCount, State, Close
//   Fields, Fields(name or position)                    the recordset's default member
//   GetRows([count])                                    a two-dimensional array: field, row
class AdoRecordset : public automation::DispatchObject<AdoRecordset> {
 public:
  static std::span<const Member> members();

  explicit AdoRecordset(std::shared_ptr<SessionMonitor> monitor) : monitor_(std::move(monitor)) {}
  // The recordset that Execute gives: open when the batch gave rows.
  AdoRecordset(automation::ComPtr<AdoConnection> connection, std::string source,
               std::unique_ptr<AccountRecordset> rows);

  // The open rows; throws ADO's "closed" otherwise.
  AccountRecordset& rows();
  // The position of a field given by name (in any letter case) or by position. Throws ADO's 0x800A0CC1.
  int fieldPosition(const automation::Variant& index);

 private:
  automation::Variant open(automation::Call& call);
  automation::Variant source(automation::Call& call);
  automation::Variant activeConnection(automation::Call& call);
  automation::Variant cursorLocation(automation::Call& call);
  automation::Variant cursorType(automation::Call& call);
  automation::Variant lockType(automation::Call& call);
  automation::Variant endOfFile(automation::Call& call);
  automation::Variant beginOfFile(automation::Call& call);
  automation::Variant moveFirst(automation::Call& call);
  automation::Variant moveNext(automation::Call& call);
  automation::Variant recordCount(automation::Call& call);
  automation::Variant fields(automation::Call& call);
  automation::Variant getRows(automation::Call& call);
  automation::Variant state(automation::Call& call);
  automation::Variant close(automation::Call& call);
  const char* sourceName() const override { return "ADODB.Recordset"; }

  bool isOpen() const { return rows_ && rows_->isOpen(); }
  void connect(const automation::Variant& connection);
  automation::Variant setting(automation::Call& call, int& value);

  std::shared_ptr<SessionMonitor> monitor_;
  automation::ComPtr<AdoConnection> connection_;
  std::string source_;
  int cursorLocation_ = 0;  // 0: the connection's
  int cursorType_ = static_cast<int>(CursorType::forwardOnly);
  int lockType_ = static_cast<int>(LockType::readOnly);
  std::unique_ptr<AccountRecordset> rows_;
};

// Makes ADODB.Connection and ADODB.Recordset mean the embedded account in this thread's apartment for as long as it
// lives. The registry is not touched, and other processes see nothing of it.
class EmbeddedAdo {
 public:
  // `monitor` watches every session that is opened; it may be null. Throws AutomationError.
  explicit EmbeddedAdo(const std::shared_ptr<SessionMonitor>& monitor);

 private:
  automation::InProcessClass connection_;
  automation::InProcessClass recordset_;
};

}  // namespace quillon::workbench

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
class AdoConnection : public com::Automation<AdoConnection> {
 public:
  static std::span<const Member> members();

  // `monitor` watches the session; it may be null.
  explicit AdoConnection(std::shared_ptr<SessionMonitor> monitor)
      : monitor_(std::move(monitor)), session_(std::make_shared<AccountSession>(monitor_.get())) {}
  // A connection that shares `session`, which is open already.
  AdoConnection(std::shared_ptr<SessionMonitor> monitor, std::shared_ptr<AccountSession> session)
      : monitor_(std::move(monitor)), session_(std::move(session)) {}

  // The connection behind an automation reference, or null when it is another program's object.
  static com::ComPtr<AdoConnection> from(IDispatch* object);
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;

  AccountSession& session() { return *session_; }
  const std::shared_ptr<SessionMonitor>& monitor() const { return monitor_; }
  int cursorLocation() const { return cursorLocation_; }
  void openWith(const std::string& connectionString);
  BatchResult runBatch(const std::string& sql);

 private:
  com::Variant cursorLocationMember(com::Call& call);
  com::Variant connectionString(com::Call& call);
  com::Variant connectionTimeout(com::Call& call);
  com::Variant commandTimeout(com::Call& call);
  com::Variant open(com::Call& call);
  com::Variant execute(com::Call& call);
  com::Variant state(com::Call& call);
  com::Variant close(com::Call& call);
  com::Variant errors(com::Call& call);
  com::Variant version(com::Call& call);
  com::Variant provider(com::Call& call);
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
class AdoRecordset : public com::Automation<AdoRecordset> {
 public:
  static std::span<const Member> members();

  explicit AdoRecordset(std::shared_ptr<SessionMonitor> monitor) : monitor_(std::move(monitor)) {}
  // The recordset that Execute gives: open when the batch gave rows.
  AdoRecordset(com::ComPtr<AdoConnection> connection, std::string source, std::unique_ptr<AccountRecordset> rows);

  // The open rows; throws ADO's "closed" otherwise.
  AccountRecordset& rows();
  // The position of a field given by name (in any letter case) or by position. Throws ADO's 0x800A0CC1.
  int fieldPosition(const com::Variant& index);

 private:
  com::Variant open(com::Call& call);
  com::Variant source(com::Call& call);
  com::Variant activeConnection(com::Call& call);
  com::Variant cursorLocation(com::Call& call);
  com::Variant cursorType(com::Call& call);
  com::Variant lockType(com::Call& call);
  com::Variant endOfFile(com::Call& call);
  com::Variant beginOfFile(com::Call& call);
  com::Variant moveFirst(com::Call& call);
  com::Variant moveNext(com::Call& call);
  com::Variant recordCount(com::Call& call);
  com::Variant fields(com::Call& call);
  com::Variant getRows(com::Call& call);
  com::Variant state(com::Call& call);
  com::Variant close(com::Call& call);
  const char* sourceName() const override { return "ADODB.Recordset"; }

  bool isOpen() const { return rows_ && rows_->isOpen(); }
  void connect(const com::Variant& connection);
  com::Variant setting(com::Call& call, int& value);

  std::shared_ptr<SessionMonitor> monitor_;
  com::ComPtr<AdoConnection> connection_;
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
  com::InProcessClass connection_;
  com::InProcessClass recordset_;
};

}  // namespace quillon::workbench

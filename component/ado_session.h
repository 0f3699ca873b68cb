// Session and Recordset (ports of the core) over an ADO Connection: the library calls the ports, the adapters call ADO's
// objects late-bound by member name.
#pragma once

#include "automation/late_bound.h"
#include "frame/session.h"

namespace quillon::component {

class AdoRecordset : public Recordset {
 public:
  // `recordset` is an open ADO Recordset.
  explicit AdoRecordset(automation::LateBound recordset) : recordset_(std::move(recordset)) {}

  bool eof() override;
  void moveNext() override;
  std::optional<std::string> text(int position) override;
  void close() override;

 private:
  automation::LateBound recordset_;
};

class AdoSession : public Session {
 public:
  // `connection` is an ADO Connection, or any object with its members.
  explicit AdoSession(automation::LateBound connection) : connection_(std::move(connection)) {}

  void setCursorLocation(CursorLocation location) override;
  void setConnectionString(std::string_view text) override;
  void setConnectionTimeout(int seconds) override;
  void setCommandTimeout(int seconds) override;
  void open(std::string_view user, std::string_view password, int options) override;
  std::int64_t execute(std::string_view sql) override;
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override;
  int state() override;
  void close() override;
  void retire() noexcept override { retired_ = true; }

  // The connection itself, for the platform's components that take it. Throws throwTakenOver() for a retired session.
  const automation::ComPtr<IDispatch>& connection() const { return inUse().object(); }

 private:
  const automation::LateBound& inUse() const;

  automation::LateBound connection_;
  bool retired_ = false;
};

// A connection as Basic passes it to a ByRef parameter: the callee sees a variable that holds it, ours stays as it is.
class ConnectionVariable {
 public:
  // `session` is an AdoSession; throws std::bad_cast for another.
  explicit ConnectionVariable(Session& session);
  ConnectionVariable(const ConnectionVariable&) = delete;
  ConnectionVariable& operator=(const ConnectionVariable&) = delete;
  ~ConnectionVariable();
  automation::Variant reference() { return automation::Variant::reference(object_); }

 private:
  IDispatch* object_;
};

}  // namespace quillon::component

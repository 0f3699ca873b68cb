#include "component/ado_session.h"

#include <charconv>

#include "component/adapter_of.h"
#include "component/platform_bindings.h"

namespace quillon::component {

using automation::createObject;
using automation::LateBound;
using automation::toText;
using automation::toTextOrNull;
using automation::Variant;

namespace ado = bindings::ado;

bool AdoRecordset::eof() {
  return recordset_.flag(ado::eof);
}

void AdoRecordset::moveNext() {
  recordset_.call(ado::moveNext);
}

std::optional<std::string> AdoRecordset::text(int position) {
  const LateBound field = recordset_.object(ado::fields, "ADODB.Fields").item(position, "ADODB.Field");
  return toTextOrNull(field.get(ado::value));
}

void AdoRecordset::close() {
  recordset_.call(ado::close);
}

// A running call may lead to the run that retires the session, so the connection itself stays until the session goes.
const LateBound& AdoSession::inUse() const {
  if (retired_) throwTakenOver();
  return connection_;
}

void AdoSession::setCursorLocation(CursorLocation location) {
  inUse().put(ado::cursorLocation, static_cast<int>(location));
}

void AdoSession::setConnectionString(std::string_view text) {
  inUse().put(ado::connectionString, text);
}

void AdoSession::setConnectionTimeout(int seconds) {
  inUse().put(ado::connectionTimeout, seconds);
}

void AdoSession::setCommandTimeout(int seconds) {
  inUse().put(ado::commandTimeout, seconds);
}

void AdoSession::open(std::string_view user, std::string_view password, int options) {
  inUse().call(ado::open, {"", user, password, options});
}

std::int64_t AdoSession::execute(std::string_view sql) {
  Variant affected;
  inUse().call(ado::execute, {sql, Variant::reference(affected), optionsUnspecified});
  // ADO counts in a long; a look-alike may leave the variable empty or count further.
  const std::string count = toText(affected);
  std::int64_t number = 0;
  std::from_chars(count.data(), count.data() + count.size(), number);
  return number;
}

std::unique_ptr<Recordset> AdoSession::query(std::string_view sql, const QueryOptions& options) {
  LateBound recordset = createObject(bindings::recordset);
  if (options.cursorLocation) recordset.put(ado::cursorLocation, static_cast<int>(*options.cursorLocation));
  recordset.call(ado::open, {sql, connection(), static_cast<int>(options.cursorType),
                             static_cast<int>(options.lockType), optionsUnspecified});
  return std::make_unique<AdoRecordset>(std::move(recordset));
}

int AdoSession::state() {
  return inUse().integer(ado::state);
}

void AdoSession::close() {
  inUse().call(ado::close);
}

ConnectionVariable::ConnectionVariable(Session& session) : object_(adapterOf<AdoSession>(session).connection().get()) {
  if (object_) object_->AddRef();
}

ConnectionVariable::~ConnectionVariable() {
  if (object_) object_->Release();
}

}  // namespace quillon::component

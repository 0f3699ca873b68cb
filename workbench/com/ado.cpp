#include "workbench/com/ado.h"

#include <algorithm>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "workbench/com/ado_values.h"
#include "workbench/com/variant_list.h"

namespace quillon::workbench {

using automation::Call;
using automation::ComPtr;
using automation::makeObject;
using automation::Variant;

namespace {

// ADO's own errors, by which its callers tell a wrong use from a failing statement.
constexpr HResult wrongArguments = static_cast<HResult>(0x800A0BB9U);
constexpr HResult noCurrentRow = static_cast<HResult>(0x800A0BCDU);
constexpr HResult noSuchItem = static_cast<HResult>(0x800A0CC1U);
constexpr HResult noOpenConnection = static_cast<HResult>(0x800A0E7DU);

constexpr int stateOpen = 1;
constexpr int countUnknown = -1;

// An interface id that only an AdoConnection of this program answers to; no other program knows it.
constexpr GUID embeddedConnectionId = {0x8a0d0c52, 0x64f3, 0x4a0e, {0x9b, 0x35, 0x1d, 0x5c, 0x3e, 0x7a, 0x92, 0x11}};

AutomationError adoError(HResult code, const char* source, std::string description) {
  return {code, source, std::move(description)};
}

// The item of a collection that `index` names: by position from 0, or by name through `named`, which gives -1 for none.
template <typename Named>
int positionOf(const Variant& index, std::size_t count, const char* source, Named named) {
  int position = -1;
  if (index.vt == VT_BSTR) {
    position = named(automation::toText(index));
  } else {
    position = automation::toInteger(index);
  }
  if (position < 0 || static_cast<std::size_t>(position) >= count) {
    throw adoError(noSuchItem, source, "The collection has no item \"" + automation::toText(index) + "\".");
  }
  return position;
}

bool sameName(const std::string& left, const std::string& right) {
  return CompareStringOrdinal(automation::toWide(left).c_str(), -1, automation::toWide(right).c_str(), -1, TRUE) ==
         CSTR_EQUAL;
}

// A field of a recordset; its value is the current row's, whenever it is read.
class AdoField : public automation::DispatchObject<AdoField> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Value", DISPID_VALUE, automation::readable, 0, 0, &AdoField::value},
        {L"Name", 1, automation::readable, 0, 0, &AdoField::name},
        {L"Type", 2, automation::readable, 0, 0, &AdoField::type},
        {L"DefinedSize", 3, automation::readable, 0, 0, &AdoField::definedSize},
        {L"Precision", 4, automation::readable, 0, 0, &AdoField::precision},
        {L"NumericScale", 5, automation::readable, 0, 0, &AdoField::numericScale},
    };
    return table;
  }

  AdoField(ComPtr<AdoRecordset> recordset, int position) : recordset_(std::move(recordset)), position_(position) {}

 private:
  const tsql::Column& column() { return recordset_->rows().columns()[static_cast<std::size_t>(position_)]; }
  Variant value(Call&) { return adoValue(recordset_->rows().field(position_), column().type); }
  Variant name(Call&) { return column().name; }
  Variant type(Call&) { return static_cast<int>(adoType(column().type)); }
  Variant definedSize(Call&) { return column().type.width; }
  Variant precision(Call&) { return column().type.precision; }
  Variant numericScale(Call&) { return column().type.scale; }
  const char* sourceName() const override { return "ADODB.Field"; }

  ComPtr<AdoRecordset> recordset_;
  int position_;
};

class AdoFields : public automation::DispatchObject<AdoFields> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, automation::readable, 1, 1, &AdoFields::item},
        {L"Count", 1, automation::readable, 0, 0, &AdoFields::count},
        {L"_NewEnum", DISPID_NEWENUM, automation::readable, 0, 0, &AdoFields::each},
    };
    return table;
  }

  explicit AdoFields(ComPtr<AdoRecordset> recordset) : recordset_(std::move(recordset)) {}

 private:
  Variant field(int position) { return makeObject<AdoField>(recordset_, position); }
  Variant item(Call& call) { return field(recordset_->fieldPosition(call.value(0))); }
  Variant count(Call&) { return static_cast<int>(recordset_->rows().columns().size()); }
  Variant each(Call&) {
    std::vector<Variant> fields;
    const int size = static_cast<int>(recordset_->rows().columns().size());
    for (int position = 0; position < size; ++position)
      fields.push_back(field(position));
    return enumeratorOf(std::move(fields));
  }
  const char* sourceName() const override { return "ADODB.Fields"; }

  ComPtr<AdoRecordset> recordset_;
};

class AdoError : public automation::DispatchObject<AdoError> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Description", DISPID_VALUE, automation::readable, 0, 0, &AdoError::description},
        {L"Number", 1, automation::readable, 0, 0, &AdoError::number},
        {L"Source", 2, automation::readable, 0, 0, &AdoError::source},
        {L"NativeError", 3, automation::readable, 0, 0, &AdoError::nativeError},
    };
    return table;
  }

  explicit AdoError(ProviderError error) : error_(std::move(error)) {}

 private:
  Variant description(Call&) { return error_.description; }
  Variant number(Call&) { return static_cast<int>(error_.number); }
  Variant source(Call&) { return error_.source; }
  Variant nativeError(Call&) { return error_.nativeError; }

  ProviderError error_;
};

// Shows the connection's errors as they are at each moment, also after the next statement.
class AdoErrors : public automation::DispatchObject<AdoErrors> {
 public:
  static std::span<const Member> members() {
    static constexpr Member table[] = {
        {L"Item", DISPID_VALUE, automation::readable, 1, 1, &AdoErrors::item},
        {L"Count", 1, automation::readable, 0, 0, &AdoErrors::count},
        {L"Clear", 2, automation::callable, 0, 0, &AdoErrors::clear},
        {L"_NewEnum", DISPID_NEWENUM, automation::readable, 0, 0, &AdoErrors::each},
    };
    return table;
  }

  explicit AdoErrors(std::shared_ptr<std::vector<ProviderError>> errors) : errors_(std::move(errors)) {}

  Variant at(const Variant& index) {
    const int position = positionOf(index, errors_->size(), "ADODB.Errors", [](const std::string&) { return -1; });
    return makeObject<AdoError>((*errors_)[static_cast<std::size_t>(position)]);
  }

 private:
  Variant item(Call& call) { return at(call.value(0)); }
  Variant count(Call&) { return static_cast<int>(errors_->size()); }
  Variant clear(Call&) {
    errors_->clear();
    return {};
  }
  Variant each(Call&) {
    std::vector<Variant> errors;
    for (const ProviderError& error : *errors_)
      errors.emplace_back(makeObject<AdoError>(error));
    return enumeratorOf(std::move(errors));
  }

  std::shared_ptr<std::vector<ProviderError>> errors_;
};

// A two-dimensional array of variants, field by row, with rows from the current one on.
Variant arrayOfRows(AccountRecordset& rows, int wanted) {
  const std::size_t fields = rows.columns().size();
  std::vector<Variant> values;
  for (int taken = 0; taken != wanted && !rows.eof(); ++taken, rows.moveNext()) {
    for (std::size_t field = 0; field < fields; ++field) {
      values.push_back(adoValue(rows.field(static_cast<int>(field)), rows.columns()[field].type));
    }
  }
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(fields), 0}, {static_cast<ULONG>(values.size() / fields), 0}};
  Variant result;
  result.parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (!result.parray) throw std::bad_alloc();
  result.vt = VT_ARRAY | VT_VARIANT;
  // The first dimension runs fastest in memory: row after row, as they were read.
  VARIANT* place = nullptr;
  if (FAILED(SafeArrayAccessData(result.parray, reinterpret_cast<void**>(&place)))) throw std::bad_alloc();
  for (Variant& value : values)
    *place++ = value.release();
  SafeArrayUnaccessData(result.parray);
  return result;
}

}  // namespace

// --- Connection

auto AdoConnection::members() -> std::span<const Member> {
  static constexpr Member table[] = {
      {L"CursorLocation", 1, automation::readable | automation::writable, 0, 0, &AdoConnection::cursorLocationMember},
      {L"ConnectionString", DISPID_VALUE, automation::readable | automation::writable, 0, 0,
       &AdoConnection::connectionString},
      {L"ConnectionTimeout", 2, automation::readable | automation::writable, 0, 0, &AdoConnection::connectionTimeout},
      {L"CommandTimeout", 3, automation::readable | automation::writable, 0, 0, &AdoConnection::commandTimeout},
      {L"Open", 4, automation::callable, 0, 4, &AdoConnection::open},
      {L"Execute", 5, automation::callable, 1, 3, &AdoConnection::execute},
      {L"State", 6, automation::readable, 0, 0, &AdoConnection::state},
      {L"Close", 7, automation::callable, 0, 0, &AdoConnection::close},
      {L"Errors", 8, automation::readable, 0, 1, &AdoConnection::errors},
      {L"Version", 9, automation::readable, 0, 0, &AdoConnection::version},
      {L"Provider", 10, automation::readable, 0, 0, &AdoConnection::provider},
  };
  return table;
}

ComPtr<AdoConnection> AdoConnection::from(IDispatch* object) {
  void* found = nullptr;
  if (!object || FAILED(object->QueryInterface(embeddedConnectionId, &found))) return {};
  return ComPtr<AdoConnection>::adopt(static_cast<AdoConnection*>(found));
}

STDMETHODIMP AdoConnection::QueryInterface(REFIID id, void** object) {
  if (!object || id != embeddedConnectionId) return DispatchObject::QueryInterface(id, object);
  AddRef();
  *object = this;
  return S_OK;
}

template <typename Action>
auto AdoConnection::collectingErrors(Action action) {
  errors_->clear();
  try {
    return action();
  } catch (const AutomationError& error) {
    // ADO keeps its own refusals (of the control facility) out of the collection.
    if (HRESULT_FACILITY(error.code()) != FACILITY_CONTROL) {
      const auto& failure = session_->lastFailure();
      const bool statement = failure && failure->message == error.description();
      errors_->push_back({error.code(), error.description(), error.source(), statement ? failure->number : 0});
    }
    throw;
  }
}

void AdoConnection::openWith(const std::string& connectionString) {
  session_->setConnectionString(connectionString);
  collectingErrors([this] { session_->open("", "", optionsUnspecified); });
}

BatchResult AdoConnection::runBatch(const std::string& sql) {
  return collectingErrors([&] { return session_->runBatch(sql); });
}

Variant AdoConnection::cursorLocationMember(Call& call) {
  if (call.assigns()) cursorLocation_ = automation::toInteger(call.assigned());
  return cursorLocation_;
}

Variant AdoConnection::connectionString(Call& call) {
  if (call.assigns()) session_->setConnectionString(automation::toText(call.assigned()));
  return session_->connectionText();
}

Variant AdoConnection::connectionTimeout(Call& call) {
  if (call.assigns()) connectionTimeout_ = automation::toInteger(call.assigned());
  return connectionTimeout_;
}

Variant AdoConnection::commandTimeout(Call& call) {
  if (call.assigns()) commandTimeout_ = automation::toInteger(call.assigned());
  return commandTimeout_;
}

Variant AdoConnection::open(Call& call) {
  // User, password and options are taken and make no difference: an embedded account has no users.
  const std::string text = call.given(0) ? call.text(0) : std::string();
  openWith(text.empty() ? session_->connectionText() : text);
  return {};
}

Variant AdoConnection::execute(Call& call) {
  std::string sql = call.text(0);
  BatchResult result = runBatch(sql);
  if (call.given(1)) call.writeBack(1, Variant(static_cast<int>(result.rowsAffected)));
  return makeObject<AdoRecordset>(ComPtr<AdoConnection>(this), std::move(sql), std::move(result.recordset));
}

Variant AdoConnection::state(Call&) {
  return session_->state();
}

Variant AdoConnection::close(Call&) {
  session_->close();
  return {};
}

Variant AdoConnection::errors(Call& call) {
  ComPtr<AdoErrors> errors = makeObject<AdoErrors>(errors_);
  if (call.given(0)) return errors->at(call.value(0));
  return errors;
}

Variant AdoConnection::version(Call&) {
  return "2.8";  // of ADO's interface, which callers compare with
}

Variant AdoConnection::provider(Call&) {
  return sessionSource;
}

// --- Recordset

auto AdoRecordset::members() -> std::span<const Member> {
  static constexpr Member table[] = {
      {L"Fields", DISPID_VALUE, automation::readable, 0, 1, &AdoRecordset::fields},
      {L"Open", 1, automation::callable, 0, 5, &AdoRecordset::open},
      {L"Source", 2, automation::readable | automation::writable, 0, 0, &AdoRecordset::source},
      {L"ActiveConnection", 3, automation::readable | automation::writable, 0, 0, &AdoRecordset::activeConnection},
      {L"CursorLocation", 4, automation::readable | automation::writable, 0, 0, &AdoRecordset::cursorLocation},
      {L"CursorType", 5, automation::readable | automation::writable, 0, 0, &AdoRecordset::cursorType},
      {L"LockType", 6, automation::readable | automation::writable, 0, 0, &AdoRecordset::lockType},
      {L"EOF", 7, automation::readable, 0, 0, &AdoRecordset::endOfFile},
      {L"BOF", 8, automation::readable, 0, 0, &AdoRecordset::beginOfFile},
      {L"MoveFirst", 9, automation::callable, 0, 0, &AdoRecordset::moveFirst},
      {L"MoveNext", 10, automation::callable, 0, 0, &AdoRecordset::moveNext},
      {L"RecordCount", 11, automation::readable, 0, 0, &AdoRecordset::recordCount},
      {L"GetRows", 12, automation::callable, 0, 1, &AdoRecordset::getRows},
      {L"State", 13, automation::readable, 0, 0, &AdoRecordset::state},
      {L"Close", 14, automation::callable, 0, 0, &AdoRecordset::close},
  };
  return table;
}

AdoRecordset::AdoRecordset(ComPtr<AdoConnection> connection, std::string source, std::unique_ptr<AccountRecordset> rows)
    : monitor_(connection->monitor()),
      connection_(std::move(connection)),
      source_(std::move(source)),
      cursorLocation_(connection_->cursorLocation()),
      rows_(std::move(rows)) {}

AccountRecordset& AdoRecordset::rows() {
  if (!isOpen()) {
    throw adoError(objectClosed, sourceName(), "The recordset is closed; open it with a query that gives rows first.");
  }
  return *rows_;
}

int AdoRecordset::fieldPosition(const Variant& index) {
  const std::span<const tsql::Column> columns = rows().columns();
  return positionOf(index, columns.size(), "ADODB.Fields", [columns](const std::string& name) {
    const auto found =
        std::ranges::find_if(columns, [&](const tsql::Column& column) { return sameName(column.name, name); });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
  });
}

void AdoRecordset::connect(const Variant& connection) {
  if (connection.vt == VT_DISPATCH || connection.vt == VT_UNKNOWN) {
    const ComPtr<IDispatch> object = automation::toObject(connection);
    connection_ = AdoConnection::from(object.get());
    if (object && !connection_) {
      throw adoError(wrongArguments, sourceName(),
                     "The active connection must be an ADODB.Connection of this program.");
    }
    return;
  }
  ComPtr<AdoConnection> opened = makeObject<AdoConnection>(monitor_);
  opened->openWith(automation::toText(connection));
  connection_ = std::move(opened);
}

Variant AdoRecordset::open(Call& call) {
  if (isOpen()) throw adoError(objectOpen, sourceName(), "The recordset is open already; close it first.");
  if (call.given(0)) source_ = call.text(0);
  if (call.given(1)) connect(call.value(1));
  if (call.given(2) && call.integer(2) != optionsUnspecified) cursorType_ = call.integer(2);
  if (call.given(3) && call.integer(3) != optionsUnspecified) lockType_ = call.integer(3);
  if (source_.empty())
    throw adoError(wrongArguments, sourceName(), "The recordset has no query to open: give a source.");
  if (!connection_ || connection_->session().state() == stateClosed) {
    throw adoError(noOpenConnection, sourceName(), "The recordset needs an open connection: open one and pass it.");
  }
  if (cursorLocation_ == 0) cursorLocation_ = connection_->cursorLocation();
  rows_ = connection_->runBatch(source_).recordset;
  // Rows at the client can be walked in any direction, and ADO says so in the type.
  if (cursorLocation_ == static_cast<int>(CursorLocation::client)) cursorType_ = static_cast<int>(CursorType::fixed);
  return {};
}

Variant AdoRecordset::source(Call& call) {
  if (call.assigns()) {
    if (isOpen()) throw adoError(objectOpen, sourceName(), "The source cannot change while the recordset is open.");
    source_ = automation::toText(call.assigned());
  }
  return source_;
}

Variant AdoRecordset::activeConnection(Call& call) {
  if (call.assigns()) {
    if (isOpen()) throw adoError(objectOpen, sourceName(), "The connection cannot change while the recordset is open.");
    connect(call.assigned());
  }
  return connection_;
}

Variant AdoRecordset::setting(Call& call, int& value) {
  if (call.assigns()) {
    if (isOpen()) throw adoError(objectOpen, sourceName(), "The cursor cannot change while the recordset is open.");
    value = automation::toInteger(call.assigned());
  }
  return value;
}

Variant AdoRecordset::cursorLocation(Call& call) {
  int location = cursorLocation_ == 0 ? static_cast<int>(CursorLocation::server) : cursorLocation_;
  Variant result = setting(call, location);
  if (call.assigns()) cursorLocation_ = location;
  return result;
}

Variant AdoRecordset::cursorType(Call& call) {
  return setting(call, cursorType_);
}

Variant AdoRecordset::lockType(Call& call) {
  return setting(call, lockType_);
}

Variant AdoRecordset::endOfFile(Call&) {
  return rows().eof();
}

Variant AdoRecordset::beginOfFile(Call&) {
  return rows().rowCount() == 0;  // nothing here moves before the first row
}

Variant AdoRecordset::moveFirst(Call&) {
  if (rows().rowCount() == 0)
    throw adoError(noCurrentRow, sourceName(), "The recordset is empty; it has no first row.");
  rows().moveFirst();
  return {};
}

Variant AdoRecordset::moveNext(Call&) {
  rows().moveNext();
  return {};
}

Variant AdoRecordset::recordCount(Call&) {
  const int count = static_cast<int>(rows().rowCount());
  // A forward-only cursor at the server does not know how far it will go.
  const bool forwardOnly = cursorType_ == static_cast<int>(CursorType::forwardOnly) &&
                           cursorLocation_ == static_cast<int>(CursorLocation::server);
  return forwardOnly ? countUnknown : count;
}

Variant AdoRecordset::fields(Call& call) {
  const ComPtr<AdoRecordset> self(this);
  if (call.given(0)) return makeObject<AdoField>(self, fieldPosition(call.value(0)));
  return makeObject<AdoFields>(self);
}

Variant AdoRecordset::getRows(Call& call) {
  constexpr int all = -1;
  const int wanted = call.given(0) ? call.integer(0) : all;
  if (rows().eof()) throw adoError(noCurrentRow, sourceName(), "The recordset has no current row to read from.");
  return arrayOfRows(rows(), wanted);
}

Variant AdoRecordset::state(Call&) {
  return isOpen() ? stateOpen : stateClosed;
}

Variant AdoRecordset::close(Call&) {
  rows().close();
  return {};
}

// --- Registration

EmbeddedAdo::EmbeddedAdo(const std::shared_ptr<SessionMonitor>& monitor)
    : connection_(automation::classIdOf(component::bindings::connection),
                  [monitor] { return ComPtr<IUnknown>(makeObject<AdoConnection>(monitor)); }),
      recordset_(automation::classIdOf(component::bindings::recordset),
                 [monitor] { return ComPtr<IUnknown>(makeObject<AdoRecordset>(monitor)); }) {}

}  // namespace quillon::workbench

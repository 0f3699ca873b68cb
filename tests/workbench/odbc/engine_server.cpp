#include "tests/workbench/odbc/engine_server.h"

#include "frame/text.h"
#include "tests/workbench/odbc/scripted_server.h"
#include "workbench/tsql/engine/engine.h"
#include "workbench/tsql/values/datetime.h"

namespace quillon::odbc::test {

namespace {

constexpr SQLULEN nanosecondsPerTick = 1'000'000'000 / 300;

ResultColumn resultColumn(const tsql::Column& column) {
  ResultColumn result{.name = utf16(column.name)};
  const tsql::Type& type = column.type;
  switch (type.kind) {
    case tsql::Kind::integer:
      result.sqlType = SQL_INTEGER;
      break;
    case tsql::Kind::bigInt:
      result.sqlType = SQL_BIGINT;
      break;
    case tsql::Kind::bit:
      result.sqlType = SQL_BIT;
      break;
    case tsql::Kind::real:
      result.sqlType = SQL_DOUBLE;
      break;
    case tsql::Kind::dateTime:
      result.sqlType = SQL_TYPE_TIMESTAMP;
      break;
    case tsql::Kind::decimal:
      result.sqlType = SQL_DECIMAL;
      result.size = static_cast<SQLULEN>(type.precision);
      result.digits = static_cast<SQLSMALLINT>(type.scale);
      break;
    case tsql::Kind::money:
      result.sqlType = SQL_DECIMAL;
      result.size = 19;
      result.digits = 4;
      result.typeName = u"money";
      break;
    case tsql::Kind::nVarChar:
    case tsql::Kind::varChar:
      result.sqlType = type.kind == tsql::Kind::nVarChar ? SQL_WVARCHAR : SQL_VARCHAR;
      result.size = type.width == tsql::Type::maxWidth ? 0 : static_cast<SQLULEN>(type.width);
      break;
  }
  return result;
}

Cell cellOf(const tsql::Value& value) {
  if (tsql::isNull(value)) return {};
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return *integer;
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* text = std::get_if<std::string>(&value)) return utf16(*text);
  if (const auto* time = std::get_if<tsql::DateTime>(&value)) {
    const tsql::DateTimeParts parts = tsql::partsOf(*time);
    return SQL_TIMESTAMP_STRUCT{static_cast<SQLSMALLINT>(parts.year),
                                static_cast<SQLUSMALLINT>(parts.month),
                                static_cast<SQLUSMALLINT>(parts.day),
                                static_cast<SQLUSMALLINT>(parts.hour),
                                static_cast<SQLUSMALLINT>(parts.minute),
                                static_cast<SQLUSMALLINT>(parts.second),
                                static_cast<SQLUINTEGER>(static_cast<SQLULEN>(parts.ticks) * nanosecondsPerTick)};
  }
  return tsql::toText(value).value();
}

// A batch's results in the order in which the engine gives them.
class Collector final : public tsql::ResultSink {
 public:
  void columns(std::span<const tsql::Column> columns) override {
    Result& result = results.emplace_back();
    for (const auto& column : columns)
      result.columns.push_back(resultColumn(column));
    inRows_ = true;
  }
  void row(std::span<const tsql::Value> values) override {
    auto& row = results.back().rows.emplace_back();
    for (const auto& value : values)
      row.push_back(cellOf(value));
  }
  void rowsAffected(std::int64_t count) override {
    if (!inRows_) results.push_back({.rowCount = count});
    inRows_ = false;
  }

  std::vector<Result> results;

 private:
  bool inRows_ = false;
};

// The batch as the embedded engine takes it.
std::string ofBabelfish(std::string sql) {
  if (sql == "Select @@Version As version")
    return "Select N'Babelfish for PostgreSQL with SQL Server Compatibility - 12.0.2000.8' As version";
  if (sql.find("tempdb..sysobjects") != std::string::npos) throw tsql::SqlError(33557097, "relation does not exist");
  if (sql.find("rvsystem..") != std::string::npos) throw tsql::SqlError(911, "database \"orvsystem\" does not exist");
  replaceAll(sql, "periods.", "orvsystem..");
  return sql;
}

class EngineSession final : public ServerSession {
 public:
  EngineSession(EngineServer& server, const std::filesystem::path& account)
      : server_(server), account_(tsql::Connection::open(account, tsql::OpenMode::existing)) {
    ++server_.openSessions;
  }
  EngineSession(const EngineSession&) = delete;
  EngineSession& operator=(const EngineSession&) = delete;
  ~EngineSession() override { --server_.openSessions; }

  std::vector<Result> run(const std::u16string& sql) override {
    if (!server_.takesBatch())
      return {{.error = {{.state = u"08S01", .number = 10054, .text = u"[Test][Engine]The server was killed."}}}};
    ++server_.batches;
    // The engine has no option of that name, and never cuts a text.
    if (sql.starts_with(u"Set TextSize ")) return {};
    Collector collector;
    try {
      account_->run(server_.isBabelfish ? ofBabelfish(utf8(sql)) : utf8(sql), collector);
    } catch (const tsql::SqlError& error) {
      Result failure;
      const auto other = server_.otherNumbers.find(error.number());
      failure.error = {{.state = u"42000",
                        .number = other == server_.otherNumbers.end() ? error.number() : other->second,
                        .line = error.line(),
                        .text = u"[Test][Engine][SQL Server]" + utf16(error.message())}};
      collector.results.push_back(std::move(failure));
    }
    return std::move(collector.results);
  }

 private:
  EngineServer& server_;
  std::unique_ptr<tsql::Connection> account_;
};

}  // namespace

std::string EngineServer::connectionString() {
  return ScriptedServer::connectionString();
}

std::unique_ptr<ServerSession> EngineServer::connect(const std::u16string& connectionString,
                                                     std::vector<Record>& refusal) {
  connectedWith.push_back(connectionString);
  if (batchesToLive_ != 0) return std::make_unique<EngineSession>(*this, account_);
  refusal = {{.state = u"08001", .text = u"[Test][Engine]There is no server."}};
  return nullptr;
}

}  // namespace quillon::odbc::test

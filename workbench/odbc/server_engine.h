// Servers that speak the dialect and are not SQL Server itself: what one of them lacks, and what it takes instead. Only the
// workbench asks for it; the component's texts go as they are wherever the host platform sends them.
#pragma once

#include <string>
#include <string_view>

namespace quillon::odbc {

// The keyword of a connection string, for the workbench alone: where the tables of the system database are on a server
// that has no database `orvsystem`. "periods" is a schema, "other.." a database, "other.periods" both.
inline constexpr std::string_view systemTablesKeyword = "OrvSystem";

class ServerEngine {
 public:
  // SQL Server with a system database: every text goes as it is.
  ServerEngine() = default;
  // `version` is what the server says of itself (@@Version); `systemTables` the keyword's value, empty without it.
  ServerEngine(std::string_view version, std::string_view systemTables);

  // The batch as this server takes it. Texts in quotes, quoted names and comments stay, but for those that the table of
  // server_engine.cpp has.
  std::string rewritten(std::string_view sql) const;

 private:
  std::string version_;
  std::string systemTables_;  // with its dots
};

}  // namespace quillon::odbc

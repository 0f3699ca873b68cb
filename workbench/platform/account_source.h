// Which account is meant: what a user wrote as SOURCE, or what a login gives as its connection string.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "workbench/odbc/connection_string.h"
#include "workbench/odbc/odbc_database.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench {

// An account in a file of this machine, or one on a server. It is made where the text comes in, the command line or the
// port of a session, and passed on as it is: nothing behind reads the text again.
//
// A text that begins with a keyword of connection strings (Data Source, Driver, DSN, FileDSN, Server, Provider), or that
// names an ODBC driver or data source anywhere, is a connection string; every other text is the name of a file, which
// may hold "=" and ";". A connection string with no other keyword than Data Source, Scratch, Mode=Read and a password is
// that of the file that Data Source names (the password is ignored, a file has none); every other one is a server's.
// Scratch names the scratch file of a report run: see withScratch(); Mode=Read: see readOnly().
class AccountSource {
 public:
  // Names no account; file() and open() throw.
  AccountSource() = default;
  // Takes any UTF-8 text; one that names no account is refused by file() and open().
  explicit AccountSource(std::string text);
  // The account in `file`, however that is called.
  static AccountSource inFile(const std::filesystem::path& file);
  // The same account for a report: open() then only reads its file, whatever mode is asked for, and what is created lies
  // in the file `scratch` (account::Scratch). Whoever opens the connection string has the same. For a file.
  AccountSource withScratch(const std::filesystem::path& scratch) const;
  // The same account for who only looks something up: a file is only read, and needs no scratch file. A server's is as it
  // was.
  AccountSource readOnly() const;

  bool onServer() const { return server_.has_value(); }

  // The account's file. Throws std::invalid_argument, saying what to do, when the account is on a server or no account
  // is named.
  std::filesystem::path file() const;

  // As it was written, password and all.
  const std::string& text() const { return text_; }
  // As it was written, to be shown: without the password.
  const std::string& shown() const { return shown_; }
  // The scratch file; empty when there is none.
  const std::filesystem::path& scratch() const { return scratch_; }
  // The connection string, as the login's OrvDbName: a server's as it was written, a file's as Data Source="FILE", with
  // Scratch="FILE" or Mode=Read behind it when it has them.
  std::string connectionString() const;

  // Connects to the account: a file in that mode, a server with those options. Throws tsql::SqlError when it cannot be
  // opened, and std::invalid_argument as file() does, and for a server whose connection string is not ODBC's.
  std::unique_ptr<tsql::Database> open(tsql::OpenMode mode, odbc::ConnectOptions options = {}) const;

 private:
  std::unique_ptr<tsql::Database> openFile(tsql::OpenMode mode) const;

  std::string text_;
  std::string shown_;
  std::string file_;  // UTF-8; empty when the account is on a server or none is named
  std::filesystem::path scratch_;
  bool readOnly_ = false;
  std::optional<odbc::ConnectionString> server_;
};

// The connection string of the account in `file`, as the login's OrvDbName.
std::string connectionString(const std::filesystem::path& file);

}  // namespace quillon::workbench

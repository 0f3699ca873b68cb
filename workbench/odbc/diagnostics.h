// What driver manager, driver and server say about a call: ODBC's diagnostic records.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "workbench/messages/told_error.h"
#include "workbench/odbc/api.h"
#include "workbench/odbc/odbc_database.h"

namespace quillon::odbc {

// All records of the last call on `handle`, the most important first.
std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT handleType, SQLHANDLE handle);

// Whether they tell that there is no connection to the server (any more).
bool tellLostConnection(std::span<const Diagnostic> diagnostics);

// "Invalid object name 'x'.", and behind it what else was said: "; error 3621: The statement has been terminated.". A
// record without a number is told with its SQLSTATE.
std::string describe(std::span<const Diagnostic> diagnostics);

// The error that they make, with the first record's number and line and the text of all. Not of a lost connection.
tsql::SqlError errorOf(std::span<const Diagnostic> diagnostics);

// What became of the connection and what to do, when it is lost.
workbench::Message describeLoss(std::span<const Diagnostic> diagnostics);

// What is wrong and what to do when a connection cannot be opened.
workbench::Message describeRefusal(std::span<const Diagnostic> diagnostics);

// A connection that cannot be opened, with what to do about it.
class ConnectionRefused final : public tsql::SqlError, public workbench::InBothLanguages {
 public:
  ConnectionRefused(int number, const workbench::Message& message)
      : SqlError(number, message.english()), InBothLanguages(message) {}
};

// A connection that is lost, with what to do about it.
class LostConnection final : public tsql::ConnectionLost, public workbench::InBothLanguages {
 public:
  explicit LostConnection(const workbench::Message& message)
      : ConnectionLost(message.english()), InBothLanguages(message) {}
};

}  // namespace quillon::odbc

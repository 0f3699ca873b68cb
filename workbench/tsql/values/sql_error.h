// What a statement fails with, in SQL Server's numbers and words: thrown by the embedded engine, and made of what a server
// says.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace quillon::tsql {

// A failure with SQL Server's own number and text. `line` counts from 1 within the batch; 0 when it has no place.
class SqlError : public std::exception {
 public:
  SqlError(int number, std::string message, int line = 0, std::string token = {});
  int number() const noexcept { return number_; }
  const std::string& message() const noexcept { return message_; }
  int line() const noexcept { return line_; }
  const std::string& token() const noexcept { return token_; }  // the offending token; empty when there is none
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  int number_;
  std::string message_;
  int line_;
  std::string token_;
};

// There is no connection to the server (any more). Whatever is asked of the database from then on fails in the same way,
// at once. It has no number.
class ConnectionLost : public SqlError {
 public:
  explicit ConnectionLost(std::string message) : SqlError(0, std::move(message)) {}
};

}  // namespace quillon::tsql

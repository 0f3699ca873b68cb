#include "workbench/platform/account_source.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

using odbc::ConnectionString;

constexpr std::string_view fileKeyword = "data source";

bool isConnectionString(const ConnectionString& text) {
  static constexpr std::string_view keywords[] = {fileKeyword, "driver", "dsn", "filedsn", "server", "provider"};
  if (text.namesDriver()) return true;
  return !text.attributes().empty() &&
         std::ranges::any_of(keywords, [&text](auto keyword) { return text.attributes().front().is(keyword); });
}

// The file of a connection string that says no more than which file; nullopt when another keyword makes it a server's.
std::optional<std::string> embeddedFile(const ConnectionString& text) {
  std::string file;
  for (const ConnectionString::Attribute& attribute : text.attributes()) {
    if (attribute.is(fileKeyword)) {
      file = attribute.value;
    } else if (!attribute.isPassword()) {
      return std::nullopt;
    }
  }
  return file;
}

}  // namespace

AccountSource::AccountSource(std::string text) : text_(std::move(text)) {
  ConnectionString connection(text_);
  shown_ = connection.withoutPassword();
  if (!isConnectionString(connection)) {
    file_ = text_;
  } else if (std::optional<std::string> file = embeddedFile(connection)) {
    file_ = std::move(*file);
  } else {
    server_ = std::move(connection);
  }
}

AccountSource AccountSource::inFile(const std::filesystem::path& file) {
  AccountSource source;
  source.file_ = utf8FromPath(file);
  source.text_ = source.connectionString();
  source.shown_ = source.file_;
  return source;
}

std::filesystem::path AccountSource::file() const {
  if (onServer()) {
    throw std::invalid_argument(
        "a connection string to a database server cannot be used here; name an account file (made with \"quillon "
        "account new FILE\")");
  }
  if (file_.empty()) throw std::invalid_argument("no account is named; name an account file");
  return pathFromUtf8(file_);
}

std::string AccountSource::connectionString() const {
  return onServer() ? server_->text() : "Data Source=" + odbc::inDoubleQuotes(file_);
}

std::unique_ptr<tsql::Database> AccountSource::open(tsql::OpenMode mode, odbc::ConnectOptions options) const {
  if (!onServer()) return tsql::Connection::open(file(), mode);
  if (!server_->namesDriver()) {
    throw std::invalid_argument(
        "the connection string names no ODBC driver; write Driver={ODBC Driver 17 for SQL "
        "Server};Server=...;Database=...;UID=...;PWD=..., or DSN=...");
  }
  return odbc::connect(*server_, std::move(options));
}

std::string connectionString(const std::filesystem::path& file) {
  return AccountSource::inFile(file).connectionString();
}

}  // namespace quillon::workbench

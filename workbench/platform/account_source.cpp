#include "workbench/platform/account_source.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "frame/text.h"

namespace quillon::workbench {

namespace {

// The keywords of a connection string, in lower case.
std::string lower(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), lowerAscii);
  return result;
}

// Takes the text before the next `mark` off the front of `rest`, and the mark with it.
std::string_view takeUpTo(std::string_view& rest, char mark) {
  const auto end = rest.find(mark);
  const std::string_view part = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  return part;
}

// Takes the next "keyword=value;" off the front of `rest`; gives the keyword in lower case.
std::pair<std::string, std::string> takePart(std::string_view& rest) {
  std::string keyword = lower(trimBlanks(takeUpTo(rest, '=')));
  rest = trimBlanks(rest);
  if (!rest.starts_with('"')) return {std::move(keyword), std::string(trimBlanks(takeUpTo(rest, ';')))};
  rest.remove_prefix(1);
  std::string value(takeUpTo(rest, '"'));
  takeUpTo(rest, ';');
  return {std::move(keyword), std::move(value)};
}

// A file name may hold "=" and ";": only a text that begins with one of these keywords, or names an ODBC driver or data
// source, is a connection string.
bool isConnectionString(std::string_view source) {
  const std::string keyword = lower(trimBlanks(source.substr(0, source.find('='))));
  static constexpr std::string_view keywords[] = {"data source", "driver", "dsn", "filedsn", "server", "provider"};
  const bool begins =
      source.find('=') != std::string_view::npos && std::ranges::find(keywords, keyword) != std::end(keywords);
  return begins || odbc::isOdbcConnectionString(source);
}

// The "Data Source" of a connection string that has no other keyword but a password's; empty when it has not even that
// one, nullopt when another keyword makes it a server's.
std::optional<std::string> embeddedDataSource(std::string_view connectionString) {
  std::string file;
  for (std::string_view rest = trimBlanks(connectionString); !rest.empty(); rest = trimBlanks(rest)) {
    auto [keyword, value] = takePart(rest);
    if (keyword == "data source") {
      file = std::move(value);
    } else if (keyword != "pwd" && keyword != "password") {
      return std::nullopt;
    }
  }
  return file;
}

}  // namespace

std::filesystem::path pathFromUtf8(std::string_view text) {
  return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string utf8FromPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

bool namesServer(std::string_view source) {
  return isConnectionString(source) && !embeddedDataSource(source);
}

std::filesystem::path accountFile(std::string_view source) {
  const std::optional<std::string> file =
      isConnectionString(source) ? embeddedDataSource(source) : std::optional(std::string(source));
  if (!file) {
    throw std::invalid_argument(
        "a connection string to a database server cannot be used here; name an account file (made with \"quillon "
        "account new FILE\")");
  }
  if (file->empty()) throw std::invalid_argument("no account is named; name an account file");
  return pathFromUtf8(*file);
}

std::string connectionString(const std::filesystem::path& file) {
  return "Data Source=\"" + utf8FromPath(file) + "\"";
}

std::string accountConnection(std::string_view source) {
  return namesServer(source) ? std::string(source) : connectionString(accountFile(source));
}

std::unique_ptr<tsql::Database> openDatabase(std::string_view source, tsql::OpenMode mode,
                                             odbc::ConnectOptions options) {
  if (!namesServer(source)) return tsql::Connection::open(accountFile(source), mode);
  if (!odbc::isOdbcConnectionString(source)) {
    throw std::invalid_argument(
        "the connection string names no ODBC driver; write Driver={ODBC Driver 17 for SQL "
        "Server};Server=...;Database=...;UID=...;PWD=..., or DSN=...");
  }
  return odbc::connect(source, std::move(options));
}

}  // namespace quillon::workbench

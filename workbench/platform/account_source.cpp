#include "workbench/platform/account_source.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "frame/text.h"
#include "workbench/messages/account.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// The engine's own error for the slip that is made most often, in both languages.
class NoAccountFile final : public tsql::SqlError, public InBothLanguages {
 public:
  NoAccountFile(int number, const Message& message) : SqlError(number, message.english()), InBothLanguages(message) {}
};

using odbc::ConnectionString;

constexpr std::string_view fileKeyword = "data source", scratchKeyword = "scratch", modeKeyword = "mode",
                           readMode = "Read";

bool isConnectionString(const ConnectionString& text) {
  static constexpr std::string_view keywords[] = {fileKeyword, "driver", "dsn", "filedsn", "server", "provider"};
  if (text.namesDriver()) return true;
  return !text.attributes().empty() &&
         std::ranges::any_of(keywords, [&text](auto keyword) { return text.attributes().front().is(keyword); });
}

struct EmbeddedFiles {
  std::string account, scratch;
  bool readOnly = false;
};

// The files of a connection string that says no more than which files; nullopt when another keyword makes it a server's.
std::optional<EmbeddedFiles> embeddedFiles(const ConnectionString& text) {
  EmbeddedFiles files;
  for (const ConnectionString::Attribute& attribute : text.attributes()) {
    if (attribute.is(fileKeyword)) {
      files.account = attribute.value;
    } else if (attribute.is(scratchKeyword)) {
      files.scratch = attribute.value;
    } else if (attribute.is(modeKeyword) && equalIgnoringCase(attribute.value, readMode)) {
      files.readOnly = true;
    } else if (!attribute.isPassword()) {
      return std::nullopt;
    }
  }
  return files;
}

}  // namespace

AccountSource::AccountSource(std::string text) : text_(std::move(text)) {
  ConnectionString connection(text_);
  shown_ = connection.withoutPassword();
  if (!isConnectionString(connection)) {
    file_ = text_;
  } else if (std::optional<EmbeddedFiles> files = embeddedFiles(connection)) {
    file_ = std::move(files->account);
    scratch_ = pathFromUtf8(files->scratch);
    readOnly_ = files->readOnly;
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

AccountSource AccountSource::withScratch(const std::filesystem::path& scratch) const {
  AccountSource source = inFile(file());
  source.shown_ = shown_;
  source.scratch_ = scratch;
  source.text_ = source.connectionString();
  return source;
}

AccountSource AccountSource::readOnly() const {
  AccountSource source = *this;
  if (onServer()) return source;
  source.scratch_.clear();
  source.readOnly_ = true;
  source.text_ = source.connectionString();
  return source;
}

std::filesystem::path AccountSource::file() const {
  if (onServer()) {
    throw InputError(messages::fileWanted());
  }
  if (file_.empty()) throw InputError(messages::noAccountNamed());
  return pathFromUtf8(file_);
}

std::string AccountSource::connectionString() const {
  if (onServer()) return server_->text();
  const std::string account = "Data Source=" + odbc::inDoubleQuotes(file_);
  if (!scratch_.empty()) return account + ";Scratch=" + odbc::inDoubleQuotes(utf8FromPath(scratch_));
  return readOnly_ ? account + ";Mode=" + std::string(readMode) : account;
}

std::unique_ptr<tsql::Database> AccountSource::openFile(tsql::OpenMode mode) const {
  const std::filesystem::path path = file();
  try {
    if (!scratch_.empty()) return tsql::Connection::openWithScratch(path, scratch_);
    return tsql::Connection::open(path, readOnly_ ? tsql::OpenMode::readOnly : mode);
  } catch (const tsql::SqlError& error) {
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored)) throw;
    throw NoAccountFile(error.number(), messages::noAccountFile(utf8FromPath(path)));
  }
}

std::unique_ptr<tsql::Database> AccountSource::open(tsql::OpenMode mode, odbc::ConnectOptions options) const {
  if (!onServer()) return openFile(mode);
  if (!server_->namesDriver()) {
    throw InputError(messages::noDriverNamed());
  }
  return odbc::connect(*server_, std::move(options));
}

std::string connectionString(const std::filesystem::path& file) {
  return AccountSource::inFile(file).connectionString();
}

}  // namespace quillon::workbench

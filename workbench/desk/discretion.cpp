#include "workbench/desk/discretion.h"

#include <algorithm>
#include <system_error>

#include "workbench/odbc/connection_string.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::desk {

namespace {

std::string databaseOf(const odbc::ConnectionString& connection) {
  std::string name;
  for (const auto& attribute : connection.attributes()) {
    if (attribute.is("Database") || attribute.is("Initial Catalog")) return attribute.value;
    if (attribute.is("DSN") || attribute.is("Server")) name = name.empty() ? attribute.value : name;
  }
  return name;
}

void replaceEach(std::string& text, const std::string& secret, const std::string& instead) {
  for (auto at = text.find(secret); at != std::string::npos; at = text.find(secret, at + instead.size()))
    text.replace(at, secret.size(), instead);
}

}  // namespace

Discretion::Discretion(const AccountSource& account, const std::vector<std::filesystem::path>& folders) {
  std::vector<std::filesystem::path> hidden = folders;
  std::error_code error;
  hidden.push_back(std::filesystem::temp_directory_path(error));
  if (account.onServer()) {
    const odbc::ConnectionString connection(account.text());
    accountName_ = databaseOf(connection);
    for (const auto& attribute : connection.attributes()) {
      if (attribute.isPassword()) hide(attribute.value, "***");
    }
    hide(account.text(), accountName_);
    hide(account.shown(), accountName_);
  } else {
    const std::filesystem::path file = account.file();
    accountName_ = utf8FromPath(file.filename());
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    hide(utf8FromPath(absolute), accountName_);
    hide(utf8FromPath(file), accountName_);
    hidden.push_back(absolute.parent_path());
  }
  for (const std::filesystem::path& folder : hidden) {
    if (!folder.has_relative_path()) continue;  // a root says nothing
    for (const std::string& name : {utf8FromPath(folder), folder.generic_string()}) {
      for (const char* const end : {"/", "\\", ""})
        hide(name + end, "");
    }
  }
  std::ranges::stable_sort(secrets_, std::ranges::greater(), [](const auto& secret) { return secret.first.size(); });
}

void Discretion::hide(std::string secret, std::string instead) {
  if (!secret.empty() && secret != instead) secrets_.emplace_back(std::move(secret), std::move(instead));
}

std::string Discretion::of(std::string text) const {
  for (const auto& [secret, instead] : secrets_)
    replaceEach(text, secret, instead);
  return text;
}

}  // namespace quillon::workbench::desk

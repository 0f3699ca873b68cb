#include "workbench/platform/account_lookup.h"

#include "workbench/platform/account_session.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

std::shared_ptr<Session> openAccount(const SessionMaker& makeSession, std::string_view connection) {
  std::shared_ptr<Session> session = makeSession();
  session->setConnectionString(connection);
  session->open("", "", optionsUnspecified);
  return session;
}

std::optional<std::string> lookUp(Session& session, std::string_view sql) {
  const std::unique_ptr<Recordset> rows = session.query(sql, readOnlyQuery);
  std::optional<std::string> value;
  if (!rows->eof()) value = rows->text(0);
  rows->close();
  return value;
}

std::string quotedText(std::string_view text) {
  std::string result = "N'";
  for (const char c : text)
    result.append(c == '\'' ? 2 : 1, c);
  return result + "'";
}

int leadingNumber(std::string_view text) {
  return tsql::text::leadingNumber(text).value_or(0);
}

std::string dateOnly(std::string_view text) {
  constexpr std::size_t dateLength = 10;
  return std::string(text.substr(0, dateLength));
}

}  // namespace quillon::workbench

#include "frame/session.h"

namespace quillon {

std::optional<std::string> firstField(Session& session, std::string_view sql, const QueryOptions& options) {
  const auto rows = session.query(sql, options);
  std::optional<std::string> value;
  if (!rows->eof()) value = rows->text(0).value_or("");
  rows->close();
  return value;
}

}  // namespace quillon

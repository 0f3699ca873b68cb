#include "frame/session.h"

#include "frame/automation_error.h"

namespace quillon {

void throwTakenOver() {
  throw AutomationError(hresult::unexpected, "Quillon",
                        "A report, dialog or document that was opened meanwhile on the same thread has taken over the "
                        "connection to the account; start this one again.");
}

std::optional<std::string> firstField(Session& session, std::string_view sql, const QueryOptions& options) {
  const auto rows = session.query(sql, options);
  std::optional<std::string> value;
  if (!rows->eof()) value = rows->text(0).value_or("");
  rows->close();
  return value;
}

}  // namespace quillon

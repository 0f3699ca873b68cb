#include "frame/report_session.h"

#include <utility>

namespace quillon {

void openSession(Module& module) {
  Session& session = *module.session;
  session.setCursorLocation(CursorLocation::client);
  session.setConnectionString(module.login->accountConnection());
  session.setConnectionTimeout(0);
  session.setCommandTimeout(0);
  session.open("", "", optionsUnspecified);
}

void openReportSession(Module& module, ReportArgument& argument) {
  module.session = module.platform().createSession();
  module.login = argument.login();
  openSession(module);
}

void openDialogSession(Module& module, FilterDialog& dialog) {
  module.session = module.platform().createSession();
  module.login = dialog.login();
  openSession(module);
  module.resources().takeLogin(*module.login);
}

void closeReportSession(Module& module) {
  const std::shared_ptr<Session> session = std::exchange(module.session, nullptr);
  if (session && session->state() != stateClosed) session->close();
}

}  // namespace quillon

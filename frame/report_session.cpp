#include "frame/report_session.h"

#include <utility>

namespace quillon {

void openSession(Session& session, Login& login) {
  session.setCursorLocation(CursorLocation::client);
  session.setConnectionString(login.accountConnection());
  session.setConnectionTimeout(0);
  session.setCommandTimeout(0);
  session.open("", "", optionsUnspecified);
}

std::shared_ptr<Session> openReportSession(Module& module, ReportArgument& argument) {
  // Both are held here: reading the login may lead to another run, which puts its own into the module.
  std::shared_ptr<Session> session = module.platform().createSession();
  module.takeSession(session);
  const std::shared_ptr<Login> login = argument.login();
  module.login = login;
  openSession(*session, *login);
  return session;
}

void openDialogSession(Module& module, FilterDialog& dialog) {
  const std::shared_ptr<Session> session = module.platform().createSession();
  module.takeSession(session);
  const std::shared_ptr<Login> login = dialog.login();
  module.login = login;
  openSession(*session, *login);
  module.resources().takeLogin(*login);
}

void requireSession(const Module& module, const std::shared_ptr<Session>& session) {
  if (module.session != session) throwTakenOver();
}

void closeReportSession(Module& module) {
  const std::shared_ptr<Session> session = std::exchange(module.session, nullptr);
  if (session && session->state() != stateClosed) session->close();
}

}  // namespace quillon

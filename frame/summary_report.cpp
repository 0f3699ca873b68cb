#include "frame/summary_report.h"

#include "frame/pub_mod.h"
#include "frame/report_session.h"
#include "frame/text.h"

namespace quillon {

namespace {

// Runs one step of Execute; a step that fails is passed over.
template <typename Step>
void passOverErrors(Step step) noexcept {
  try {
    step();
  } catch (...) {
    // The platform expects Execute to succeed whatever its own objects answer.
    return;
  }
}

}  // namespace

SummaryReport::SummaryReport(Module& module) : module_(module) {
  module_.namePrefix = workTablePrefix(module_.platform());
}

void SummaryReport::getSql(ReportArgument& argument) {
  filter_ = argument.rawFilter();
  const std::shared_ptr<Session> session = openReportSession(module_, argument);
  const std::unique_ptr<DataSource> dataSource = argument.dataSource();
  dataSource->setType(dataSourceTable);
  resultTable_ = dataSource->resultTable();
  requireSession(module_, session);
  if (moveDataDetail().empty()) closeReportSession(module_);
}

std::string SummaryReport::moveDataDetail() {
  // Held here, so that neither ends during the build whatever the platform does in between.
  const std::shared_ptr<Filter> filter = filter_;
  const std::shared_ptr<Session> session = module_.session;
  if (!filter || !session || !module_.login) return " ";
  try {
    build(*filter, resultTable_, module_, *session);
    requireSession(module_, session);
    return {};
  } catch (...) {
    // The blank is all that the platform learns; the session stays open and knows what it refused.
    return " ";
  }
}

void SummaryReport::execute(ReportArgument& argument) noexcept {
  bool drillThrough = false;
  std::shared_ptr<Login> login;
  std::shared_ptr<DrillThroughHelper> helper;
  passOverErrors([&] { drillThrough = equalIgnoringCase(argument.action(), "Link"); });
  passOverErrors([&] { login = argument.login(); });
  passOverErrors([&] { helper = module_.platform().createDrillThroughHelper(); });
  // The filter object that the helper gives is released at once: a summary report has nothing to open.
  passOverErrors([&] {
    if (helper) helper->filterFor(login.get(), drillThrough);
  });
}

}  // namespace quillon

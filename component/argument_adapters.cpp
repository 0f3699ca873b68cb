#include "component/argument_adapters.h"

#include "component/filter_adapters.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"

namespace quillon::component {

void LateBoundDataSource::setType(int type) {
  dataSource_.put(bindings::data_source::type, type);
}

std::string LateBoundDataSource::resultTable() {
  return dataSource_.text(bindings::data_source::sql);
}

void LateBoundDataSource::setResultTable(std::string_view name) {
  dataSource_.put(bindings::data_source::sql, name);
}

std::string LateBoundReportRow::value(std::string_view column) {
  return row_.text(bindings::report_row::value, {column});
}

std::shared_ptr<Filter> LateBoundReportArgument::rawFilter() {
  return std::make_shared<LateBoundFilter>(argument_.object(bindings::argument::rawFilter, "rawFilter"));
}

std::shared_ptr<Login> LateBoundReportArgument::login() {
  return std::make_shared<LateBoundLogin>(argument_.object(bindings::argument::login, "Login"));
}

std::shared_ptr<Login> LateBoundReportArgument::filterLogin() {
  return std::make_shared<LateBoundLogin>(argument_.object(bindings::argument::loginObj, "LoginObj"));
}

std::unique_ptr<DataSource> LateBoundReportArgument::dataSource() {
  return std::make_unique<LateBoundDataSource>(argument_.object(bindings::argument::dataSource, "DataSource"));
}

std::string LateBoundReportArgument::action() {
  return argument_.text(bindings::argument::action);
}

std::unique_ptr<ReportRow> LateBoundReportArgument::row() {
  return std::make_unique<LateBoundReportRow>(argument_.object(bindings::argument::row, "RelateData"));
}

std::string LateBoundReportArgument::languageId() {
  return argument_.text(bindings::argument::languageId);
}

}  // namespace quillon::component

#include "component/argument_adapters.h"

#include "automation/errors.h"
#include "component/filter_adapters.h"
#include "component/login_adapter.h"
#include "component/platform_bindings.h"
#include "frame/automation_error.h"
#include "frame/text.h"

namespace quillon::component {

using automation::LateBound;
using automation::ownSource;

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
  try {
    return row_.text(bindings::report_row::value, {column});
  } catch (const AutomationError& error) {
    // What the row says itself stays as it is.
    if (error.source() != ownSource) throw;
    throw AutomationError(
        error.code(), error.source(),
        "The chosen row gives no value for its column \"" + std::string(column) + "\": " + error.description());
  }
}

std::string LateBoundReportRow::requiredValue(std::string_view column) {
  std::string text = value(column);
  if (trimBlanks(text).empty())
    throw AutomationError(
        hresult::typeMismatch, std::string(ownSource),
        "The chosen row has nothing in its column \"" + std::string(column) + "\", by which its document is found.");
  return text;
}

std::shared_ptr<Filter> LateBoundReportArgument::rawFilter() {
  return std::make_shared<LateBoundFilter>(argument_.object(bindings::argument::rawFilter, "rawFilter"));
}

std::shared_ptr<Login> LateBoundReportArgument::login() {
  return std::make_shared<LateBoundLogin>(argument_.object(bindings::argument::login, "Login"));
}

std::shared_ptr<Login> LateBoundReportArgument::filterLogin() {
  LateBound login = argument_.objectIfAny(bindings::argument::loginObj, "LoginObj");
  if (!login)
    login = argument_.object(bindings::argument::rawFilter, "rawFilter")
                .objectIfAny(bindings::argument::loginObj, "LoginObj");
  if (!login)
    throw AutomationError(hresult::objectNotSet, std::string(ownSource),
                          "There is no login to open the accounting environment with: neither e.LoginObj nor "
                          "e.rawFilter.LoginObj holds an object.");
  return std::make_shared<LateBoundLogin>(std::move(login));
}

std::unique_ptr<DataSource> LateBoundReportArgument::dataSource() {
  return std::make_unique<LateBoundDataSource>(argument_.object(bindings::argument::dataSource, "DataSource"));
}

std::string LateBoundReportArgument::action() {
  return argument_.text(bindings::argument::action);
}

std::unique_ptr<ReportRow> LateBoundReportArgument::row() {
  LateBound row = argument_.objectIfAny(bindings::argument::row, "RelateData");
  if (!row)
    throw AutomationError(hresult::objectNotSet, std::string(ownSource),
                          "No row of the report is chosen: e.RelateData holds no object, so there is no document to "
                          "open.");
  return std::make_unique<LateBoundReportRow>(std::move(row));
}

std::string LateBoundReportArgument::languageId() {
  return argument_.text(bindings::argument::languageId);
}

}  // namespace quillon::component

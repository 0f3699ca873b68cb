#include "frame/platform.h"

#include "frame/automation_error.h"

namespace quillon {

namespace {

[[noreturn]] void notOffered(std::string_view member) {
  throw AutomationError(hresult::notImplemented, "Quillon",
                        "The host platform does not offer " + std::string(member) + ", which this report needs.");
}

}  // namespace

void DataSource::setResultTable(std::string_view) {
  notOffered("the data source's table name");
}

std::unique_ptr<ReportRow> ReportArgument::row() {
  notOffered("RelateData");
}

std::string ReportArgument::languageId() {
  notOffered("LangID");
}

bool PublicComponent::costItemOpeningsFinished(int, Session&) {
  notOffered("IsFxFinishQC");
}
AccountingPeriod PublicComponent::moduleStart(std::string_view, Session&) {
  notOffered("StartMonthYear");
}
PeriodDates PublicComponent::datesOfPeriod(std::string_view, AccountingPeriod, Session&) {
  notOffered("GetDateFromPeriod");
}
AccountingPeriod PublicComponent::periodOfDate(std::string_view, Session&) {
  notOffered("GetPeriodFromDate");
}
bool PublicComponent::periodSettled(AccountingPeriod, Session&) {
  notOffered("GetMonthState");
}
std::string PublicComponent::workstationName() {
  notOffered("GetComputerName");
}

std::string ResourceService::formattedText(std::string_view, const std::vector<std::string>&) {
  notOffered("formatted texts");
}

std::int32_t Platform::workTableNumber() {
  notOffered("numbers for work tables");
}
std::unique_ptr<AccountLogin> Platform::createAccountLogin() {
  notOffered("a login for its inventory-accounting environment");
}
std::unique_ptr<InventoryEnvironment> Platform::createInventoryEnvironment() {
  notOffered("an inventory-accounting environment");
}
std::unique_ptr<SourceVoucherComponent> Platform::createSourceVoucherComponent() {
  notOffered("PellUniVch.clsUniVch");
}
std::unique_ptr<LedgerModule> Platform::createLedgerModule() {
  notOffered("ZzPub.clsPub");
}
std::unique_ptr<LedgerVoucherComponent> Platform::createLedgerVoucherComponent() {
  notOffered("ZzPz.clsPZ");
}

}  // namespace quillon

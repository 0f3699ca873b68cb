#include "frame/pub_mod.h"

#include <charconv>
#include <string_view>

#include "frame/automation_error.h"
#include "frame/text.h"

namespace quillon {

std::string valueStyle(Module& module, int year, Session& session) {
  PublicComponent& component = module.publicComponent();
  const auto currentStyle = [&] { return component.accountInformation("IA", "cValueStyle", session); };
  if (year == component.currentPeriodYear(session)) return currentStyle();

  const auto rows = session.query(
      "select cValue from IA_HisOption where cSysID='IA' and  cName='cValueStyle' and iYear=" + std::to_string(year),
      {});
  std::string style = rows->eof() ? currentStyle() : rows->text(0).value_or("");
  rows->close();
  return style;
}

int inventoryStartMonth(int year, Session& session) {
  const std::string startDate =
      firstField(session, "Select cValue From AccInformation Where cSysID = 'IA' And cName = 'dIAStartDate'")
          .value_or("");

  constexpr std::size_t yearLength = 4;
  constexpr std::size_t monthStart = 5;
  constexpr std::size_t monthLength = 2;
  if (startDate.size() < monthStart || startDate.substr(0, yearLength) != std::to_string(year)) return 0;
  const std::string month = startDate.substr(monthStart, monthLength);
  int number = 0;
  std::from_chars(month.data(), month.data() + month.size(), number);
  return number;
}

int decimalPlaces(Module& module, std::string_view name) {
  const std::string value = module.publicComponent().accountInformation("AA", name, module.sessionInUse());
  if (trimBlanks(value).empty()) return 0;
  const auto places = wholeNumber<int>(value);
  if (!places) {
    throw AutomationError(hresult::typeMismatch, "Quillon",
                          "The account option " + std::string(name) + " of system AA has the value \"" + value +
                              "\"; give it a number of decimal places, such as 2.");
  }
  return *places;
}

std::string workTablePrefix(Platform& platform) {
  return std::string(trimBlanks(platform.namingNumber()));
}

}  // namespace quillon

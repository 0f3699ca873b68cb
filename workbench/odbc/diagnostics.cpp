#include "workbench/odbc/diagnostics.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "workbench/messages/account.h"
#include "workbench/odbc/wide_text.h"

namespace quillon::odbc {

namespace {

namespace messages = workbench::messages;

// SQL Server's own field of a diagnostic record: the line of the batch.
constexpr SQLSMALLINT lineField = -1154;

constexpr std::size_t stateLength = 5;

// Takes off "[vendor][driver][data source]". The data source ends the names: what a server says may begin with a
// bracket itself.
std::string_view withoutSpeakers(std::string_view text) {
  constexpr std::string_view dataSource = "[SQL Server]";
  while (text.starts_with('[')) {
    const auto end = text.find(']');
    if (end == std::string_view::npos) break;
    const bool last = text.substr(0, end + 1) == dataSource;
    text.remove_prefix(end + 1);
    if (last) break;
  }
  return text;
}

// Server messages may hold line ends; an error is one line.
std::string oneLine(std::string_view text) {
  std::string line(text);
  std::ranges::replace_if(
      line, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return line;
}

int lineOf(SQLSMALLINT handleType, SQLHANDLE handle, SQLSMALLINT record) {
  SQLINTEGER line = 0;
  const SQLRETURN result = SQLGetDiagFieldW(handleType, handle, record, lineField, &line, SQL_IS_INTEGER, nullptr);
  return SQL_SUCCEEDED(result) ? static_cast<int>(line) : 0;
}

std::string toldAs(const Diagnostic& record) {
  return record.number == 0 && !record.state.empty() ? record.text + " (SQLSTATE " + record.state + ")" : record.text;
}

bool hasState(std::span<const Diagnostic> diagnostics, std::string_view beginning) {
  return std::ranges::any_of(diagnostics,
                             [beginning](const auto& record) { return record.state.starts_with(beginning); });
}

bool hasText(std::span<const Diagnostic> diagnostics, std::string_view part) {
  return std::ranges::any_of(diagnostics,
                             [part](const auto& record) { return record.text.find(part) != std::string::npos; });
}

}  // namespace

std::vector<Diagnostic> diagnosticsOf(SQLSMALLINT handleType, SQLHANDLE handle) {
  std::vector<Diagnostic> diagnostics;
  WideText text(1024);
  for (SQLSMALLINT record = 1;; ++record) {
    std::array<SQLWCHAR, stateLength + 1> state{};
    SQLINTEGER number = 0;
    SQLSMALLINT length = 0;
    const auto read = [&] {
      return SQLGetDiagRecW(handleType, handle, record, state.data(), &number, text.data(),
                            static_cast<SQLSMALLINT>(text.size()), &length);
    };
    SQLRETURN result = read();
    if (result == SQL_SUCCESS_WITH_INFO && static_cast<std::size_t>(length) >= text.size()) {
      text.resize(static_cast<std::size_t>(length) + 1);
      result = read();
    }
    if (!SQL_SUCCEEDED(result)) return diagnostics;
    const auto count = std::min(static_cast<std::size_t>(length), text.size() - 1);
    diagnostics.push_back({.state = toUtf8(std::span(state).first(stateLength)),
                           .number = static_cast<int>(number),
                           .line = lineOf(handleType, handle, record),
                           .text = oneLine(withoutSpeakers(toUtf8(std::span(text).first(count))))});
  }
}

bool tellLostConnection(std::span<const Diagnostic> diagnostics) {
  // FreeTDS's own, which it does not always give a state of lost connections. A server has errors of these numbers, too.
  struct Loss {
    int number;
    std::string_view text;
  };
  static constexpr std::array losses = {
      Loss{20004, "Read from the server failed"}, Loss{20006, "Write to the server failed"},
      Loss{20017, "Unexpected EOF from the server"}, Loss{20047, "DBPROCESS is dead or not enabled"}};
  const auto isLoss = [](const Diagnostic& record) {
    return std::ranges::any_of(losses, [&record](const Loss& loss) {
      return record.number == loss.number && record.text.starts_with(loss.text);
    });
  };
  if (std::ranges::any_of(diagnostics, isLoss)) return true;
  static constexpr std::string_view states[] = {"08S01", "08003", "08007", "08001"};
  return std::ranges::any_of(states, [diagnostics](auto state) { return hasState(diagnostics, state); });
}

std::string describe(std::span<const Diagnostic> diagnostics) {
  if (diagnostics.empty()) return std::string(messages::driverSilent.in(workbench::Language::english));
  std::string text;
  for (std::size_t i = 0; i < diagnostics.size(); ++i) {
    const Diagnostic& record = diagnostics[i];
    // Driver and driver manager repeat what the server said.
    const auto same = [&record](const Diagnostic& earlier) { return earlier.text == record.text; };
    if (std::ranges::any_of(diagnostics.first(i), same)) continue;
    if (i > 0) text += "; ";
    if (i > 0 && record.number != 0) text += "error " + std::to_string(record.number) + ": ";
    text += toldAs(record);
  }
  return text;
}

tsql::SqlError errorOf(std::span<const Diagnostic> diagnostics) {
  if (diagnostics.empty()) return {0, describe(diagnostics)};
  return {diagnostics.front().number, describe(diagnostics), diagnostics.front().line};
}

workbench::Message describeLoss(std::span<const Diagnostic> diagnostics) {
  return messages::connectionLost(describe(diagnostics));
}

workbench::Message describeRefusal(std::span<const Diagnostic> diagnostics) {
  workbench::Message advice;
  if (hasState(diagnostics, "IM") || hasText(diagnostics, "Can't open lib")) {
#ifdef _WIN32
    advice = messages::checkDriver(messages::driversOnWindows());
#else
    advice = messages::checkDriver(messages::driversElsewhere());
#endif
  } else if (hasState(diagnostics, "28")) {
    advice = messages::checkPassword();
  } else if (tellLostConnection(diagnostics) || hasState(diagnostics, "08") || hasState(diagnostics, "HYT")) {
    advice = messages::checkServer();
  } else {
    advice = messages::checkConnectionString();
  }
  return messages::cannotConnect(describe(diagnostics), advice);
}

}  // namespace quillon::odbc

#include "workbench/com/workbench_platform.h"

#include <stdexcept>

#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/registrations.h"

namespace quillon::workbench {

using com::Call;
using com::Variant;

namespace {

AutomationError refusal(HResult code, std::string description) {
  return {code, "QuillonWorkbench.Platform", std::move(description)};
}

// Runs `action`; what the workbench refuses in its own words reaches the script with them.
template <typename Action>
auto inAutomationWords(Action action) {
  try {
    return action();
  } catch (const std::invalid_argument& error) {
    throw refusal(hresult::invalidArgument, error.what());
  }
}

const ReportRegistration& registrationOf(const std::string& report) {
  if (report == sfcItemRegistration().name) return sfcItemRegistration();
  throw std::invalid_argument("there is no report \"" + report + "\"; the reports are: " + sfcItemRegistration().name);
}

}  // namespace

auto WorkbenchPlatform::members() -> std::span<const Member> {
  static constexpr Member table[] = {
      {L"Language", 1, com::readable | com::writable, 0, 0, &WorkbenchPlatform::language},
      {L"OpenAccount", 2, com::callable, 1, 1, &WorkbenchPlatform::openAccount},
      {L"NewArgument", 3, com::callable, 1, 1, &WorkbenchPlatform::newArgument},
      {L"Query", 4, com::callable, 1, 1, &WorkbenchPlatform::query},
      {L"FailureNumber", 5, com::readable, 0, 0, &WorkbenchPlatform::failureNumber},
      {L"FailureText", 6, com::readable, 0, 0, &WorkbenchPlatform::failureText},
      {L"FailureStatement", 7, com::readable, 0, 0, &WorkbenchPlatform::failureStatement},
      {L"LiveObjects", 8, com::readable, 0, 0, &WorkbenchPlatform::liveObjects},
  };
  return table;
}

AdoConnection& WorkbenchPlatform::account() {
  if (!connection_)
    throw refusal(hresult::unexpected, "No account is open: call OpenAccount with an account file first.");
  return *connection_;
}

Variant WorkbenchPlatform::language(Call& call) {
  if (call.assigns()) {
    const std::string wanted = com::toText(call.assigned());
    if (wanted != "zh" && wanted != "en") {
      throw refusal(hresult::invalidArgument, "The language \"" + wanted + "\" is not known: use \"zh\" or \"en\".");
    }
    if (connection_) throw refusal(hresult::unexpected, "Set the language before the account is opened.");
    language_ = wanted == "zh" ? Language::chinese : Language::english;
  }
  return language_ == Language::chinese ? "zh" : "en";
}

Variant WorkbenchPlatform::openAccount(Call& call) {
  if (connection_) {
    throw refusal(hresult::unexpected,
                  "An account is open already: Quillon.dll keeps its components for as long as it is loaded, so a "
                  "process works on one account.");
  }
  const std::string source = call.text(0);
  const std::string text = inAutomationWords([&] { return connectionString(accountFile(source)); });
  com::ComPtr<AdoConnection> connection = com::makeObject<AdoConnection>(failures_);
  connection->openWith(text);
  platform_ = std::make_unique<EmbeddedPlatform>(EmbeddedPlatformOptions{
      .accountConnection = text, .language = language_, .monitor = failures_.get(), .messages = {}});
  standIn_.emplace(*platform_, failures_);
  connection_ = std::move(connection);
  return {};
}

Variant WorkbenchPlatform::newArgument(Call& call) {
  EmbeddedSession& session = account().session();
  const std::string report = call.text(0);
  return inAutomationWords([&] {
    const auto filter = std::make_shared<FilterObject>(registrationOf(report));
    const auto login =
        std::make_shared<WorkbenchLogin>(accountLogin(session, session.connectionText(), language_, "", ""));
    prepareFilter(*filter, *login, session);
    return Variant(
        argumentObject(std::make_shared<WorkbenchArgument>(filter, login, "QuillonReport" + uniqueNamePart())));
  });
}

Variant WorkbenchPlatform::query(Call& call) {
  std::string sql = call.text(0);
  BatchResult result = account().runBatch(sql);
  return com::makeObject<AdoRecordset>(connection_, std::move(sql), std::move(result.recordset));
}

Variant WorkbenchPlatform::failureNumber(Call&) {
  return failures_->last().number;
}

Variant WorkbenchPlatform::failureText(Call&) {
  return failures_->last().message;
}

Variant WorkbenchPlatform::failureStatement(Call&) {
  return failures_->last().sql;
}

Variant WorkbenchPlatform::liveObjects(Call&) {
  return static_cast<int>(com::LiveCount::value());
}

}  // namespace quillon::workbench

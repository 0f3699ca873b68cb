#include "workbench/com/workbench_platform.h"

#include <stdexcept>

#include "automation/class_lookup.h"
#include "component/platform_bindings.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/com/argument_object.h"
#include "workbench/com/variant_list.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench {

using automation::Call;
using automation::Variant;
namespace bindings = component::bindings;

namespace {

AutomationError refusal(HResult code, std::string description) {
  return {code, "QuillonWorkbench.Platform", std::move(description)};
}

// The machine's own ADO.
std::shared_ptr<Session> newSession() {
  return std::make_shared<component::AdoSession>(automation::createObject(bindings::connection));
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

// An embedded session that keeps its monitor.
std::shared_ptr<AccountSession> watchedSession(const std::shared_ptr<SessionMonitor>& monitor) {
  struct Watched {
    explicit Watched(std::shared_ptr<SessionMonitor> watcher) : monitor(std::move(watcher)), session(monitor.get()) {}
    std::shared_ptr<SessionMonitor> monitor;
    AccountSession session;
  };
  const auto watched = std::make_shared<Watched>(monitor);
  return {watched, &watched->session};
}

}  // namespace

auto WorkbenchPlatform::members() -> std::span<const Member> {
  static constexpr Member table[] = {
      {L"Language", 1, automation::readable | automation::writable, 0, 0, &WorkbenchPlatform::language},
      {L"OpenAccount", 2, automation::callable, 1, 1, &WorkbenchPlatform::openAccount},
      {L"NewArgument", 3, automation::callable, 1, 1, &WorkbenchPlatform::newArgument},
      {L"Query", 4, automation::callable, 1, 1, &WorkbenchPlatform::query},
      {L"FailureNumber", 5, automation::readable, 0, 0, &WorkbenchPlatform::failureNumber},
      {L"FailureText", 6, automation::readable, 0, 0, &WorkbenchPlatform::failureText},
      {L"FailureStatement", 7, automation::readable, 0, 0, &WorkbenchPlatform::failureStatement},
      {L"LiveObjects", 8, automation::readable, 0, 0, &WorkbenchPlatform::liveObjects},
      {L"NewDialog", 9, automation::callable, 1, 1, &WorkbenchPlatform::newDialog},
      {L"Messages", 10, automation::readable | automation::callable, 0, 1, &WorkbenchPlatform::messages},
      {L"Vouchers", 11, automation::readable | automation::callable, 0, 1, &WorkbenchPlatform::vouchers},
  };
  return table;
}

component::AdoSession& WorkbenchPlatform::account() {
  if (!account_) throw refusal(hresult::unexpected, "No account is open: call OpenAccount with an account file first.");
  return *account_;
}

Variant WorkbenchPlatform::language(Call& call) {
  if (call.assigns()) {
    const std::string wanted = automation::toText(call.assigned());
    if (wanted != "zh" && wanted != "en") {
      throw refusal(hresult::invalidArgument, "The language \"" + wanted + "\" is not known: use \"zh\" or \"en\".");
    }
    if (account_) throw refusal(hresult::unexpected, "Set the language before the account is opened.");
    language_ = wanted == "zh" ? Language::chinese : Language::english;
  }
  return language_ == Language::chinese ? "zh" : "en";
}

Variant WorkbenchPlatform::openAccount(Call& call) {
  if (account_) {
    throw refusal(hresult::unexpected,
                  "An account is open already: Quillon.dll keeps its components for as long as it is loaded, so a "
                  "process works on one account.");
  }
  source_ = AccountSource(call.text(0));
  // A file has to be named before anything stands in for ADO.
  if (!source_.onServer()) {
    inAutomationWords([this] { return source_.file(); });
    scratch_.emplace();
    source_ = source_.withScratch(scratch_->file());
  }
  EmbeddedPlatformOptions options{.account = source_,
                                  .language = language_,
                                  .monitor = failures_.get(),
                                  .messages =
                                      [shown = shown_](std::string_view text, int flags) {
                                        shown->messages.emplace_back(messageObject(std::string(text), flags));
                                      },
                                  .vouchers =
                                      [shown = shown_, language = language_](const OpenedVoucher& voucher) {
                                        shown->vouchers.emplace_back(openedVoucherObject(voucher, language));
                                      }};
  if (source_.onServer()) options.makeSession = newSession;
  platform_ = std::make_unique<EmbeddedPlatform>(std::move(options));
  if (source_.onServer()) {
    standIn_.emplace(*platform_);
  } else {
    standIn_.emplace(*platform_, failures_);
  }
  try {
    component::AdoSession session(automation::createObject(bindings::connection));
    // So that a recordset of Query counts its rows and outlives the next query.
    session.setCursorLocation(CursorLocation::client);
    session.setConnectionString(source_.connectionString());
    session.open("", "", optionsUnspecified);
    account_ = std::move(session);
  } catch (...) {
    standIn_.reset();
    throw;
  }
  return {};
}

Variant WorkbenchPlatform::newArgument(Call& call) {
  Session& session = account();
  const std::string report = call.text(0);
  return inAutomationWords([&] {
    const auto filter = std::make_shared<FilterObject>(reportNamed(report).registration);
    const auto login = std::make_shared<WorkbenchLogin>(accountLogin(session, source_, language_, "", ""));
    prepareFilter(*filter, *login, session);
    return Variant(argumentObject(std::make_shared<WorkbenchArgument>(filter, login, freshResultTable())));
  });
}

Variant WorkbenchPlatform::newDialog(Call& call) {
  Session& session = account();
  if (source_.onServer()) {
    throw refusal(hresult::notImplemented, "A dialog needs an account file; on a server, fill in the filter yourself.");
  }
  const std::string report = call.text(0);
  return inAutomationWords([&] {
    const auto filter = std::make_shared<FilterObject>(reportNamed(report).registration, InitialValues::none);
    const auto login = std::make_shared<WorkbenchLogin>(accountLogin(session, source_, language_, "", ""));
    const auto connection = watchedSession(failures_);
    connection->setAccount(source_);
    connection->open("", "", optionsUnspecified);
    return Variant(argumentObject(std::make_shared<WorkbenchArgument>(filter, login, freshResultTable()),
                                  std::make_shared<FilterDialogObject>(filter, login, connection)));
  });
}

Variant WorkbenchPlatform::query(Call& call) {
  const automation::LateBound connection(account().connection(), "ADODB.Connection");
  return connection.object(bindings::ado::execute, "ADODB.Recordset", {call.text(0)}).object();
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

Variant WorkbenchPlatform::messages(Call& call) {
  return collectionMember(call, shown_->messages);
}

Variant WorkbenchPlatform::vouchers(Call& call) {
  return collectionMember(call, shown_->vouchers);
}

Variant WorkbenchPlatform::liveObjects(Call&) {
  return static_cast<int>(automation::LiveCount::value());
}

}  // namespace quillon::workbench

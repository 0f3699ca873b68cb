// The stand-alone platform over an account, embedded or on a server: makes every component that the library asks its
// platform for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/platform.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/language.h"
#include "workbench/platform/voucher_components.h"

namespace quillon::workbench {

// IA_Pub.ClsIAPub: answers from the account's own tables, through the session that the caller passes.
class AccountPublicComponent final : public PublicComponent {
 public:
  // AccInformation.cValue of `system` and `name`; empty when the account does not have the option.
  std::string accountInformation(std::string_view system, std::string_view name, Session& session) override;
  // The year of the first month in IA_PeriodState that is not settled; the last year of orvsystem..UA_Period when all
  // are.
  int currentPeriodYear(Session& session) override;
  // From option 11002 of system CA, "yyyymm": its month in that very year, 1 in later years, 0 before.
  int costItemStartMonth(std::string_view year, Session& session) override;
  // The years of orvsystem..UA_Period, but not 9999, which stands for the opening of the account.
  std::vector<std::string> usedYears(std::string_view accountCode, Session& session) override;
  // Month 0 of the year in IA_PeriodState stands for them; false without such a row.
  bool costItemOpeningsFinished(int year, Session& session) override;
  // The month of the system's option dIAStartDate, dCAStartDate, ... (yyyy-mm-dd). Throws AutomationError when the
  // account does not say.
  AccountingPeriod moduleStart(std::string_view system, Session& session) override;
  // From orvsystem..UA_Period. Throws AutomationError when the account has no such period.
  PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session& session) override;
  // From orvsystem..UA_Period; the calendar month of a date in years that the account does not have.
  AccountingPeriod periodOfDate(std::string_view date, Session& session) override;
  // From IA_PeriodState; a month that it does not have is not settled.
  bool periodSettled(AccountingPeriod period, Session& session) override;
  std::string workstationName() override { return "Workbench"; }
};

// Texts from resource_texts.h, enumeration names from the account's AA_Enum.
class WorkbenchResources final : public ResourceService {
 public:
  using MessageSink = std::function<void(std::string_view text, int flags)>;

  // `makeSession` makes the session on which enumeration names are read from `account`.
  WorkbenchResources(Language language, const AccountSource& account, SessionMaker makeSession, MessageSink messages);

  // Texts come in the login's language from then on.
  void takeLogin(Login& login) override;
  // The code itself when the account has no name for it.
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
  // The places are {0}, {1}, ...
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override;
  void showMessage(std::string_view text, int flags) override;

 private:
  Language language_;
  std::string accountConnection_;
  SessionMaker makeSession_;
  MessageSink messages_;
  std::shared_ptr<Session> session_;  // opened when the first enumeration name is asked for
};

// A unique part of a table name: lower-case letters and digits, never the same twice, whichever process asks.
std::string uniqueNamePart();
// A fresh name for a report's result table.
std::string freshResultTable();

class WorkbenchUniqueNames final : public UniqueNameSource {
 public:
  // Adds what it gives to `given`; null for nobody who needs it.
  explicit WorkbenchUniqueNames(std::shared_ptr<std::vector<std::string>> given) : given_(std::move(given)) {}
  std::string next() override { return given_ ? given_->emplace_back(uniqueNamePart()) : uniqueNamePart(); }

 private:
  std::shared_ptr<std::vector<std::string>> given_;
};

struct EmbeddedPlatformOptions {
  AccountSource account = {};
  Language language = Language::chinese;
  SessionMonitor* monitor = nullptr;              // watches every embedded session; outlives the platform
  SessionMaker makeSession = {};                  // reaches an account on a server; empty for an embedded one
  WorkbenchResources::MessageSink messages = {};  // takes what a report or a dialog shows; may be empty
  VoucherSink vouchers = {};                      // takes the documents that a drill-through opens; may be empty
};

class EmbeddedPlatform final : public Platform {
 public:
  explicit EmbeddedPlatform(EmbeddedPlatformOptions options) : options_(std::move(options)) {}

  const EmbeddedPlatformOptions& options() const { return options_; }
  // The unique parts of the names that the platform's users gave to their work tables on a server. In a scratch file
  // nothing has to be found again, and whoever keeps the source of names for many runs would grow by each of them.
  const std::vector<std::string>& uniqueParts() const { return *uniqueParts_; }

  std::shared_ptr<Session> createSession() override;
  std::shared_ptr<PublicComponent> createPublicComponent() override;
  std::shared_ptr<ResourceService> createResourceService() override;
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override;
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override;
  // A number drawn anew for each call, so that two users' names differ in their first part already.
  std::string namingNumber() override;
  std::int32_t workTableNumber() override { return ++workTables_; }

  std::unique_ptr<AccountLogin> createAccountLogin() override;
  std::unique_ptr<InventoryEnvironment> createInventoryEnvironment() override;
  std::unique_ptr<SourceVoucherComponent> createSourceVoucherComponent() override;
  std::unique_ptr<LedgerModule> createLedgerModule() override;
  std::unique_ptr<LedgerVoucherComponent> createLedgerVoucherComponent() override;

 private:
  // Makes the sessions on which the platform's own objects read an account. They are no part of a report: nobody
  // watches them.
  SessionMaker unwatchedSessions() const;

  EmbeddedPlatformOptions options_;
  std::shared_ptr<std::vector<std::string>> uniqueParts_ = std::make_shared<std::vector<std::string>>();
  std::int32_t workTables_ = 0;
};

}  // namespace quillon::workbench

// The stand-alone platform over an account, embedded or on a server: makes every component that the library asks its
// platform for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/platform.h"
#include "workbench/platform/embedded_session.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// Makes a session that is not open yet.
using SessionMaker = std::function<std::shared_ptr<Session>()>;

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
};

// Texts from resource_texts.h, enumeration names from the account's AA_Enum.
class WorkbenchResources final : public ResourceService {
 public:
  using MessageSink = std::function<void(std::string_view text, int flags)>;

  // `makeSession` makes the session that enumeration names are read on; it is opened with `accountConnection`.
  WorkbenchResources(Language language, std::string accountConnection, SessionMaker makeSession, MessageSink messages);

  // Texts come in the login's language from then on.
  void takeLogin(Login& login) override;
  // The code itself when the account has no name for it.
  std::string enumName(std::string_view type, std::string_view code) override;
  std::string text(std::string_view key) override;
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

class WorkbenchUniqueNames final : public UniqueNameSource {
 public:
  std::string next() override { return uniqueNamePart(); }
};

struct EmbeddedPlatformOptions {
  std::string accountConnection = {};  // as the login gives it
  Language language = Language::chinese;
  SessionMonitor* monitor = nullptr;              // watches every embedded session; outlives the platform
  SessionMaker makeSession = {};                  // reaches an account on a server; empty for an embedded one
  WorkbenchResources::MessageSink messages = {};  // takes what a report or a dialog shows; may be empty
};

class EmbeddedPlatform final : public Platform {
 public:
  explicit EmbeddedPlatform(EmbeddedPlatformOptions options) : options_(std::move(options)) {}

  const EmbeddedPlatformOptions& options() const { return options_; }

  std::shared_ptr<Session> createSession() override;
  std::shared_ptr<PublicComponent> createPublicComponent() override;
  std::shared_ptr<ResourceService> createResourceService() override;
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override;
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override;
  // A number drawn anew for each call, so that two users' names differ in their first part already.
  std::string namingNumber() override;

 private:
  EmbeddedPlatformOptions options_;
};

}  // namespace quillon::workbench

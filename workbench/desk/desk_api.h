// The desk's JSON interface (docs/desk.md): the account, dialogs, saved filters and layouts, runs and what comes of them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "workbench/desk/check_session.h"
#include "workbench/desk/dialog_session.h"
#include "workbench/desk/discretion.h"
#include "workbench/desk/handler.h"
#include "workbench/desk/run_session.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/saved_filters.h"
#include "workbench/runs/kept_layouts.h"

namespace quillon::workbench::desk {

struct Licence {
  std::string name;     // "regular-table 0.9.2"
  std::string licence;  // its short name, "Apache-2.0"
  std::string text;
};

struct DeskLimits {
  std::size_t dialogs = 24;  // that are open at the same time
  std::size_t runs = 24;     // that are kept, and
  std::size_t running = 6;   // of these, under way at the same time
  RunLimits run = {};
  std::int64_t checkRows = 10'000;          // of each check, that are kept to be read
  std::chrono::seconds idleDialog{1800};    // closes a dialog that nobody has used for so long
  std::chrono::milliseconds sweep{10'000};  // from one look at what is idle to the next
};

struct DeskOptions {
  AccountSource account;
  SavedFilters filters;
  KeptLayouts layouts;
  std::string version = {};
  std::vector<Licence> licences = {};
  DeskLimits limits = {};
};

class DeskApi final : public DeskHandler {
 public:
  explicit DeskApi(DeskOptions options);
  DeskApi(const DeskApi&) = delete;
  DeskApi& operator=(const DeskApi&) = delete;
  // Ends what runs and drops what was made.
  ~DeskApi() override;

  DeskResponse handle(const DeskRequest& request) override;

 private:
  struct OpenDialog {
    std::shared_ptr<DialogSession> session;
    std::chrono::steady_clock::time_point used;
  };
  using Parts = std::vector<std::string>;

  DeskResponse answer(const DeskRequest& request, const Parts& parts);
  DeskResponse answerAccount(const DeskRequest& request, const Parts& parts);
  DeskResponse answerDialogs(const DeskRequest& request, const Parts& parts);
  DeskResponse answerFilters(const DeskRequest& request, const Parts& parts);
  DeskResponse answerLayouts(const DeskRequest& request, const Parts& parts);
  DeskResponse answerRuns(const DeskRequest& request, const Parts& parts);
  static DeskResponse answerPivots(const DeskRequest& request, const Parts& parts, RunSession& run);
  DeskResponse answerComparisons(const DeskRequest& request, const Parts& parts, RunSession& run);
  DeskResponse answerViews(const DeskRequest& request, const Parts& parts, const std::shared_ptr<RunSession>& run);
  DeskResponse refusalOf(const std::exception_ptr& failure, Language language) const;
  DeskResponse refusal(const class ApiError& error, Language language) const;

  Json account();
  Json about() const;
  void startChecks();
  std::shared_ptr<CheckSession> checks();
  Json openDialog(const Json& body, Language language);
  Json startRun(const Json& body, Language language);
  Json listFilters(const std::string& report) const;
  Json filter(const std::string& name) const;
  void saveFilter(const std::string& name, const Json& body, Language language) const;
  Json listLayouts(const std::string& report) const;
  Json layout(const std::string& name) const;
  void keepLayout(const std::string& name, const Json& body) const;
  std::shared_ptr<DialogSession> dialog(const std::string& id);
  std::shared_ptr<RunSession> run(const std::string& id);
  // The result of a run for a view of the other run that compares the two.
  std::unique_ptr<MadeReport> readerOf(std::int64_t id);
  void closeIdle();

  const DeskOptions options_;
  const Discretion discretion_;

  std::mutex mutex_;  // of what follows
  std::condition_variable ending_;
  bool ended_ = false;
  std::int64_t lastId_ = 0;
  std::size_t opening_ = 0;  // dialogs that are being opened
  std::map<std::int64_t, OpenDialog> dialogs_;
  std::map<std::int64_t, std::shared_ptr<RunSession>> runs_;
  std::shared_ptr<CheckSession> checks_;  // none before they were asked for

  std::thread sweeper_;  // last: it uses what stands above
};

}  // namespace quillon::workbench::desk

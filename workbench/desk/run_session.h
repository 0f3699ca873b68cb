// A report run on the desk: its statements while it runs, its result afterwards.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/scratch.h"
#include "workbench/desk/api_error.h"
#include "workbench/desk/check_session.h"
#include "workbench/desk/discretion.h"
#include "workbench/desk/handler.h"
#include "workbench/desk/task_thread.h"
#include "workbench/desk/view_export.h"
#include "workbench/desk/view_window.h"
#include "workbench/desk/work_state.h"
#include "workbench/runs/report_run.h"

namespace quillon::workbench::desk {

struct RunLimits {
  std::size_t views = 4;                // that are kept; one more closes the one that was used longest ago
  std::chrono::seconds idleView{3600};  // closes a view that nobody has used for so long
};

// The report is made on a thread of its own, where the documents behind its rows are opened, too. Views have threads of
// theirs. Members may be called on any thread; they throw ApiError.
class RunSession {
 public:
  // Starts the run.
  RunSession(std::int64_t id, ReportRequest request, const Discretion& discretion, RunLimits limits);
  RunSession(const RunSession&) = delete;
  RunSession& operator=(const RunSession&) = delete;
  // Stops what runs and drops what the run has made.
  ~RunSession();

  bool running() const;
  // For the list of runs; with everything that is known.
  Json summary() const;
  Json info() const;
  // Sends events to `sink` until the run has ended, and returns when the reader has gone.
  void sendEvents(Sink& sink) const;
  // Ends a run that is under way; nothing of it stays. One that has ended is as it was.
  void stop();
  // The same, and no more is to be had from it: views end, streams are cut.
  void close();

  // What CheckSession::info() gives of the errors of the account that touch the result (findingsOfReport()). The first who
  // asks begins the check. 409 when the run has no result.
  Json checks(Language language);

  // Opens a view and gives its description; `other` is the result that it is compared with. 409 when the run has no result.
  Json addView(ViewRequest request, std::unique_ptr<MadeReport> other = nullptr);
  // The result for one more thread. 409 when there is none.
  std::unique_ptr<MadeReport> reader() const;
  // {"dimensions", "measures", "ownMeasures"}: what a pivot of the result can be asked for.
  Json pivotChoices(Language language) const;
  std::shared_ptr<ViewWindow> view(std::int64_t id);
  void closeView(std::int64_t id);
  void closeIdleViews();

  // {"messages", "documents"}: what opens behind row number `row` of the view.
  Json document(ViewWindow& view, std::int64_t row);
  void sendExport(const ViewRequest& request, const std::vector<RowSpan>& folded, ExportFormat format, bool captions,
                  Sink& sink, const MadeReport* comparedWith = nullptr);

  const Report& report() const { return report_; }

 private:
  using State = WorkState;
  struct Statement {
    std::string sql;
    std::int64_t startedMs = 0;  // since the run began
    std::optional<double> ms = {};
    std::int64_t rows = -1;
  };
  class Observer;
  struct OpenView {
    std::shared_ptr<ViewWindow> window;
    std::chrono::steady_clock::time_point used;
  };

  void run(const ReportRequest& request);
  void end(State state, std::string error);
  // Under the lock.
  Json heading() const;
  std::shared_ptr<MadeReport> result() const;
  std::filesystem::path newFile();
  std::int64_t elapsedMs() const;

  const std::int64_t id_;
  const Report& report_;
  const Language language_;
  const AccountSource account_;
  const Discretion& discretion_;
  const RunLimits limits_;
  const std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
  const std::string started_;

  account::Scratch files_;  // for the rows of views; outlives them

  mutable std::mutex mutex_;  // of what follows
  mutable std::condition_variable changed_;
  std::shared_ptr<MadeReport> made_;  // of a run that is done; statements on it are its thread's
  State state_ = State::running;
  bool closed_ = false;
  std::vector<Statement> statements_;
  std::vector<std::string> messages_;
  std::string error_;
  std::int64_t endedMs_ = 0;
  std::int64_t rowCount_ = 0;
  std::vector<std::pair<std::string, std::string>> conditions_;
  std::map<std::int64_t, OpenView> views_;
  std::int64_t lastView_ = 0;
  std::int64_t lastFile_ = 0;
  std::vector<std::weak_ptr<tsql::StopRequest>> exports_;

  std::shared_ptr<CheckSession> checks_;  // none before they were asked for

  TaskThread thread_;  // last: it uses what stands above
};

}  // namespace quillon::workbench::desk

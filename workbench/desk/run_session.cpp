#include "workbench/desk/run_session.h"

#include <algorithm>
#include <utility>

#include "workbench/catalogue/catalogue.h"
#include "workbench/desk/json_forms.h"
#include "workbench/messages/filter.h"
#include "workbench/runs/row_document.h"
#include "workbench/runs/run_monitor.h"

namespace quillon::workbench::desk {

namespace {

// What a run tells is for a person to read: a report that shows messages without end is cut.
constexpr std::size_t mostMessages = 200;

Json documentJson(const OpenedVoucher& voucher, Language language) {
  Json fields = Json::array(), columns = Json::array(), rows = Json::array();
  for (const auto& [field, value] : voucher.heading)
    fields.push_back({field.caption.in(language), value.empty() ? Json() : Json(shownValue(field, value))});
  for (const VoucherField& field : voucher.columns)
    columns.push_back(field.caption.in(language));
  for (const auto& line : voucher.lines) {
    Json cells = Json::array();
    for (std::size_t i = 0; i < line.size(); ++i)
      cells.push_back(line[i].empty() ? Json() : Json(shownValue(voucher.columns[i], line[i])));
    rows.push_back(std::move(cells));
  }
  return {{"title", voucher.title.in(language)},
          {"fields", std::move(fields)},
          {"columns", std::move(columns)},
          {"rows", std::move(rows)}};
}

}  // namespace

// Keeps what the run tells.
class RunSession::Observer final : public RunObserver {
 public:
  explicit Observer(RunSession& run) : run_(run) {}

  void started(int /*number*/, std::string_view sql) override {
    {
      const std::scoped_lock lock(run_.mutex_);
      run_.statements_.push_back({.sql = std::string(sql), .startedMs = run_.elapsedMs()});
    }
    run_.changed_.notify_all();
  }
  void finished(int /*number*/, std::string_view /*sql*/, double seconds, std::int64_t rows) override {
    const std::scoped_lock lock(run_.mutex_);
    run_.statements_.back().ms = seconds * 1000;
    run_.statements_.back().rows = rows;
  }
  void shown(std::string_view message) override { keep(message); }
  void noted(std::string_view line) override { keep(line); }
  void told(int /*number*/, const odbc::Diagnostic& message) override { keep(message.text); }

 private:
  void keep(std::string_view message) {
    const std::scoped_lock lock(run_.mutex_);
    if (run_.messages_.size() < mostMessages) run_.messages_.push_back(run_.discretion_.of(std::string(message)));
  }

  RunSession& run_;
};

RunSession::RunSession(std::int64_t id, ReportRequest request, const Discretion& discretion, RunLimits limits)
    : id_(id),
      report_(reportNamed(request.report)),
      language_(request.language),
      account_(request.account),
      discretion_(discretion),
      limits_(limits),
      started_(isoTime(std::chrono::system_clock::now())) {
  thread_.post([this, request = std::move(request)] { run(request); });
}

RunSession::~RunSession() {
  close();
}

void RunSession::run(const ReportRequest& request) {
  try {
    Observer observer(*this);
    std::unique_ptr<MadeReport> made = makeReport(request, observer);
    made->keepFacts();
    const ReportDocument heading = headingOf(*made, language_, "");
    if (heading.rowCount > 0) made->table().filledColumns(report_.columns);
    {
      const std::scoped_lock lock(mutex_);
      conditions_ = heading.conditions;
      rowCount_ = heading.rowCount;
      if (!thread_.stopped()) made_ = std::move(made);
    }
    end(thread_.stopped() ? State::stopped : State::done, "");
  } catch (const FilterRefused&) {
    end(State::failed, messages::dialogRefusesRun().in(request.language));
  } catch (const std::exception& error) {
    end(thread_.stopped() ? State::stopped : State::failed, errorText(error).in(request.language));
  }
}

void RunSession::end(State state, std::string error) {
  {
    const std::scoped_lock lock(mutex_);
    if (state == State::failed) error_ = discretion_.of(std::move(error));
    endedMs_ = elapsedMs();
    state_ = state;
  }
  changed_.notify_all();
}

std::int64_t RunSession::elapsedMs() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begun_).count();
}

bool RunSession::running() const {
  const std::scoped_lock lock(mutex_);
  return state_ == State::running;
}

Json RunSession::heading() const {
  return {{"id", id_},
          {"report", report_.registration.name},
          {"state", nameOf(state_)},
          {"started", started_},
          {"title", report_.registration.title(language_)},
          {"conditions", conditions_}};
}

Json RunSession::summary() const {
  const std::scoped_lock lock(mutex_);
  return heading();
}

Json RunSession::info() const {
  const std::scoped_lock lock(mutex_);
  Json statements = Json::array();
  for (std::size_t i = 0; i < statements_.size(); ++i) {
    const Statement& statement = statements_[i];
    statements.push_back({{"n", i + 1},
                          {"sql", statement.sql},
                          {"ms", statement.ms ? Json(*statement.ms) : Json()},
                          {"rows", statement.rows}});
  }
  Json json = heading();
  json.update({{"elapsedMs", state_ == State::running ? elapsedMs() : endedMs_},
               {"statements", std::move(statements)},
               {"rowCount", rowCount_},
               {"error", error_.empty() ? Json() : Json(error_)},
               {"messages", messages_}});
  return json;
}

void RunSession::sendEvents(Sink& sink) const {
  constexpr std::chrono::milliseconds look(250);
  constexpr std::chrono::seconds silence(15);
  auto sent = std::chrono::steady_clock::now();
  const auto send = [&](const std::string& text) {
    sent = std::chrono::steady_clock::now();
    return sink.write(text);
  };
  std::size_t next = 0;
  while (sink.open()) {
    std::string events;
    bool ended = false;
    {
      std::unique_lock lock(mutex_);
      changed_.wait_for(lock, look, [&] { return next < statements_.size() || state_ != State::running || closed_; });
      for (; next < statements_.size(); ++next) {
        const Statement& statement = statements_[next];
        events += "event: statement\ndata: " +
                  lineOf({{"n", next + 1}, {"sql", statement.sql}, {"elapsedMs", statement.startedMs}}) + "\n\n";
      }
      ended = state_ != State::running || closed_;
      if (ended)
        events += "event: done\ndata: " +
                  lineOf({{"state", nameOf(state_)},
                          {"rowCount", rowCount_},
                          {"error", error_.empty() ? Json() : Json(error_)}}) +
                  "\n\n";
    }
    if (events.empty() && std::chrono::steady_clock::now() - sent >= silence) events = ": still running\n\n";
    if ((!events.empty() && !send(events)) || ended) return;
  }
}

void RunSession::stop() {
  const std::scoped_lock lock(mutex_);
  if (state_ == State::running) thread_.stop();
}

void RunSession::close() {
  std::map<std::int64_t, OpenView> views;
  std::shared_ptr<CheckSession> checks;
  {
    std::unique_lock lock(mutex_);
    closed_ = true;
    thread_.stop();
    views.swap(views_);
    checks.swap(checks_);
    for (const auto& request : exports_) {
      if (const auto running = request.lock()) running->request();
    }
  }
  changed_.notify_all();
  if (checks) checks->stop();
  views.clear();
  checks.reset();
  try {
    // What is on a server goes now; an account file's scratch when the last reader has gone.
    thread_.call([this] {
      std::shared_ptr<MadeReport> made;
      const std::scoped_lock lock(mutex_);
      made.swap(made_);
    });
  } catch (const ApiError&) {
    // The thread never ends before this.
  }
}

std::shared_ptr<MadeReport> RunSession::result() const {
  if (closed_) throw unknown(messages::noSuchRun(id_));
  if (state_ != State::done) throw ApiError(409, "state", messages::noResult());
  return made_;
}

std::filesystem::path RunSession::newFile() {
  return files_.file().parent_path() / ("rows-" + std::to_string(++lastFile_));
}

Json RunSession::checks(Language language) {
  std::shared_ptr<CheckSession> checks;
  std::shared_ptr<MadeReport> made;
  {
    const std::scoped_lock lock(mutex_);
    made = result();
    checks = checks_;
  }
  if (!checks) {
    const std::shared_ptr<MadeReport> reader = made->reader();
    const std::scoped_lock lock(mutex_);
    result();
    if (!checks_) {
      checks_ = std::make_shared<CheckSession>(
          [reader, source = account_] {
            const auto account = source.readOnly().open(tsql::OpenMode::readOnly);
            return findingsOfReport(reader->report(), reader->filter(), *account);
          },
          discretion_);
    }
    checks = checks_;
  }
  return checks->info(language);
}

std::unique_ptr<MadeReport> RunSession::reader() const {
  std::shared_ptr<MadeReport> made;
  {
    const std::scoped_lock lock(mutex_);
    made = result();
  }
  return made->reader();
}

Json RunSession::addView(ViewRequest request, std::unique_ptr<MadeReport> other) {
  std::shared_ptr<ViewWindow> window, closed;
  std::unique_ptr<MadeReport> reader = this->reader();
  std::int64_t id = 0;
  {
    const std::scoped_lock lock(mutex_);
    result();
    if (views_.size() >= limits_.views) {
      const auto oldest = std::ranges::min_element(views_, {}, [](const auto& view) { return view.second.used; });
      closed = std::move(oldest->second.window);
      views_.erase(oldest);
    }
    id = ++lastView_;
    window = std::make_shared<ViewWindow>(id, std::move(reader), std::move(request), newFile(), std::move(other));
    views_[id] = {window, std::chrono::steady_clock::now()};
  }
  closed.reset();
  try {
    return window->description();
  } catch (...) {
    closeView(id);
    throw;
  }
}

Json RunSession::pivotChoices(Language language) const {
  Json dimensions = Json::array(), measures = Json::array(), own = Json::array();
  const auto add = [language](const PivotMeasure& measure, Json& list) {
    list.push_back({{"name", measure.name},
                    {"caption", measure.caption(language)},
                    {"shares", measure.figure != PivotFigure::unitCost}});
  };
  const std::unique_ptr<MadeReport> reader = this->reader();
  const PivotChoices choices = reader->table().rowCount() > 0 ? pivotChoicesOf(*reader, language) : PivotChoices();
  bool hasState = false;
  for (const ReportDimension& dimension : choices.dimensions) {
    const bool state = dimension.kind == DimensionKind::state;
    hasState = hasState || state;
    dimensions.push_back({{"name", dimension.name}, {"caption", dimension.caption(language)}, {"state", state}});
  }
  for (const PivotMeasure& measure : choices.measures)
    add(measure, measures);
  if (hasState) {
    for (const PivotMeasure& measure : measuresOf(report_, "", true)) {
      if (!measure.state) add(measure, own);
    }
  }
  return {{"dimensions", std::move(dimensions)}, {"measures", std::move(measures)}, {"ownMeasures", std::move(own)}};
}

std::shared_ptr<ViewWindow> RunSession::view(std::int64_t id) {
  const std::scoped_lock lock(mutex_);
  const auto found = views_.find(id);
  if (found == views_.end()) throw unknown(messages::noSuchView(id));
  found->second.used = std::chrono::steady_clock::now();
  return found->second.window;
}

void RunSession::closeView(std::int64_t id) {
  std::shared_ptr<ViewWindow> closed;
  const std::scoped_lock lock(mutex_);
  const auto found = views_.find(id);
  if (found == views_.end()) return;
  closed = std::move(found->second.window);
  views_.erase(found);
}

void RunSession::closeIdleViews() {
  std::vector<std::shared_ptr<ViewWindow>> closed;
  const std::scoped_lock lock(mutex_);
  const auto now = std::chrono::steady_clock::now();
  std::erase_if(views_, [&](auto& view) {
    if (now - view.second.used < limits_.idleView) return false;
    closed.push_back(std::move(view.second.window));
    return true;
  });
}

Json RunSession::document(ViewWindow& view, std::int64_t row) {
  const std::int64_t line = view.ledgerLine(row);
  const Language language = view.request().language;
  return thread_.call([&]() -> Json {
    std::shared_ptr<MadeReport> made;
    {
      const std::scoped_lock lock(mutex_);
      made = result();
    }
    const RowValues values = rowOfLedgerLine(*made, line);
    Json messages = Json::array(), documents = Json::array();
    for (const std::string& action : {std::string(sourceDocumentAction), std::string("Pz")}) {
      const OpenedDocuments opened = openDocuments(report_, made->account(), language, values, action);
      for (const std::string& message : opened.messages)
        messages.push_back(discretion_.of(message));
      for (const OpenedVoucher& voucher : opened.opened)
        documents.push_back(documentJson(voucher, language));
    }
    return {{"messages", std::move(messages)}, {"documents", std::move(documents)}};
  });
}

void RunSession::sendExport(const ViewRequest& request, const std::vector<RowSpan>& folded, ExportFormat format,
                            bool captions, Sink& sink, const MadeReport* comparedWith) {
  const auto stop = std::make_shared<tsql::StopRequest>();
  std::shared_ptr<MadeReport> made;
  std::filesystem::path file;
  {
    const std::scoped_lock lock(mutex_);
    made = result();
    std::erase_if(exports_, [](const auto& request) { return request.expired(); });
    exports_.push_back(stop);
    file = newFile();
  }
  const tsql::StopScope scope(stop);
  const std::unique_ptr<MadeReport> reader = made->reader();
  made.reset();
  exportView(*reader, request, format, captions, file, sink, folded, comparedWith);
}

}  // namespace quillon::workbench::desk

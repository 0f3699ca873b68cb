#include "workbench/desk/desk_api.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/desk/json_forms.h"
#include "workbench/desk/layout_forms.h"
#include "workbench/desk/request_body.h"
#include "workbench/messages/filter.h"
#include "workbench/platform/filter_file.h"
#include "workbench/platform/json_file.h"
#include "workbench/platform/user_error.h"
#include "workbench/runs/filter_report.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench::desk {

namespace {

constexpr int created = 201;
constexpr std::int64_t mostRows = 1000;  // of a page
constexpr std::int64_t anyNumber = INT64_MAX / 2;

DeskResponse jsonAnswer(const Json& json, int status = 200) {
  DeskResponse response;
  response.status = status;
  response.body = lineOf(json);
  return response;
}

DeskResponse textAnswer(std::string json) {
  DeskResponse response;
  response.body = std::move(json);
  return response;
}

// Knows whether anything has been sent.
class NotingSink final : public Sink {
 public:
  explicit NotingSink(Sink& sink) : sink_(sink) {}
  bool write(std::string_view bytes) override {
    begun_ = begun_ || !bytes.empty();
    return sink_.write(bytes);
  }
  bool open() const override { return sink_.open(); }
  bool begun() const { return begun_; }

 private:
  Sink& sink_;
  bool begun_ = false;
};

std::vector<std::string> partsOf(std::string_view path) {
  std::vector<std::string> parts;
  while (true) {
    const auto slash = path.find('/');
    parts.emplace_back(path.substr(0, slash));
    if (slash == std::string_view::npos) return parts;
    path.remove_prefix(slash + 1);
  }
}

[[noreturn]] void refuseAddress() {
  throw unknown(messages::noSuchAddress());
}

// Whether the request is of that method and has so many parts.
bool is(const DeskRequest& request, const std::vector<std::string>& parts, std::string_view method, std::size_t count) {
  return request.method == method && parts.size() == count;
}

std::int64_t idOf(const std::string& text) {
  std::int64_t id = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, id);
  if (error != std::errc() || stopped != end) refuseAddress();
  return id;
}

const Report& reportIn(const Json& body) {
  const std::string name = textIn(body, "report");
  try {
    return reportNamed(name);
  } catch (const InputError& error) {
    throw unknown(error.message());
  }
}

Json described(const Report& report) {
  Json layouts = Json::array(), items = Json::array();
  for (const Layout layout : report.layouts) {
    const Caption caption = layoutCaption(layout);
    layouts.push_back({{"name", layoutName(layout)}, {"caption", inBothLanguages(caption.chinese, caption.english)}});
  }
  for (const ItemRegistration& item : report.registration.items)
    items.push_back(registeredItem(item));
  return {{"name", report.registration.name},
          {"title", inBothLanguages(report.registration.chinese, report.registration.english)},
          {"opensDocuments", report.opensDocuments()},
          {"layouts", std::move(layouts)},
          {"items", std::move(items)}};
}

std::string changedAt(const std::filesystem::path& file) {
  std::error_code error;
  const auto changed = std::filesystem::last_write_time(file, error);
  if (error) return {};
  const auto system = std::filesystem::file_time_type::clock::to_sys(changed);
  return isoTime(std::chrono::time_point_cast<std::chrono::system_clock::duration>(system));
}

}  // namespace

DeskApi::DeskApi(DeskOptions options)
    : options_(std::move(options)),
      discretion_(options_.account, {options_.filters.folder(), options_.layouts.folder()}),
      sweeper_([this] {
        std::unique_lock lock(mutex_);
        while (!ending_.wait_for(lock, options_.limits.sweep, [this] { return ended_; })) {
          lock.unlock();
          closeIdle();
          lock.lock();
        }
      }) {}

DeskApi::~DeskApi() {
  {
    const std::scoped_lock lock(mutex_);
    ended_ = true;
  }
  ending_.notify_all();
  sweeper_.join();
  // All are asked to end before the first is waited for.
  if (checks_) checks_->stop();
  for (const auto& [id, run] : runs_)
    run->stop();
  for (const auto& [id, run] : runs_)
    run->close();
}

DeskResponse DeskApi::handle(const DeskRequest& request) {
  try {
    return answer(request, partsOf(request.path));
  } catch (...) {
    return refusalOf(std::current_exception(), request.language);
  }
}

DeskResponse DeskApi::refusalOf(const std::exception_ptr& failure, Language language) const {
  try {
    std::rethrow_exception(failure);
  } catch (const ApiError& error) {
    return refusal(error, language);
  } catch (const std::invalid_argument& error) {
    return refusal({422, "value", errorText(error)}, language);
  } catch (const UserError& error) {
    return refusal({422, "value", error.message()}, language);
  } catch (const account::AccountError& error) {
    return refusal({503, "account", error.message()}, language);
  } catch (const tsql::Stopped&) {
    return refusal({409, "stopped", messages::wasStopped()}, language);
  } catch (const tsql::SqlError& error) {
    return refusal({503, "account", errorText(error)}, language);
  } catch (const AutomationError& error) {
    return refusal({503, "account", errorText(error)}, language);
  } catch (const std::exception&) {
    return refusal({500, "internal", messages::wentWrong()}, language);
  }
}

DeskResponse DeskApi::refusal(const ApiError& error, Language language) const {
  Json json = {{"error",
                {{"code", error.code()},
                 {"message", discretion_.of(error.message().in(language))},
                 {"item", error.item().empty() ? Json() : Json(error.item())}}}};
  if (!error.state().is_null()) json["state"] = error.state();
  return jsonAnswer(json, error.status());
}

DeskResponse DeskApi::answer(const DeskRequest& request, const Parts& parts) {
  const std::string& what = parts.front();
  if (what == "account") return answerAccount(request, parts);
  if (what == "dialogs") return answerDialogs(request, parts);
  if (what == "filters") return answerFilters(request, parts);
  if (what == "layouts") return answerLayouts(request, parts);
  if (what == "runs") return answerRuns(request, parts);
  if (!is(request, parts, "GET", 1)) refuseAddress();
  if (what == "about") return jsonAnswer(about());
  if (what != "reports") refuseAddress();
  Json all = Json::array();
  for (const Report& report : reports())
    all.push_back(described(report));
  return jsonAnswer(all);
}

// --- Account and program --------------------------------------------------------------------------------------------

Json DeskApi::account() {
  const auto connection = options_.account.readOnly().open(tsql::OpenMode::readOnly);
  const account::AccountInfo info = account::info(*connection);
  Json years = Json::array();
  for (const account::YearInfo& year : info.years)
    years.push_back({{"year", year.year},
                     {"firstMonth", year.costItemStartMonth},
                     {"settledMonths", year.settledMonths},
                     {"lines", year.ledgerLines}});
  return {{"code", info.accountCode},          {"name", discretion_.accountName()}, {"startDate", info.startDate},
          {"valuation", info.valuationMethod}, {"currentYear", info.currentYear},   {"years", std::move(years)}};
}

DeskResponse DeskApi::answerAccount(const DeskRequest& request, const Parts& parts) {
  if (is(request, parts, "GET", 1)) return jsonAnswer(account());
  if (parts.size() < 2 || parts[1] != "checks") refuseAddress();
  if (is(request, parts, "GET", 2)) {
    const std::shared_ptr<CheckSession> made = checks();
    return jsonAnswer(made ? made->info(request.language) : CheckSession::infoOfNone());
  }
  if (is(request, parts, "POST", 2)) {
    startChecks();
    return jsonAnswer(checks()->info(request.language), created);
  }
  if (is(request, parts, "POST", 3) && parts[2] == "stop") {
    if (const std::shared_ptr<CheckSession> made = checks()) made->stop();
    return jsonAnswer(Json::object());
  }
  if (!is(request, parts, "GET", 3)) refuseAddress();
  const std::shared_ptr<CheckSession> made = checks();
  if (!made) throw ApiError(409, "state", messages::checksNotMade());
  constexpr std::int64_t usualRows = 100;
  return jsonAnswer(made->rows(parts[2], numberOf(request.query, "offset", 0, anyNumber),
                               numberOf(request.query, "limit", usualRows, mostRows), request.language));
}

std::shared_ptr<CheckSession> DeskApi::checks() {
  const std::scoped_lock lock(mutex_);
  return checks_;
}

// Checks that are under way go on: who asks for them again waits for the same.
void DeskApi::startChecks() {
  std::shared_ptr<CheckSession> ended;  // outside of the lock
  const std::scoped_lock lock(mutex_);
  if (checks_ && checks_->running()) return;
  ended = std::move(checks_);
  checks_ = std::make_shared<CheckSession>(
      [source = options_.account, kept = options_.limits.checkRows] {
        return checkedAccount(*source.readOnly().open(tsql::OpenMode::readOnly), {}, kept);
      },
      discretion_);
}

Json DeskApi::about() const {
  Json licences = Json::array();
  for (const Licence& licence : options_.licences)
    licences.push_back({{"name", licence.name}, {"licence", licence.licence}, {"text", licence.text}});
  return {{"version", options_.version}, {"licences", std::move(licences)}};
}

// --- Dialogs --------------------------------------------------------------------------------------------------------

DeskResponse DeskApi::answerDialogs(const DeskRequest& request, const Parts& parts) {
  if (is(request, parts, "POST", 1)) return jsonAnswer(openDialog(bodyOf(request.body), request.language), created);
  if (is(request, parts, "DELETE", 2)) {
    OpenDialog closed;
    {
      const std::scoped_lock lock(mutex_);
      const auto found = dialogs_.find(idOf(parts[1]));
      if (found == dialogs_.end()) throw unknown(messages::noSuchDialog(parts[1]));
      closed = std::move(found->second);
      dialogs_.erase(found);
    }
    return jsonAnswer(Json::object());
  }
  if (parts.size() != 3) refuseAddress();
  if (request.method == "POST" && parts[2] == "set") {
    const Json body = bodyOf(request.body);
    const ItemValue value{
        .key = textIn(body, "key"), .value = textIn(body, "value", ""), .value2 = textIn(body, "value2", "")};
    return jsonAnswer({{"state", dialog(parts[1])->change(value)}});
  }
  if (request.method == "POST" && parts[2] == "click") return jsonAnswer(dialog(parts[1])->click());
  if (request.method == "GET" && parts[2] == "lookup") {
    constexpr std::int64_t usualRows = 50;
    return jsonAnswer(
        dialog(parts[1])->lookUp(textOf(request.query, "item"), textOf(request.query, "search"),
                                 static_cast<std::size_t>(numberOf(request.query, "offset", 0, INT32_MAX)),
                                 static_cast<std::size_t>(numberOf(request.query, "limit", usualRows, mostRows))));
  }
  refuseAddress();
}

Json DeskApi::openDialog(const Json& body, Language language) {
  const Report& report = reportIn(body);
  {
    const std::scoped_lock lock(mutex_);
    if (dialogs_.size() + opening_ >= options_.limits.dialogs) throw ApiError(429, "limit", messages::tooManyDialogs());
    ++opening_;
  }
  const auto opened = [this] {
    const std::scoped_lock lock(mutex_);
    --opening_;
  };
  std::shared_ptr<DialogSession> session;
  try {
    session = std::make_shared<DialogSession>(options_.account, report, languageIn(body, language), discretion_,
                                              valuesIn(body, "values"));
  } catch (...) {
    opened();
    throw;
  }
  opened();
  Json state = session->state();
  const std::scoped_lock lock(mutex_);
  const std::int64_t id = ++lastId_;
  dialogs_[id] = {std::move(session), std::chrono::steady_clock::now()};
  return {{"id", id}, {"state", std::move(state)}};
}

std::shared_ptr<DialogSession> DeskApi::dialog(const std::string& id) {
  const std::scoped_lock lock(mutex_);
  const auto found = dialogs_.find(idOf(id));
  if (found == dialogs_.end()) throw unknown(messages::noSuchDialog(id));
  found->second.used = std::chrono::steady_clock::now();
  return found->second.session;
}

// --- Saved filters --------------------------------------------------------------------------------------------------

DeskResponse DeskApi::answerFilters(const DeskRequest& request, const Parts& parts) {
  if (is(request, parts, "GET", 1)) return jsonAnswer(listFilters(textOf(request.query, "report")));
  if (parts.size() != 2) refuseAddress();
  const std::string& name = parts[1];
  if (request.method == "GET") return jsonAnswer(filter(name));
  if (request.method == "PUT") {
    saveFilter(name, bodyOf(request.body), request.language);
    return jsonAnswer(Json::object());
  }
  if (request.method != "DELETE") refuseAddress();
  if (!faultOfSavedName(name).empty() || !options_.filters.has(name)) throw unknown(messages::noSuchFilter(name));
  options_.filters.remove(name);
  return jsonAnswer(Json::object());
}

Json DeskApi::listFilters(const std::string& report) const {
  Json list = Json::array();
  for (const std::string& name : options_.filters.names()) {
    const std::filesystem::path file = options_.filters.path(name);
    std::string ofReport;
    try {
      const Report* const found = reportOfFilter(readTextFile(utf8FromPath(file)), name);
      if (found != nullptr) ofReport = found->registration.name;
    } catch (const UserError&) {
      // It is listed; whoever opens it hears what is wrong.
    }
    if (report.empty() || report == ofReport)
      list.push_back(
          {{"name", name}, {"report", ofReport.empty() ? Json() : Json(ofReport)}, {"changed", changedAt(file)}});
  }
  return list;
}

Json DeskApi::filter(const std::string& name) const {
  if (!faultOfSavedName(name).empty() || !options_.filters.has(name)) throw unknown(messages::noSuchFilter(name));
  const std::filesystem::path file = options_.filters.path(name);
  const std::string text = readTextFile(utf8FromPath(file));
  const Report* const report = reportOfFilter(text, name);
  FilterObject filter(report != nullptr ? report->registration : ReportRegistration{}, InitialValues::none);
  applyFilterFile(filter, text, name);
  Json values = Json::object();
  for (const auto& entry : filter.entries()) {
    if (entry->value.empty() && entry->value2.empty()) continue;
    values[entry->item.key] = {{"value", entry->value}, {"value2", entry->value2}};
  }
  return {{"name", name},
          {"report", report == nullptr ? Json() : Json(report->registration.name)},
          {"changed", changedAt(file)},
          {"values", std::move(values)}};
}

void DeskApi::saveFilter(const std::string& name, const Json& body, Language language) const {
  const Report& report = reportIn(body);
  if (const Message fault = faultOfSavedName(name); !fault.empty())
    throw ApiError(422, "name", messages::noFilterName(name, fault));
  FilterObject filter(report.registration, InitialValues::none);
  setItems(filter, valuesIn(body, "values"));
  std::set<const FilterEntry*> given;
  for (const auto& entry : filter.entries()) {
    if (!entry->value.empty() || !entry->value2.empty()) given.insert(entry.get());
  }
  options_.filters.save(name, filterFileText(filter, given, languageIn(body, language)), true);
}

// --- Kept layouts ---------------------------------------------------------------------------------------------------

DeskResponse DeskApi::answerLayouts(const DeskRequest& request, const Parts& parts) {
  if (is(request, parts, "GET", 1)) return jsonAnswer(listLayouts(textOf(request.query, "report")));
  if (parts.size() != 2) refuseAddress();
  const std::string& name = parts[1];
  if (request.method == "PUT") {
    keepLayout(name, bodyOf(request.body));
    return jsonAnswer(Json::object());
  }
  if (request.method != "GET" && request.method != "DELETE") refuseAddress();
  if (!options_.layouts.has(name)) throw unknown(messages::noSuchLayoutKept(name));
  if (request.method == "GET") return jsonAnswer(layout(name));
  options_.layouts.remove(name);
  return jsonAnswer(Json::object());
}

Json DeskApi::listLayouts(const std::string& report) const {
  Json list = Json::array();
  for (const std::string& name : options_.layouts.names()) {
    Json ofReport;
    try {
      ofReport = options_.layouts.read(name).report;
    } catch (const UserError&) {
      // It is listed; whoever opens it hears what is wrong.
    }
    if (report.empty() || ofReport == report)
      list.push_back({{"name", name}, {"report", ofReport}, {"changed", changedAt(options_.layouts.path(name))}});
  }
  return list;
}

Json DeskApi::layout(const std::string& name) const {
  const KeptLayout kept = options_.layouts.read(name);
  Json answer = {{"name", name}, {"report", kept.report}, {"changed", changedAt(options_.layouts.path(name))}};
  answer.update(formOfLayout(kept));
  return answer;
}

void DeskApi::keepLayout(const std::string& name, const Json& body) const {
  const KeptLayout kept = keptLayoutOf(body, reportIn(body));
  try {
    options_.layouts.requireFreeFor(name, kept.report, true);
  } catch (const UserError& error) {
    throw ApiError(422, "name", error.message());
  }
  options_.layouts.keep(name, kept, true);
}

// --- Runs -----------------------------------------------------------------------------------------------------------

DeskResponse DeskApi::answerRuns(const DeskRequest& request, const Parts& parts) {
  if (is(request, parts, "POST", 1)) return jsonAnswer(startRun(bodyOf(request.body), request.language), created);
  if (is(request, parts, "GET", 1)) {
    Json list = Json::array();
    const std::scoped_lock lock(mutex_);
    for (const auto& [id, run] : runs_)
      list.push_back(run->summary());
    return jsonAnswer(list);
  }
  if (parts.size() < 2) refuseAddress();
  const std::shared_ptr<RunSession> session = run(parts[1]);
  if (is(request, parts, "GET", 2)) return jsonAnswer(session->info());
  if (is(request, parts, "DELETE", 2)) {
    {
      const std::scoped_lock lock(mutex_);
      runs_.erase(idOf(parts[1]));
    }
    session->close();
    return jsonAnswer(Json::object());
  }
  if (parts.size() < 3) refuseAddress();
  if (is(request, parts, "POST", 3) && parts[2] == "stop") {
    session->stop();
    return jsonAnswer(Json::object());
  }
  if (is(request, parts, "GET", 3) && parts[2] == "events") {
    DeskResponse response;
    response.contentType = "text/event-stream";
    response.stream = [session](Sink& sink) { session->sendEvents(sink); };
    return response;
  }
  if (is(request, parts, "GET", 3) && parts[2] == "checks") return jsonAnswer(session->checks(request.language));
  if (parts[2] == "pivots") return answerPivots(request, parts, *session);
  if (parts[2] == "comparisons") return answerComparisons(request, parts, *session);
  if (parts[2] == "views") return answerViews(request, parts, session);
  refuseAddress();
}

Json DeskApi::startRun(const Json& body, Language language) {
  ReportRequest request{.report = reportIn(body).registration.name,
                        .account = options_.account,
                        .values = valuesIn(body, "values"),
                        .language = languageIn(body, language)};
  if (const auto member = body.find("dialog"); member != body.end() && !member->is_null()) {
    const std::shared_ptr<DialogSession> session = dialog(std::to_string(numberIn(body, "dialog")));
    if (session->report().registration.name != request.report)
      throw ApiError(422, "dialog", messages::dialogOfOtherReport());
    request.accepted = session->acceptedFilter();
  }
  const std::scoped_lock lock(mutex_);
  if (runs_.size() >= options_.limits.runs) throw ApiError(429, "limit", messages::tooManyRuns());
  const auto underWay = std::ranges::count_if(runs_, [](const auto& run) { return run.second->running(); });
  if (static_cast<std::size_t>(underWay) >= options_.limits.running)
    throw ApiError(429, "limit", messages::tooManyRunning());
  const std::int64_t id = ++lastId_;
  runs_[id] = std::make_shared<RunSession>(id, std::move(request), discretion_, options_.limits.run);
  return {{"id", id}};
}

std::shared_ptr<RunSession> DeskApi::run(const std::string& id) {
  const std::scoped_lock lock(mutex_);
  const auto found = runs_.find(idOf(id));
  if (found == runs_.end()) throw unknown(messages::noSuchRun(id));
  return found->second;
}

// --- Views ----------------------------------------------------------------------------------------------------------

DeskResponse DeskApi::answerPivots(const DeskRequest& request, const Parts& parts, RunSession& run) {
  if (is(request, parts, "GET", 3)) return jsonAnswer(run.pivotChoices(request.language));
  if (is(request, parts, "POST", 3))
    return jsonAnswer(run.addView(pivotRequestOf(bodyOf(request.body), request.language)), created);
  refuseAddress();
}

std::unique_ptr<MadeReport> DeskApi::readerOf(std::int64_t id) {
  return run(std::to_string(id))->reader();
}

DeskResponse DeskApi::answerComparisons(const DeskRequest& request, const Parts& parts, RunSession& run) {
  if (!is(request, parts, "POST", 3)) refuseAddress();
  ViewRequest asked = comparisonRequestOf(bodyOf(request.body), request.language);
  std::unique_ptr<MadeReport> other = readerOf(*asked.comparedWith);
  return jsonAnswer(run.addView(std::move(asked), std::move(other)), created);
}

DeskResponse DeskApi::answerViews(const DeskRequest& request, const Parts& parts,
                                  const std::shared_ptr<RunSession>& run) {
  if (is(request, parts, "POST", 3))
    return jsonAnswer(run->addView(viewRequestOf(bodyOf(request.body), run->report(), request.language)), created);
  if (parts.size() < 4) refuseAddress();
  const std::int64_t id = idOf(parts[3]);
  const std::shared_ptr<ViewWindow> view = run->view(id);
  if (is(request, parts, "DELETE", 4)) {
    run->closeView(id);
    return jsonAnswer(Json::object());
  }
  if (parts.size() != 5) refuseAddress();
  if (request.method == "GET" && parts[4] == "rows") {
    constexpr std::int64_t usualRows = 200;
    return textAnswer(view->rows(numberOf(request.query, "offset", 0, anyNumber),
                                 numberOf(request.query, "limit", usualRows, mostRows)));
  }
  if (request.method == "GET" && parts[4] == "details")
    return textAnswer(view->details(numberOf(request.query, "n", 0, anyNumber)));
  if (request.method == "POST" && parts[4] == "document")
    return jsonAnswer(run->document(*view, numberIn(bodyOf(request.body), "n")));
  if (request.method == "GET" && parts[4] == "where")
    return jsonAnswer(
        view->behind(numberOf(request.query, "n", 0, anyNumber), numberOf(request.query, "column", 0, anyNumber)));
  if (request.method == "PUT" && parts[4] == "folds") {
    view->fold(rowsIn(bodyOf(request.body), "rows"));
    return jsonAnswer(Json::object());
  }
  if (request.method != "GET" || parts[4] != "export") refuseAddress();

  const std::string name = textOf(request.query, "format");
  constexpr std::array formats{ExportFormat::csv, ExportFormat::xlsx, ExportFormat::html};
  const auto format = std::ranges::find(formats, name, endingOf);
  if (format == formats.end()) throw ApiError(422, "format", messages::noExportFormat());
  view->description();  // what cannot be shown is refused before the download begins
  DeskResponse response;
  response.contentType = contentTypeOf(*format);
  response.headers.emplace_back("Content-Disposition", "attachment; filename=\"" + run->report().registration.name +
                                                           "-" + std::string(layoutName(view->request().layout)) + "." +
                                                           name + "\"");
  // A run that has been closed since cannot be read any more; that is said before the download begins, too.
  std::shared_ptr<MadeReport> other;
  if (const auto& compared = view->request().comparedWith) other = readerOf(*compared);
  response.headWaits = true;
  response.stream = [this, run, other, asked = view->request(), folded = view->folded(), format = *format,
                     captions = textOf(request.query, "captions") == "1", language = request.language](Sink& sink) {
    NotingSink noting(sink);
    try {
      run->sendExport(asked, folded, format, captions, noting, other.get());
    } catch (...) {
      if (noting.begun()) throw;
      throw StreamRefused(refusalOf(std::current_exception(), language));
    }
  };
  return response;
}

void DeskApi::closeIdle() {
  std::vector<std::shared_ptr<DialogSession>> closed;  // outside of the lock
  std::vector<std::shared_ptr<RunSession>> runs;
  {
    const std::scoped_lock lock(mutex_);
    const auto now = std::chrono::steady_clock::now();
    std::erase_if(dialogs_, [&](auto& dialog) {
      if (now - dialog.second.used < options_.limits.idleDialog) return false;
      closed.push_back(std::move(dialog.second.session));
      return true;
    });
    for (const auto& [id, run] : runs_)
      runs.push_back(run);
  }
  for (const auto& run : runs)
    run->closeIdleViews();
}

}  // namespace quillon::workbench::desk

// Runs a report on an embedded account and prints what it costs, one figure a line (name, blank, value):
//
//   result              count of rows and sums of the result table
//   report_seconds      median of a whole run: open, filter, statements, close
//   own_share           the part of a run that the library spends outside the session, median
//   translated_seconds  median of the report's own statements translated by hand into SQLite's SQL, on the same file
//   ratio               report_seconds / translated_seconds, run by run in turn, median
//   best_seconds        one query for the same rows, written without regard to the report's own statements
//   first_seconds       the first run of the process
//   peak_mib            the most memory that the process had
//
// The receipt/issue/balance report runs by cost item over a year, the outbound summary by cost-item class and the voucher
// report over the same year, the detail ledger over that year of an inventory that has LINES ledger lines in one
// warehouse then. Count of rows and sums of all must be the same; else it fails.
//
// REPORT/month runs it over January of that year alone, and only once: the receipts, issues and balance of a later month
// read the year up to it.
//
//   report_bench REPORT[:LINES|/month] ACCOUNT HAND.sql BEST.sql|- [RUNS]
//                                                                   (RUNS 0: the report once, without the others)
#include <sqlite3.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/catalogue/library_runner.h"
#include "workbench/platform/account_source.h"
#include "workbench/tsql/engine/engine.h"

namespace {

using namespace quillon;
using Clock = std::chrono::steady_clock;

constexpr std::string_view resultTable = "bench_result";

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.at(values.size() / 2);
}

std::string readFile(const char* path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + std::string(path));
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// Counts the time that the library's calls spend inside the session.
class SessionTime final : public Session {
  template <typename Call>
  auto timed(Call call) {
    struct Stopwatch {
      explicit Stopwatch(double& to) : total(to) {}
      ~Stopwatch() { total += secondsSince(start); }
      double& total;
      Clock::time_point start = Clock::now();
    } const stopwatch(seconds_);
    return call();
  }

 public:
  SessionTime(std::shared_ptr<Session> session, double& seconds) : session_(std::move(session)), seconds_(seconds) {}

  void setCursorLocation(CursorLocation location) override {
    timed([&] { session_->setCursorLocation(location); });
  }
  void setConnectionString(std::string_view text) override {
    timed([&] { session_->setConnectionString(text); });
  }
  void setConnectionTimeout(int seconds) override {
    timed([&] { session_->setConnectionTimeout(seconds); });
  }
  void setCommandTimeout(int seconds) override {
    timed([&] { session_->setCommandTimeout(seconds); });
  }
  void open(std::string_view user, std::string_view password, int options) override {
    timed([&] { session_->open(user, password, options); });
  }
  std::int64_t execute(std::string_view sql) override {
    return timed([&] { return session_->execute(sql); });
  }
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override {
    return timed([&] { return session_->query(sql, options); });
  }
  int state() override {
    return timed([&] { return session_->state(); });
  }
  void close() override {
    timed([&] { session_->close(); });
  }

 private:
  std::shared_ptr<Session> session_;
  double& seconds_;
};

// A report as it is measured: the filter, and what of the result must agree with the other statements' result.
struct Subject {
  std::string_view report;
  // Filter values, "lower..upper" for a range; $year and the like are put in.
  std::vector<std::pair<std::string, std::string>> settings;
  std::string_view figures;  // columns of the result table, summed
};

const Subject& subjectOf(std::string_view report) {
  static const std::vector<Subject> subjects = {
      {.report = "sfc-item",
       .settings = {{"cModal", "1"}, {"iYear", "$year"}},
       .figures = "iQuantity, iMoney, iQcQuantity, iQcMoney, iInQuantity, iInMoney, iOutQuantity, iOutMoney, "
                  "iQmQuantity, iQmMoney"},
      {.report = "outsum-item",
       .settings = {{"cModal", "0"}, {"iYear", "$year"}},
       .figures = "iQuantity, iMoney, iFXMoney"},
      {.report = "fx-wt",
       .settings = {{"dKeepDate", "$year-01-01..$year-12-31"}},
       // Without the quotients, which are rounded from floats: what lies next to a half need not round alike.
       .figures = "iAInQuantity, iInCost, iAInPrice, iAOutQuantity, iOutCost, iAOutPrice, iItemInQuantity, "
                  "iIteminPrice, iItemoutQuantity, iItemOutPrice"},
      {.report = "fx-detail",
       .settings = {{"iYear", "$year"}, {"cInvCode", "$inventory"}, {"cWhCode", "$warehouse"}},
       .figures = "rowno, iQuantity, iCost, iPrice, iItemQuantity, iItemCost, iItemPrice"},
  };
  const auto found = std::ranges::find(subjects, report, &Subject::report);
  if (found == subjects.end()) throw std::runtime_error("no report to measure: " + std::string(report));
  return *found;
}

// "a, b" as "sum(a), sum(b)".
std::string sumsOf(std::string_view columns) {
  std::string text = "sum(";
  for (const char c : columns)
    text += c == ',' ? std::string("), sum(") : std::string(1, c);
  return text + ")";
}

class Bench {
 public:
  Bench(Subject subject, const std::string& lines, bool oneMonth, std::filesystem::path account)
      : subject_(std::move(subject)), account_(std::move(account)) {
    if (oneMonth) {
      std::erase_if(subject_.settings, [](const auto& setting) { return setting.first == "dKeepDate"; });
      subject_.settings.emplace_back("dKeepDate", "$year-01-01..$year-01-31");
    }
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::readOnly);
    const auto info = account::info(*connection);
    // The fullest year whose months are all settled; of the accounts' years the first is no whole year of cost items.
    const account::YearInfo* year = nullptr;
    for (const account::YearInfo& each : info.years) {
      if (each.settledMonths == 12 && each.costItemStartMonth == 1 && (!year || year->ledgerLines < each.ledgerLines))
        year = &each;
    }
    if (!year) throw std::runtime_error("the account has no year that is settled and kept by cost item throughout");
    values_["$year"] = std::to_string(year->year);
    if (lines.empty()) return;
    eachRow(
        *connection,
        "select base.cInvCode, base.cWhCode from ia_subsidiary base join Inventory using (cInvCode) where iYear = " +
            values_["$year"] +
            " and bCheckBatch = 0 and 1 not in (bCheckFree1, bCheckFree2, bCheckFree3) "
            "group by base.cInvCode, base.cWhCode having count(*) = " +
            lines + " order by base.cInvCode limit 1",
        [&](char** row) {
          values_.insert({{"$inventory", row[0]}, {"$warehouse", row[1]}});
        });
    if (!values_.contains("$inventory")) throw std::runtime_error("no inventory has " + lines + " ledger lines");
  }

  struct Run {
    double seconds = 0;
    double ownShare = 0;
  };

  Run report() {
    using namespace workbench;
    const AccountSource account = AccountSource::inFile(account_);
    double sessionSeconds = 0;
    EmbeddedPlatform platform({.account = account, .makeSession = [&] {
                                 return std::make_shared<SessionTime>(std::make_shared<AccountSession>(nullptr),
                                                                      sessionSeconds);
                               }});
    const auto filter = std::make_shared<FilterObject>(reportNamed(subject_.report).registration);
    for (const auto& [key, setting] : subject_.settings) {
      const std::string value = withValues(setting);
      const std::size_t dots = value.find("..");
      FilterEntry& entry = *filter->find(key);
      entry.value = value.substr(0, dots);
      if (dots != std::string::npos) entry.value2 = value.substr(dots + 2);
    }
    const auto login = std::make_shared<WorkbenchLogin>(LoginDetails{.accountConnection = account.connectionString(),
                                                                     .accountCode = "001",
                                                                     .accountingYear = values_["$year"],
                                                                     .languageRegion = "zh-CN",
                                                                     .currentPeriodYear = std::stoi(values_["$year"])});
    const auto argument = std::make_shared<WorkbenchArgument>(filter, login, std::string(resultTable));
    const auto runner = makeReportRunner(platform);

    const auto start = Clock::now();
    runner->run(reportNamed(subject_.report), argument);
    const double seconds = secondsSince(start);
    madeTable_ = argument->dataSourceState().resultTable;
    return {.seconds = seconds, .ownShare = (seconds - sessionSeconds) / seconds};
  }

  // Runs SQLite statements as they stand, on a connection of their own. What stands between "-- for each month" and
  // "-- end" runs twelve times, with $month put in.
  double handWritten(std::string_view script) {
    const std::string sql = withMonths(withValues(std::string(script)));
    const auto start = Clock::now();
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::existing);
    run(*connection, sql);
    return secondsSince(start);
  }

  // Count of rows and sums of the table that the report made, or that the statements made by hand, as they lie in the
  // file; the table is gone afterwards.
  std::string takeReportResult() {
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::existing);
    std::string text = sums(*connection, madeTable_);
    connection->execute("drop table " + madeTable_);
    return text;
  }
  std::string takeHandResult() {
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::existing);
    std::string text = sums(*connection, "bench_result");
    run(*connection, "drop table bench_result");
    return text;
  }

 private:
  static int call(void* action, int, char** row, char**) {
    (*static_cast<std::function<void(char**)>*>(action))(row);
    return 0;
  }
  static void eachRow(tsql::Connection& connection, const std::string& sql, std::function<void(char**)> action) {
    char* message = nullptr;
    if (sqlite3_exec(connection.handle(), sql.c_str(), call, &action, &message) != SQLITE_OK) {
      throw std::runtime_error(message);
    }
  }
  static void run(tsql::Connection& connection, const std::string& sql) {
    eachRow(connection, sql, [](char**) {});
  }

  std::string sums(tsql::Connection& connection, const std::string& table) const {
    std::string text;
    eachRow(connection, "select count(*) || ' rows', " + sumsOf(subject_.figures) + " from \"" + table + "\"",
            [&](char** row) {
              const auto columns = 2 + std::ranges::count(subject_.figures, ',');
              for (std::ptrdiff_t column = 0; column < columns; ++column) {
                text.append(row[column] ? row[column] : "null").append(" ");
              }
            });
    return text;
  }

  std::string withValues(std::string text) const {
    for (const auto& [name, value] : values_)
      text = replaced(std::move(text), name, value);
    return text;
  }
  static std::string replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
      text.replace(at, what.size(), by);
    return text;
  }
  static std::string withMonths(std::string script) {
    constexpr std::string_view open = "-- for each month", close = "-- end";
    for (std::size_t begin = script.find(open); begin != std::string::npos; begin = script.find(open, begin)) {
      const std::size_t end = script.find(close, begin);
      if (end == std::string::npos) throw std::runtime_error("a block of months does not end");
      const std::string block = script.substr(begin + open.size(), end - begin - open.size());
      std::string months;
      for (int month = 1; month <= 12; ++month)
        months += replaced(block, "$month", std::to_string(month));
      script.replace(begin, end + close.size() - begin, months);
    }
    return script;
  }

  Subject subject_;
  std::filesystem::path account_;
  std::map<std::string, std::string> values_;
  std::string madeTable_;
};

double peakMib() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void print(std::string_view name, double value) {
  std::cout << name << ' ' << value << '\n';
}

// A comparison counts only between statements that give the same.
void requireSame(std::string_view what, const std::string& report, const std::string& other) {
  if (report != other)
    throw std::runtime_error("the " + std::string(what) + " statements give other rows: " + other + " instead of " +
                             report);
}

int run(int argc, char** argv) {
  if (argc < 5)
    throw std::runtime_error("usage: report_bench REPORT[:LINES|/month] ACCOUNT HAND.sql BEST.sql|- [RUNS]");
  std::string_view what = argv[1];
  constexpr std::string_view month = "/month";
  const bool oneMonth = what.ends_with(month);
  if (oneMonth) what.remove_suffix(month.size());
  const std::size_t colon = std::min(what.find(':'), what.size());
  Bench bench(subjectOf(what.substr(0, colon)), std::string(what.substr(std::min(colon + 1, what.size()))), oneMonth,
              argv[2]);
  const int runs = argc > 5 ? std::atoi(argv[5]) : 5;
  if (oneMonth && runs > 0) throw std::runtime_error("a month has no other statements to compare with: give 0 runs");

  const Bench::Run first = bench.report();
  const std::string sums = bench.takeReportResult();
  std::cout << "result " << sums << '\n';
  print("first_seconds", first.seconds);
  if (runs > 0) {
    const std::string hand = readFile(argv[3]);
    const std::string best = std::string_view(argv[4]) == "-" ? std::string() : readFile(argv[4]);
    bench.handWritten(hand);
    requireSame("translated", sums, bench.takeHandResult());
    if (!best.empty()) {
      bench.handWritten(best);
      requireSame("best", sums, bench.takeHandResult());
    }

    std::vector<double> report, share, translated, bestOf, ratio;
    for (int i = 0; i < runs; ++i) {
      const Bench::Run one = bench.report();
      bench.takeReportResult();
      const double other = bench.handWritten(hand);
      bench.takeHandResult();
      if (!best.empty()) {
        bestOf.push_back(bench.handWritten(best));
        bench.takeHandResult();
      }
      report.push_back(one.seconds);
      share.push_back(one.ownShare);
      translated.push_back(other);
      ratio.push_back(one.seconds / other);
    }
    print("report_seconds", median(report));
    print("own_share", median(share));
    print("translated_seconds", median(translated));
    if (!best.empty()) print("best_seconds", median(bestOf));
    print("ratio", median(ratio));
  }
  print("peak_mib", peakMib());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "report_bench: " << error.what() << '\n';
    return 1;
  }
}

// Runs the receipt/issue/balance report (mode 1: by cost item, the whole year) on an embedded account and prints what
// it costs, one figure a line (name, blank, value):
//
//   report_seconds      median of a whole run: open, filter, statements, close
//   own_share           the part of a run that the library spends outside the session, median
//   translated_seconds  median of the same statements translated by hand into SQLite's SQL, on the same file
//   ratio               report_seconds / translated_seconds, run by run in turn, median
//   best_seconds        one query for the same rows, written without regard to the statements
//   first_seconds      the first run of the process
//   peak_mib           the most memory that the process had
//
// Count of rows and sums of all three must be the same; else it fails.
//
//   report_bench ACCOUNT HAND.sql BEST.sql [RUNS]      (RUNS 0: the report once, without the others)
#include <sqlite3.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "frame/module.h"
#include "reports/sfc_item/sfc_item.h"
#include "workbench/account/account.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_object.h"
#include "workbench/platform/registrations.h"
#include "workbench/tsql/engine.h"

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

class TimedPlatform final : public Platform {
 public:
  explicit TimedPlatform(workbench::EmbeddedPlatform& platform) : platform_(platform) {}

  double sessionSeconds = 0;

  std::shared_ptr<Session> createSession() override {
    return std::make_shared<SessionTime>(platform_.createSession(), sessionSeconds);
  }
  std::shared_ptr<PublicComponent> createPublicComponent() override { return platform_.createPublicComponent(); }
  std::shared_ptr<ResourceService> createResourceService() override { return platform_.createResourceService(); }
  std::shared_ptr<UniqueNameSource> createUniqueNameSource() override { return platform_.createUniqueNameSource(); }
  std::shared_ptr<DrillThroughHelper> createDrillThroughHelper() override {
    return platform_.createDrillThroughHelper();
  }
  std::string namingNumber() override { return platform_.namingNumber(); }

 private:
  workbench::EmbeddedPlatform& platform_;
};

class Bench {
 public:
  explicit Bench(std::filesystem::path account) : account_(std::move(account)) {
    // The fullest year.
    const auto info = account::info(*tsql::Connection::open(account_, tsql::OpenMode::readOnly));
    const auto year = std::max_element(info.years.begin(), info.years.end(), [](const auto& left, const auto& right) {
      return left.ledgerLines < right.ledgerLines;
    });
    year_ = std::to_string(year->year);
  }

  struct Run {
    double seconds = 0;
    double ownShare = 0;
  };

  Run report() {
    const std::string connection = workbench::connectionString(account_);
    workbench::EmbeddedPlatform embedded({.accountConnection = connection, .messages = {}});
    TimedPlatform platform(embedded);
    Module module(platform);
    const auto filter = std::make_shared<workbench::FilterObject>(workbench::sfcItemRegistration());
    filter->find("cModal")->value = "1";
    filter->find("iYear")->value = year_;
    const auto login = std::make_shared<workbench::WorkbenchLogin>(
        workbench::LoginDetails{.accountConnection = connection, .accountingYear = year_, .languageRegion = "zh-CN"});
    workbench::WorkbenchArgument argument(filter, login, std::string(resultTable));

    const auto start = Clock::now();
    SfcItem instance(module);
    instance.getSql(argument);
    const double seconds = secondsSince(start);
    if (module.session) throw std::runtime_error("the build stopped half-way");
    return {.seconds = seconds, .ownShare = (seconds - platform.sessionSeconds) / seconds};
  }

  // Runs SQLite statements as they stand, on a connection of their own.
  double handWritten(std::string sql) {
    for (std::size_t at = sql.find("$year"); at != std::string::npos; at = sql.find("$year", at))
      sql.replace(at, std::string_view("$year").size(), year_);
    const auto start = Clock::now();
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::existing);
    char* message = nullptr;
    if (sqlite3_exec(connection->handle(), sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK)
      throw std::runtime_error(message);
    return secondsSince(start);
  }

  // Count of rows and sums of the result table, as they lie in the file; the table is gone afterwards. `declared` tells
  // whether the engine knows the table, or SQLite alone.
  std::string takeResult(bool declared) {
    const auto connection = tsql::Connection::open(account_, tsql::OpenMode::existing);
    std::string text;
    const auto appendField = [](void* to, int count, char** values, char**) {
      for (int column = 0; column < count; ++column) {
        static_cast<std::string*>(to)->append(values[column] ? values[column] : "null").append(" ");
      }
      return 0;
    };
    const char* const sums =
        "select count(*), sum(iQuantity), sum(iMoney), sum(iQcQuantity), sum(iQcMoney), sum(iInQuantity), "
        "sum(iInMoney), sum(iOutQuantity), sum(iOutMoney), sum(iQmQuantity), sum(iQmMoney) from bench_result";
    char* message = nullptr;
    if (sqlite3_exec(connection->handle(), sums, appendField, &text, &message) != SQLITE_OK)
      throw std::runtime_error(message);
    if (declared) {
      connection->execute("drop table bench_result");
    } else {
      sqlite3_exec(connection->handle(), "drop table bench_result", nullptr, nullptr, nullptr);
    }
    return text;
  }

 private:
  std::filesystem::path account_;
  std::string year_;
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
  if (argc < 4) throw std::runtime_error("usage: report_bench ACCOUNT HAND.sql BEST.sql [RUNS]");
  Bench bench(argv[1]);
  const int runs = argc > 4 ? std::atoi(argv[4]) : 5;

  const Bench::Run first = bench.report();
  const std::string sums = bench.takeResult(true);
  print("first_seconds", first.seconds);
  if (runs > 0) {
    const std::string hand = readFile(argv[2]);
    const std::string best = readFile(argv[3]);
    bench.handWritten(hand);
    requireSame("translated", sums, bench.takeResult(false));
    bench.handWritten(best);
    requireSame("best", sums, bench.takeResult(false));

    std::vector<double> report, share, translated, bestOf, ratio;
    for (int i = 0; i < runs; ++i) {
      const Bench::Run one = bench.report();
      bench.takeResult(true);
      const double other = bench.handWritten(hand);
      bench.takeResult(false);
      bestOf.push_back(bench.handWritten(best));
      bench.takeResult(false);
      report.push_back(one.seconds);
      share.push_back(one.ownShare);
      translated.push_back(other);
      ratio.push_back(one.seconds / other);
    }
    print("report_seconds", median(report));
    print("own_share", median(share));
    print("translated_seconds", median(translated));
    print("best_seconds", median(bestOf));
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

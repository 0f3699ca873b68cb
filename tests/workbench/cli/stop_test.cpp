// What the program does when it is asked to end at any moment: Ctrl-C, the system's wish, a closed terminal, a reader that
// has seen enough. The account is as it was, no file stays anywhere, one line says so, and the exit status tells the
// signal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>
#include <regex>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/cli/interrupted_program.h"
#include "workbench/account/account.h"
#include "workbench/account/leftover_tables.h"
#include "workbench/account/transfer.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using test::ProgramEnd;
using test::runProgram;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Moments for each command. A program with sanitizers takes long to start; there, fewer have to do.
#ifdef __SANITIZE_ADDRESS__
constexpr int moments = 6;
#else
constexpr int moments = 50;
#endif

struct SignalEnd {
  int signal;
  int status;
  const char* said;
};
constexpr std::array signals = {
    SignalEnd{SIGINT, 130, "quillon: ended by Ctrl-C; "},
    SignalEnd{SIGTERM, 143, "quillon: ended by a request to end; "},
    SignalEnd{SIGHUP, 129, "quillon: ended by the closing of its terminal; "},
};

// All files below a folder or the file itself, with their content.
std::map<std::string, std::string> contentsOf(const std::filesystem::path& path) {
  std::map<std::string, std::string> contents;
  if (std::filesystem::is_regular_file(path)) contents[""] = contentOf(path);
  if (!std::filesystem::is_directory(path)) return contents;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
    if (entry.is_regular_file()) contents[utf8FromPath(entry.path())] = contentOf(entry.path());
  }
  return contents;
}

class Stop : public ::testing::Test {
 protected:
  Stop() {
    account::createSample(folder_ / "a", {.rows = 1000, .seed = 3, .years = 1});
    content_ = contentOf(folder_ / "a");
    setenv("TMPDIR", utf8FromPath(temporary_.path()).c_str(), 1);
  }
  ~Stop() override { unsetenv("TMPDIR"); }

  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }

  // A command that nobody stops: how it ends, and the time that it takes.
  struct Undisturbed {
    int status;
    std::int64_t microseconds;
    bool endedSo(const ProgramEnd& end) const { return !end.killed && end.status == status; }
  };
  static Undisturbed undisturbed(const std::vector<std::string>& command) {
    const auto begin = std::chrono::steady_clock::now();
    const ProgramEnd end = runProgram(command, {.after = std::chrono::microseconds(0), .signal = 0});
    const auto whole = std::chrono::steady_clock::now() - begin;
    EXPECT_LE(end.status, 1) << end.errors;
    return {end.status, std::chrono::duration_cast<std::chrono::microseconds>(whole).count()};
  }

  // Runs the command with the signal of this moment at some time of its run. When it was met at work it says so in one line,
  // which begins with what the signal is called; `errors` of its end is then what follows that.
  ProgramEnd stopOnce(const std::vector<std::string>& command, const Undisturbed& whole, int moment) {
    const SignalEnd& way = signals[static_cast<std::size_t>(moment) % signals.size()];
    const auto after = std::uniform_int_distribution<std::int64_t>(0, whole.microseconds)(random_);
    ProgramEnd end = runProgram(command, {.after = std::chrono::microseconds(after), .signal = way.signal});
    if (!end.killed && !whole.endedSo(end)) {
      ++stopped_;
      EXPECT_EQ(end.status, way.status) << end.errors;
      EXPECT_THAT(end.errors, StartsWith(way.said));
      EXPECT_EQ(std::ranges::count(end.errors, '\n'), 1) << end.errors;
      end.errors.erase(0, std::string_view(way.said).size());
    }
    return end;
  }

  // Runs the command undisturbed, and then again and again with a signal at some moment of it. `output` is what the
  // command makes, "" when it only prints; it is not compared when `comparable` is false.
  void stopEverywhere(const std::vector<std::string>& command, const std::string& output = "", bool comparable = true) {
    const std::vector<std::string> before = folder_.names();
    const Undisturbed whole = undisturbed(command);
    const auto made = output.empty() ? std::map<std::string, std::string>() : contentsOf(folder_ / output);
    ASSERT_EQ(made.empty(), output.empty());
    for (int moment = 0; moment < moments; ++moment) {
      SCOPED_TRACE(moment);
      if (!output.empty()) std::filesystem::remove_all(folder_ / output);
      const bool complete = whole.endedSo(stopOnce(command, whole, moment));
      if (complete && comparable && !output.empty()) {
        EXPECT_TRUE(contentsOf(folder_ / output) == made);
      }
      if (!complete) {
        EXPECT_EQ(folder_.names(), before);
      }
      EXPECT_TRUE(contentOf(folder_ / "a") == content_);
      EXPECT_THAT(temporary_.names(), IsEmpty());
      if (HasFailure()) return;
    }
    if (!output.empty()) std::filesystem::remove_all(folder_ / output);
  }

  TestFolder temporary_;
  TestFolder folder_;
  std::string content_;
  std::mt19937 random_{20240630};
  int stopped_ = 0;  // times that a program was met at work, as long enough ones are
};

TEST_F(Stop, ReportsAndDialogs) {
  for (const std::string format : {"csv", "html", "xlsx"}) {
    SCOPED_TRACE(format);
    stopEverywhere({"report", "sfc-item", "--account", path("a"), "--set", "cModal=1", "--format", format, "-o",
                    path("r"), "--lang", "en"},
                   "r", format != "xlsx");
  }
  for (const char* const report : {"outsum-item", "fx-wt"}) {
    SCOPED_TRACE(report);
    stopEverywhere({"report", report, "--account", path("a"), "--lang", "en"});
  }
  stopEverywhere({"dialog", "fx-detail", "--account", path("a"), "--lang", "en"});
  stopEverywhere(
      {"drill", "fx-wt", "--account", path("a"), "--row", "cVouType=10", "--action", "Voucher", "--lang", "en"});
  EXPECT_GT(stopped_, moments);
}

// The desk serves until it is asked to end. The browser gets the link in a file that nobody else can read, which goes with
// the program.
TEST_F(Stop, TheDesk) {
#ifdef __SANITIZE_ADDRESS__
  constexpr std::chrono::seconds served{10};
#else
  constexpr std::chrono::seconds served{3};
#endif
  const std::filesystem::path programs = folder_ / "bin";
  std::filesystem::create_directory(programs);
  std::ofstream(programs / "xdg-open") << "#!/bin/sh\ncp -p \"$1\" \"" << utf8FromPath(programs / "shown") << "\"\n";
  std::filesystem::permissions(programs / "xdg-open", std::filesystem::perms::owner_all);
  const char* const given = std::getenv("PATH");
  const std::string before = given == nullptr ? "/usr/bin:/bin" : given;
  setenv("PATH", (utf8FromPath(programs) + ":" + before).c_str(), 1);
  for (const SignalEnd& way : signals) {
    SCOPED_TRACE(way.said);
    const ProgramEnd end =
        runProgram({"serve", "--account", path("a"), "--open"}, {.after = served, .signal = way.signal},
                   {.output = utf8FromPath(programs / "link")});
    EXPECT_FALSE(end.killed);
    EXPECT_EQ(end.status, way.status);
    EXPECT_EQ(end.errors, way.said + std::string("the desk is closed, and what it had made is gone\n"));
    std::string link = contentOf(programs / "link");
    EXPECT_TRUE(std::regex_match(link, std::regex("http://127\\.0\\.0\\.1:[0-9]+/open/[0-9a-f]{64}\n"))) << link;
    link.pop_back();
    EXPECT_THAT(contentOf(programs / "shown"), ::testing::HasSubstr("url=" + link + "\""));
    EXPECT_EQ(std::filesystem::status(programs / "shown").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_THAT(temporary_.names(), IsEmpty());
    EXPECT_TRUE(contentOf(folder_ / "a") == content_);
  }
  setenv("PATH", before.c_str(), 1);
}

TEST_F(Stop, AccountsComingAndGoing) {
  stopEverywhere({"account", "new", path("b"), "--rows", "1000", "--seed", "3", "--years", "1"}, "b");
  stopEverywhere({"account", "export", path("a"), path("csv")}, "csv");
  stopEverywhere({"account", "script", path("a"), path("a.sql")}, "a.sql");
  account::exportAccount(*tsql::Connection::open(folder_ / "a", tsql::OpenMode::readOnly), folder_ / "in");
  stopEverywhere({"account", "import", path("b"), path("in")}, "b");
  EXPECT_GT(stopped_, moments / 2);
}

TEST_F(Stop, QuestionsToAccounts) {
  std::filesystem::copy_file(folder_ / "a", folder_ / "other");
  stopEverywhere({"account", "diff", path("a"), path("other")});
  stopEverywhere({"account", "check", path("a")});
  stopEverywhere({"account", "check", "--integrity", path("a")});
  stopEverywhere({"account", "info", path("a")});
  stopEverywhere({"list", "batches", "--account", path("a"), "--search", "b", "--lang", "en"});
  account::testing::write(folder_ / "look.sql",
                          "Select cInvCode, Sum(iAInPrice) From ia_subsidiary Group By cInvCode\n");
  stopEverywhere({"sql", "--account", path("a"), path("look.sql")});
  EXPECT_GT(stopped_, 0);
}

TEST_F(Stop, Traces) {
  for (const char* const name : {"dialog_of_the_outbound_summary", "detail_ledger_by_department"}) {
    SCOPED_TRACE(name);
    stopEverywhere({"trace", "--case", QUILLON_TRACE_CASES "/" + std::string(name) + ".json"});
  }
}

// What is dropped stays so, and the program says how much that is; the account has everything else.
TEST_F(Stop, CleaningAnAccount) {
  constexpr int tables = 40;
  std::filesystem::copy_file(folder_ / "a", folder_ / "whole");
  {
    const auto connection = tsql::Connection::open(folder_ / "a", tsql::OpenMode::existing);
    for (int table = 0; table < tables; ++table)
      connection->execute("Select * Into [1left" + std::to_string(table) + "fxwttmp] From ia_subsidiary");
  }
  std::filesystem::copy_file(folder_ / "a", folder_ / "littered");
  const std::vector<std::string> before = folder_.names();
  const std::vector<std::string> command = {"account", "clean", path("a")};
  const Undisturbed whole = undisturbed(command);
  ASSERT_EQ(whole.status, 0);
  int amidst = 0;
  for (int moment = 0; moment < moments; ++moment) {
    SCOPED_TRACE(moment);
    std::filesystem::copy_file(folder_ / "littered", folder_ / "a", std::filesystem::copy_options::overwrite_existing);
    const ProgramEnd end = stopOnce(command, whole, moment);
    const std::size_t left =
        account::leftoverTables(*tsql::Connection::open(folder_ / "a", tsql::OpenMode::readOnly)).size();
    const std::size_t dropped = tables - left;
    if (whole.endedSo(end)) {
      EXPECT_EQ(left, 0U);
    } else if (end.killed) {
      EXPECT_EQ(dropped, 0U) << "it was not at work yet";
    } else {
      EXPECT_EQ(end.errors, dropped == 0
                                ? "nothing was written\n"
                                : std::to_string(dropped) + " of " + std::to_string(tables) + " tables are dropped\n");
      amidst += dropped > 0 ? 1 : 0;
    }
    EXPECT_EQ(folder_.names(), before);
    EXPECT_THAT(temporary_.names(), IsEmpty());
    EXPECT_EQ(runProgram({"account", "check", "--integrity", path("a")}).status, 0);
    EXPECT_EQ(runProgram(command).status, 0);
    EXPECT_EQ(runProgram({"account", "diff", path("a"), path("whole")}).status, 0);
    if (HasFailure()) return;
  }
  EXPECT_GT(amidst, moments / 10);
}

// The batch that runs is undone, those before it stand, and which one it was is said.
TEST_F(Stop, ChangesOfAScript) {
  std::string script;
  for (int batch = 0; batch < 40; ++batch)
    script += "Update ia_subsidiary Set iAInPrice = IsNull(iAInPrice, 0) + 1\ngo\n";
  account::testing::write(folder_ / "change.sql", script);
  const std::vector<std::string> command = {"sql", "--account", path("a"), path("change.sql")};
  const ProgramEnd end = runProgram(command, {.beforeChange = 60, .signal = SIGINT});
  ASSERT_FALSE(end.killed);
  EXPECT_EQ(end.status, 130);
  EXPECT_THAT(end.errors,
              ::testing::MatchesRegex("quillon: ended by Ctrl-C; in batch [0-9]+; the batches before it are "
                                      "done\n"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "a-journal"));
  EXPECT_EQ(runProgram({"account", "check", "--integrity", path("a")}).status, 0);
}

// quillon ... | head
TEST_F(Stop, AReaderThatHasSeenEnough) {
  for (const char* const format : {"table", "csv", "json", "html"}) {
    SCOPED_TRACE(format);
    account::testing::write(folder_ / "pipe.sh", "'" QUILLON_PROGRAM
                                                 "' report sfc-item --account a --set cModal=1 "
                                                 "--format " +
                                                     std::string(format) +
                                                     " 2>errors | head -n 1 >seen\nexit ${PIPESTATUS[0]}\n");
    const int status = std::system(("cd '" + utf8FromPath(folder_.path()) + "' && bash pipe.sh").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(contentOf(folder_ / "errors"), "");
    EXPECT_NE(contentOf(folder_ / "seen"), "");
    EXPECT_THAT(temporary_.names(), IsEmpty());
    EXPECT_TRUE(contentOf(folder_ / "a") == content_);
  }
}

}  // namespace
}  // namespace quillon::workbench

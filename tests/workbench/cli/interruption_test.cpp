// What the program leaves behind when it is killed at any moment while it writes a file, or when the file cannot grow: the
// file of before or the file of after, never a broken one, and nothing that harms the next run.
//
// Each command runs once undisturbed, which tells how many changes it makes to the file system and what comes of it. Then
// it is killed before each of the changes: before the first and last ones, and some between; before every single one when
// QUILLON_EVERY_KILL is set.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <future>
#include <utility>

#include "tests/workbench/account/test_folder.h"
#include "tests/workbench/cli/interrupted_program.h"
#include "tests/workbench/presentation/xlsx_sheet.h"
#include "workbench/account/account.h"
#include "workbench/account/transfer.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using account::testing::contentOf;
using account::testing::TestFolder;
using std::filesystem::exists;
using test::ProgramEnd;
using test::ProgramLimits;
using test::runProgram;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr account::SampleOptions tiny{.rows = 500, .seed = 3, .years = 1};

// Changes at either end of a run before each of which the program is killed, and how many between. A program with
// sanitizers takes long to start; there, fewer have to do.
#ifdef __SANITIZE_ADDRESS__
constexpr int eachAtTheEnds = 2, between = 2;
#else
constexpr int eachAtTheEnds = 6, between = 6;
#endif

// Before which of `changes` changes the program is killed.
std::vector<int> killsOf(int changes) {
  const int step = std::getenv("QUILLON_EVERY_KILL") != nullptr ? 1 : std::max(1, changes / between);
  std::vector<int> kills;
  for (int change = 1; change <= changes; ++change) {
    const bool atAnEnd = change <= eachAtTheEnds || change > changes - eachAtTheEnds;
    if (atAnEnd || change % step == 0) kills.push_back(change);
  }
  return kills;
}

class Interruption : public ::testing::Test {
 protected:
  Interruption() {
    account::createSample(folder_ / "a", tiny);
    std::filesystem::copy_file(folder_ / "a", folder_ / "original");
    // Of the programs that are run.
    setenv("TMPDIR", utf8FromPath(temporary_.path()).c_str(), 1);
  }
  ~Interruption() override { unsetenv("TMPDIR"); }

  // What is in the folder of files that are not complete.
  std::vector<std::string> parts() const {
    std::vector<std::string> names = folder_.names();
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(".part"); });
    return names;
  }
  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }
  std::vector<std::string> report(const std::string& output, const std::string& format) const {
    return {"report", "sfc-item", "--lang",   "en",   "--account", path("a"),
            "--set",  "cModal=1", "--format", format, "-o",        path(output)};
  }

  // The command as it ends undisturbed.
  static int changesOf(const std::vector<std::string>& command) {
    const ProgramEnd end = runProgram(command);
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_GT(end.changes, 0);
    return end.changes;
  }
  static void expectSuccess(const std::vector<std::string>& command) {
    const ProgramEnd end = runProgram(command);
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_EQ(end.errors, "");
  }
  static void expectRefusal(const ProgramEnd& end, const std::string& message) {
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.errors, "quillon: " + message + "\n");
  }

  // A report only reads the account: whatever happens to it, not a byte has changed and nothing lies beside it.
  void expectAccountUntouched() const {
    EXPECT_TRUE(contentOf(folder_ / "a") == contentOf(folder_ / "original"));
    EXPECT_FALSE(exists(folder_ / "a-journal"));
  }

  // Kills `command` again and again; `prepare` sets the stage for each and `check` looks at what it left. The
  // last kills may come too late: a report's tables have random names, so it needs a change more or less.
  static void killEverywhere(const std::vector<std::string>& command, int changes, const std::function<void()>& prepare,
                             const std::function<void()>& check) {
    const std::vector<int> kills = killsOf(changes);
    std::size_t tooLate = 0;
    for (const int change : kills) {
      SCOPED_TRACE("killed before change " + std::to_string(change) + " of " + std::to_string(changes));
      prepare();
      const ProgramEnd end = runProgram(command, {.beforeChange = change});
      EXPECT_TRUE(end.killed || end.status == 0) << end.errors;
      tooLate += end.killed ? 0 : 1;
      check();
      if (HasFailure()) return;
    }
    EXPECT_LT(tooLate, kills.size() / 2);
  }

  // For a command that makes the file `name`, always with the same content: it is not there or complete, and making it
  // anew is not hindered by what the killed run left.
  void expectMadeWholeOrNotAtAll(const std::vector<std::string>& command, const std::string& name) {
    const int changes = changesOf(command);
    const std::string whole = contentOf(folder_ / name);
    std::filesystem::remove(folder_ / name);
    const std::vector<std::string> others = folder_.names();
    int timesMade = 0, timesAbsent = 0;
    killEverywhere(
        command, changes, [] {},
        [&] {
          if (exists(folder_ / name)) {
            ++timesMade;
            EXPECT_TRUE(contentOf(folder_ / name) == whole);
          } else {
            ++timesAbsent;
            expectSuccess(command);
            EXPECT_TRUE(contentOf(folder_ / name) == whole);
          }
          std::filesystem::remove(folder_ / name);
        });
    EXPECT_GT(timesAbsent, 0);
    EXPECT_LE(timesMade, 5) << "after the new name comes only what is cleared away and what is said";
    EXPECT_THAT(folder_.names(), ::testing::IsSupersetOf(others));
  }

  TestFolder temporary_;
  TestFolder folder_;
};

TEST_F(Interruption, ASampleIsMadeWholeOrNotAtAll) {
  expectMadeWholeOrNotAtAll({"account", "new", path("b"), "--rows", "500", "--seed", "3", "--years", "1"}, "b");
}

TEST_F(Interruption, AnImportedAccountIsMadeWholeOrNotAtAll) {
  expectSuccess({"account", "export", path("a"), path("csv")});
  expectMadeWholeOrNotAtAll({"account", "import", path("b"), path("csv")}, "b");
}

TEST_F(Interruption, AScriptIsMadeWholeOrNotAtAll) {
  expectMadeWholeOrNotAtAll({"account", "script", path("a"), path("a.sql")}, "a.sql");
}

TEST_F(Interruption, AnExportedFolderIsWholeOrSaysThatItIsNot) {
  const std::vector<std::string> command = {"account", "export", path("a"), path("csv")};
  const std::vector<std::string> import = {"account", "import", path("b"), path("csv")};
  const int changes = changesOf(command);
  expectSuccess(import);
  const std::string whole = contentOf(folder_ / "b");
  std::filesystem::remove_all(folder_ / "csv");
  const auto expectWhole = [&] {
    std::filesystem::remove(folder_ / "b");
    expectSuccess(import);
    EXPECT_TRUE(contentOf(folder_ / "b") == whole);
  };
  killEverywhere(
      command, changes, [] {},
      [&] {
        if (!exists(folder_ / "csv/schema.sql")) {
          std::filesystem::remove(folder_ / "b");
          const ProgramEnd end = runProgram(import);
          EXPECT_EQ(end.status, 1);
          EXPECT_THAT(end.errors, HasSubstr("cannot read "));
          EXPECT_FALSE(exists(folder_ / "b"));
          expectSuccess(command);
        }
        expectWhole();
        std::filesystem::remove_all(folder_ / "csv");
      });
}

TEST_F(Interruption, ANewerReportReplacesTheOlderOneOrDoesNot) {
  for (const std::string format : {"csv", "html"}) {
    SCOPED_TRACE(format);
    const std::vector<std::string> command = report("r", format);
    const int changes = changesOf(command);
    const std::string newer = contentOf(folder_ / "r");
    int timesOlder = 0;
    killEverywhere(
        command, changes, [&] { account::testing::write(folder_ / "r", "the older report"); },
        [&] {
          const std::string content = contentOf(folder_ / "r");
          timesOlder += content == "the older report" ? 1 : 0;
          EXPECT_TRUE(content == "the older report" || content == newer);
        });
    EXPECT_GT(timesOlder, 0);
    // The next run puts away what the killed ones left, once it is a minute old.
    EXPECT_FALSE(parts().empty()) << "no run was killed while it wrote";
    for (const std::string& part : parts()) {
      std::filesystem::last_write_time(folder_ / part,
                                       std::filesystem::file_time_type::clock::now() - std::chrono::minutes(2));
    }
    expectSuccess(command);
    EXPECT_TRUE(contentOf(folder_ / "r") == newer);
    EXPECT_THAT(parts(), ::testing::IsEmpty());
  }
}

TEST_F(Interruption, ANewerWorkbookReplacesTheOlderOneOrDoesNot) {
  std::vector<std::string> command = report("r.xlsx", "xlsx");
  command.insert(command.end(), {"--limit", "2"});  // the rows' temporary file is written in small pieces
  const int changes = changesOf(command);
  const int rows = test::XlsxSheet(folder_ / "r.xlsx").lastRow();
  EXPECT_GT(rows, 4);
  killEverywhere(
      command, changes, [&] { account::testing::write(folder_ / "r.xlsx", "the older workbook"); },
      [&] {
        const bool older = contentOf(folder_ / "r.xlsx") == "the older workbook";
        EXPECT_TRUE(older || test::XlsxSheet(folder_ / "r.xlsx").lastRow() == rows);
      });
  expectSuccess(command);
  EXPECT_EQ(test::XlsxSheet(folder_ / "r.xlsx").lastRow(), rows);
}

// What the killed run left in the folder for temporary files goes with the next one.
TEST_F(Interruption, AnAccountOutlivesAKilledReport) {
  const std::vector<std::string> command = report("r", "csv");
  const int changes = changesOf(command);
  const std::string rows = contentOf(folder_ / "r");
  killEverywhere(
      command, changes, [] {},
      [&] {
        expectAccountUntouched();
        expectSuccess(command);
        EXPECT_TRUE(contentOf(folder_ / "r") == rows);
        EXPECT_THAT(temporary_.names(), ::testing::IsEmpty());
      });
}

// Not at a system call but at some time: in the midst of one, or while the program computes.
TEST_F(Interruption, AnAccountOutlivesAReportThatIsKilledAfterATime) {
  using std::chrono::microseconds;
  const std::vector<std::string> command = report("r", "csv");
  account::testing::write(folder_ / "r", "the older report");
  const auto begin = std::chrono::steady_clock::now();
  expectSuccess(report("undisturbed", "csv"));
  const auto whole = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
  constexpr int kills = 12;
  int killed = 0;
  for (int i = 0; i < kills; ++i) {
    SCOPED_TRACE(i);
    killed += runProgram(command, {.after = whole * i / kills}).killed ? 1 : 0;
    const std::string content = contentOf(folder_ / "r");
    EXPECT_TRUE(content == "the older report" || content == contentOf(folder_ / "undisturbed"));
    expectAccountUntouched();
  }
  EXPECT_GT(killed, 0);
  expectSuccess(command);
  EXPECT_TRUE(contentOf(folder_ / "r") == contentOf(folder_ / "undisturbed"));
}

TEST_F(Interruption, ASampleThatIsKilledAfterATimeIsWholeOrNotThere) {
  using std::chrono::milliseconds;
  const std::vector<std::string> command = {"account", "new", path("b"), "--rows", "500",
                                            "--seed",  "3",   "--years", "1"};
  const std::string whole = contentOf(folder_ / "a");
  bool made = false;
  // Longer and longer, until the program is there before the kill.
  for (milliseconds delay{0}; !made; delay += milliseconds(delay.count() / 4 + 2)) {
    SCOPED_TRACE(delay.count());
    runProgram(command, {.after = delay});
    made = exists(folder_ / "b");
    EXPECT_TRUE(!made || contentOf(folder_ / "b") == whole);
    ASSERT_LT(delay, milliseconds(60'000));
  }
}

// An account was deleted after a kill, but not the journal beside it, which SQLite would play back into the next account
// of this name.
TEST_F(Interruption, TheJournalOfADeletedAccountDoesNotHarmTheNextOne) {
  const std::string whole = contentOf(folder_ / "a");
  const std::vector<std::string> create = {"account", "new", path("a"), "--rows", "500", "--seed", "3", "--years", "1"};
  expectSuccess({"account", "export", path("a"), path("csv")});
  account::testing::write(folder_ / "change.sql", "Update ia_subsidiary Set iAInPrice = IsNull(iAInPrice, 0) + 1\n");
  const std::vector<std::string> change = {"sql", "--account", path("a"), path("change.sql")};
  const int changes = changesOf(change);
  int journals = 0;
  for (const std::vector<std::string>& command :
       {create, std::vector<std::string>{"account", "import", path("a"), path("csv")}}) {
    for (int kill = 1; kill <= changes; ++kill) {
      EXPECT_TRUE(runProgram(change, {.beforeChange = kill}).killed);
      std::error_code error;
      const bool journal = std::filesystem::file_size(folder_ / "a-journal", error) > 0 && !error;
      if (!journal) continue;
      ++journals;
      std::filesystem::remove(folder_ / "a");
      expectSuccess(command);
      expectSuccess({"account", "check", path("a")});
      break;
    }
  }
  EXPECT_EQ(journals, 2);
}

// --- Two at once ------------------------------------------------------------------------------------------------------

// Of two runs that make one file the first to end makes it, as a whole, and the other says so.
TEST_F(Interruption, TwoRunsAtOnceMakeOneFileOfOneOfThem) {
  expectSuccess({"account", "export", path("a"), path("csv")});
  const std::vector<std::vector<std::string>> commands = {
      {"account", "new", path("b"), "--rows", "500", "--seed", "3", "--years", "1"},
      {"account", "import", path("b"), path("csv")},
      {"account", "script", path("a"), path("b")}};
  const std::vector<std::string> before = folder_.names();
  for (const std::vector<std::string>& command : commands) {
    SCOPED_TRACE(command[1]);
    expectSuccess(command);
    const std::string whole = contentOf(folder_ / "b");
    for (int round = 0; round < 3; ++round) {
      std::filesystem::remove(folder_ / "b");
      const auto run = [&command] { return runProgram(command); };
      std::future<ProgramEnd> other = std::async(std::launch::async, run);
      ProgramEnd loser = run();
      ProgramEnd winner = other.get();
      if (winner.status != 0) std::swap(loser, winner);
      EXPECT_EQ(winner.status, 0) << winner.errors;
      EXPECT_EQ(winner.errors, "");
      expectRefusal(loser, path("b") + " exists already; choose another name or delete the file first");
      EXPECT_TRUE(contentOf(folder_ / "b") == whole);
    }
    std::filesystem::remove(folder_ / "b");
    EXPECT_EQ(folder_.names(), before);
  }
}

// --- No room ----------------------------------------------------------------------------------------------------------

constexpr const char* noRoomFor = "; check the folder, its permissions and its free space";
constexpr const char* noRoom =
    "The operating system could not read or write the account file: check the disk, its free space and the limit on the "
    "size of files.";

TEST_F(Interruption, AnAccountThatDoesNotFitIsRefusedAndLeavesNothing) {
  expectSuccess({"account", "export", path("a"), path("csv")});
  const std::vector<std::string> before = folder_.names();
  const std::uintmax_t size = std::filesystem::file_size(folder_ / "a");
  for (const std::uint64_t limit :
       {std::uint64_t{0}, std::uint64_t{5000}, std::uint64_t{size / 2}, std::uint64_t{size - 1}}) {
    SCOPED_TRACE(limit);
    const ProgramLimits limits{.fileSize = limit};
    expectRefusal(runProgram({"account", "new", path("b"), "--rows", "500", "--seed", "3", "--years", "1"}, {}, limits),
                  "cannot write " + path("b") + ": " + noRoom);
    expectRefusal(runProgram({"account", "import", path("b"), path("csv")}, {}, limits),
                  "cannot write " + path("b") + ": " + noRoom);
    EXPECT_EQ(folder_.names(), before);
  }
}

TEST_F(Interruption, AFileThatDoesNotFitIsRefusedAndLeavesTheOlderOne) {
  const ProgramLimits limits{.fileSize = 100};
  expectRefusal(runProgram({"account", "script", path("a"), path("a.sql")}, {}, limits),
                "cannot write " + path("a.sql") + noRoomFor);
  EXPECT_FALSE(exists(folder_ / "a.sql"));
  const ProgramEnd exported = runProgram({"account", "export", path("a"), path("csv")}, {}, limits);
  EXPECT_EQ(exported.status, 1);
  EXPECT_THAT(exported.errors,
              ::testing::MatchesRegex("quillon: cannot write .*[.]csv" + std::string(noRoomFor) + "\n"));
  EXPECT_THAT(folder_.names(), ElementsAre("a", "original"));
}

TEST_F(Interruption, AReportThatDoesNotFitLeavesTheOlderOne) {
  account::testing::write(folder_ / "r", "the older report");
  const std::uint64_t size = std::filesystem::file_size(folder_ / "a");
  const ProgramEnd end = runProgram(report("r", "html"), {}, {.fileSize = size / 4});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(std::ranges::count(end.errors, '\n'), 1) << end.errors;
  EXPECT_EQ(contentOf(folder_ / "r"), "the older report");
  EXPECT_THAT(parts(), ::testing::IsEmpty());
  expectSuccess({"account", "check", path("a")});
}

TEST_F(Interruption, WhatCannotBeWrittenToAFullDeviceIsRefused) {
  for (const std::string format : {"csv", "json", "html", "table"}) {
    std::vector<std::string> command = report("r", format);
    command.back() = "/dev/full";
    expectRefusal(runProgram(command), std::string("cannot write /dev/full") + noRoomFor);
  }
  std::vector<std::string> workbook = report("r", "xlsx");
  workbook.back() = "/dev/full";
  expectRefusal(
      runProgram(workbook),
      "cannot write /dev/full: the workbook could not be put together; check the folder and its free space, or "
      "write --format csv");
  const ProgramLimits full{.output = "/dev/full"};
  const std::string message = "standard output could not be written; check the disk's free space";
  expectRefusal(runProgram({"account", "info", path("a")}, {}, full), message);
  expectRefusal(runProgram({"account", "new", path("b"), "--rows", "500", "--years", "1"}, {}, full), message);
  EXPECT_TRUE(exists(folder_ / "b")) << "the account is there, although nobody could be told";
}

}  // namespace
}  // namespace quillon::workbench

#include "workbench/cli/command_line.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/workbench/account/test_folder.h"
#include "workbench/account/account.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/language_option.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

struct CommandEnd {
  int status = 0;
  std::string output;
  std::string errors;
};

// Runs `arguments` as the program does, with what it says for work that cannot be done.
CommandEnd command(std::vector<std::string> arguments) {
  std::ranges::reverse(arguments);
  std::ostringstream errors;
  CommandEnd end;
  testing::internal::CaptureStdout();
  try {
    end.status = runCommandLine(std::move(arguments), "1.2.3", errors);
  } catch (const std::exception& error) {
    end.status = 1;
    errors << "quillon: " << errorLine(error) << '\n';
  }
  end.output = testing::internal::GetCapturedStdout();
  end.errors = errors.str();
  return end;
}

// What is said in English about wrong usage, without "quillon: " and the line's end.
std::string wrongUsage(std::vector<std::string> arguments) {
  const bool chinese = languageOf({arguments.rbegin(), arguments.rend()}) == Language::chinese;
  if (chinese) arguments.insert(arguments.begin() + 1, "--lang=en");
  const CommandEnd end = command(std::move(arguments));
  EXPECT_EQ(end.status, 2) << end.errors;
  EXPECT_EQ(end.output, "");
  EXPECT_EQ(std::ranges::count(end.errors, '\n'), 1) << end.errors;
  constexpr std::string_view before = "quillon: ";
  EXPECT_THAT(end.errors, StartsWith(std::string(before)));
  return end.errors.substr(before.size(), end.errors.size() - before.size() - 1);
}

TEST(WrongUsage, SuggestsTheCommandThatWasMeant) {
  EXPECT_EQ(wrongUsage({"reprot"}), "there is no command \"reprot\"; did you mean report? See quillon --help");
  EXPECT_EQ(wrongUsage({"reprot", "sfc-item", "--account", "x"}),
            "there is no command \"reprot\"; did you mean report? See quillon --help");
  EXPECT_EQ(wrongUsage({"account", "nwe", "FILE"}),
            "there is no command \"nwe\" of quillon account; did you mean new? See quillon account --help");
  EXPECT_EQ(
      wrongUsage({"print"}),
      "there is no command \"print\"; the commands are account, book, dialog, drill, filters, help, layouts, list, report, "
      "serve, sql, trace, verify; see quillon --help");
  EXPECT_EQ(
      wrongUsage({}),
      "name a command: account, book, dialog, drill, filters, help, layouts, list, report, serve, sql, trace, verify; see quillon --help");
  EXPECT_THAT(wrongUsage({"account"}), StartsWith("name a command: new, info, check, clean, "));
}

// The slip is told, not the argument that is missing because of it.
TEST(WrongUsage, SuggestsTheOptionThatWasMeant) {
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--acount", "x"}),
            "quillon report has no option --acount; did you mean --account? See quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account", "x", "--fromat=csv"}),
            "quillon report has no option --fromat; did you mean --format? See quillon report --help");
  EXPECT_EQ(wrongUsage({"account", "new", "x", "--raws", "5"}),
            "quillon account new has no option --raws; did you mean --rows? See quillon account new --help");
  EXPECT_EQ(wrongUsage({"sql", "--empty", "--nothing-like-it"}),
            "quillon sql has no option --nothing-like-it; see quillon sql --help");
  EXPECT_EQ(wrongUsage({"--verison"}), "quillon has no option --verison; did you mean --version? See quillon --help");
  EXPECT_EQ(wrongUsage({"--account", "x", "report", "sfc-item"}),
            "the option --account stands behind its command: quillon report --account ...; see quillon report --help");
}

TEST(WrongUsage, SuggestsTheWordThatWasMeant) {
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account", "x", "--format", "xslx"}),
            "--format: \"xslx\" is none of csv, html, json, table, xlsx; did you mean xlsx? See quillon report --help");
  EXPECT_EQ(wrongUsage({"trace", "dialog-sfx"}),
            "REPORT: there is no \"dialog-sfx\" to trace; did you mean dialog-sfc? See quillon trace --help");
  const CommandEnd end = command({"report", "sfc-itme", "--account", "x"});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(end.errors,
            "quillon: there is no report \"sfc-itme\"; did you mean sfc-item? the reports are: sfc-item, outsum-item, "
            "fx-detail, fx-wt\n");
}

TEST(WrongUsage, SaysHowOftenAndWithWhat) {
  EXPECT_EQ(wrongUsage({"report"}), "REPORT must be given; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item"}), "--account must be given; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account"}), "--account needs a value; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account", "x", "--date", "2024-01-01", "--date", "2024-01-02"}),
            "--date can be given once only; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account", "x", "--explain=loud"}),
            "--explain takes no value; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "fx-wt", "--account", "x"}),
            "quillon report takes no further argument \"fx-wt\"; see quillon report --help");
  EXPECT_EQ(wrongUsage({"report", "sfc-item", "--account", "x", "--compare", "y", "--keep"}),
            "--keep cannot be given together with --compare; see quillon report --help");
  EXPECT_EQ(wrongUsage({"sql", "--account", "x", "--empty"}),
            "--account cannot be given together with --empty; see quillon sql --help");
  EXPECT_EQ(wrongUsage({"sql"}), "give either --account or --empty; see quillon sql --help");
  EXPECT_EQ(wrongUsage({"trace"}),
            "give either REPORT with --filter and --platform, or --case; see quillon trace --help");
}

TEST(WrongUsage, HoldsNumbersToTheirRange) {
  const std::vector<std::string> report = {"report", "sfc-item", "--account", "x", "--limit"};
  const auto limit = [&report](const std::string& text) {
    std::vector<std::string> arguments = report;
    arguments.push_back(text);
    return wrongUsage(arguments);
  };
  EXPECT_EQ(limit("-1"), "--limit: \"-1\" is no whole number of 0 or more; see quillon report --help");
  EXPECT_EQ(limit("many"), "--limit: \"many\" is no whole number of 0 or more; see quillon report --help");
  EXPECT_EQ(limit("1.5"), "--limit: \"1.5\" is no whole number of 0 or more; see quillon report --help");
  EXPECT_EQ(limit("0x10"), "--limit: \"0x10\" is no whole number of 0 or more; see quillon report --help");
  EXPECT_EQ(limit(""), "--limit: \"\" is no whole number of 0 or more; see quillon report --help");
  EXPECT_EQ(limit("9223372036854775808"),
            "--limit: 9223372036854775808 is too large; the most is 9223372036854775807; see quillon report --help");
  EXPECT_EQ(wrongUsage({"account", "new", "x", "--seed", "-1"}),
            "--seed: \"-1\" is no whole number of 0 or more; see quillon account new --help");
  EXPECT_EQ(wrongUsage({"account", "new", "x", "--rows", "-5"}),
            "--rows: \"-5\" is no whole number of 1 or more; see quillon account new --help");
  EXPECT_EQ(wrongUsage({"account", "new", "x", "--years", "11"}),
            "--years: \"11\" is no whole number from 1 to 10; see quillon account new --help");
  EXPECT_EQ(wrongUsage({"account", "new", "x", "--fx-start-month", "0"}),
            "--fx-start-month: \"0\" is no whole number from 1 to 12; see quillon account new --help");
  EXPECT_EQ(wrongUsage({"account", "diff", "x", "y", "--limit", "-1"}),
            "--limit: \"-1\" is no whole number of 0 or more; see quillon account diff --help");
}

TEST(WrongUsage, ChecksTheDateOfEachCommandThatHasOne) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"report", "sfc-item", "--account", "x"},
                                                    {"dialog", "sfc-item", "--account", "x"},
                                                    {"drill", "fx-wt", "--account", "x", "--row", "AutoID=1"}}) {
    for (const std::string date :
         {"2024-02-30", "31.3.2024", "20240331", "today", "2024-03-31 10:00", "1600-01-01", "2024-03-31' --", ""}) {
      std::vector<std::string> all = arguments;
      all.insert(all.end(), {"--date", date});
      EXPECT_EQ(wrongUsage(all), "--date: \"" + date + "\" is no date; write it as yyyy-mm-dd; see quillon " +
                                     arguments.front() + " --help");
    }
  }
}

TEST(WrongUsage, ShowsNoPassword) {
  EXPECT_EQ(wrongUsage({"account", "info", "x", "Driver=d;PWD=secret"}).find("secret"), std::string::npos);
}

// CLI11 lists what an option excludes in the order of the options' addresses.
std::string withoutExclusions(const std::string& help) {
  return std::regex_replace(help, std::regex("Excludes:[^\n]*"), "");
}

TEST(Help, IsGivenByCommandAndByOption) {
  const std::string all = command({"--help"}).output;
  EXPECT_THAT(
      all, AllOf(HasSubstr("Usage: quillon [OPTIONS] SUBCOMMAND"), HasSubstr("\n  report "), HasSubstr("\n  help ")));
  EXPECT_EQ(command({"help"}).output, all);
  for (const std::vector<std::string>& words : {std::vector<std::string>{"report"},
                                                {"dialog"},
                                                {"drill"},
                                                {"list"},
                                                {"filters"},
                                                {"filters", "remove"},
                                                {"sql"},
                                                {"trace"},
                                                {"account"},
                                                {"account", "new"},
                                                {"account", "diff"}}) {
    std::vector<std::string> option = words, help = words;
    option.emplace_back("--help");
    help.insert(help.begin(), "help");
    const CommandEnd end = command(help);
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.errors, "");
    EXPECT_EQ(withoutExclusions(end.output), withoutExclusions(command(option).output));
    EXPECT_THAT(end.output, HasSubstr("Usage: quillon " + words.front()));
  }
  for (const char* const name : {"report", "dialog"}) {
    EXPECT_THAT(command({name, "--help"}).output, HasSubstr("With a REPORT before --help"));
    EXPECT_THAT(command({name, "fx-detail", "--help"}).output, HasSubstr("\nFilter items of fx-detail "));
  }
  EXPECT_EQ(wrongUsage({"help", "reprot"}), "there is no command \"reprot\"; did you mean report? See quillon --help");
  EXPECT_EQ(wrongUsage({"help", "account", "nwe"}),
            "there is no command \"nwe\" of quillon account; did you mean new? See quillon --help");
  EXPECT_EQ(command({"--version"}).output, "quillon 1.2.3\n");
}

TEST(ErrorLine, SaysInItsOwnWordsWhatALibraryThrew) {
  EXPECT_EQ(errorLine(UserError(Message::verbatim("plainly said"))), "plainly said");
  EXPECT_EQ(errorLine(UserError(Message::verbatim("cannot open Driver=d;PWD=secret"))), "cannot open Driver=d;PWD=***");
  EXPECT_EQ(errorLine(std::bad_alloc()), "there is not enough memory; close other programs, or narrow the filter");
  EXPECT_THAT(errorLine(std::filesystem::filesystem_error("internal", "a-file",
                                                          std::make_error_code(std::errc::permission_denied))),
              AllOf(StartsWith("cannot use a-file: "), testing::Not(HasSubstr("internal"))));
  try {
    static_cast<void>(nlohmann::json::parse("[1]").at("key"));
    FAIL();
  } catch (const nlohmann::json::exception& error) {
    EXPECT_EQ(errorLine(error), "a JSON file holds another kind of value than is expected there");
  }
}

// --- On an account ----------------------------------------------------------------------------------------------------

class OnAccount : public testing::Test {
 protected:
  OnAccount() { account::createSample(folder_ / "a", {.rows = 500, .years = 1}); }

  std::string path(std::string_view name) const { return utf8FromPath(folder_ / name); }
  CommandEnd report(std::vector<std::string> more, const std::string& name = "sfc-item") const {
    std::vector<std::string> arguments = {"report", name, "--account", path("a")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return command(arguments);
  }

  account::testing::TestFolder folder_;
};

TEST_F(OnAccount, AnOutputNeverReplacesWhatTheReportReads) {
  account::testing::write(folder_ / "f.json", R"({"items":[]})");
  std::filesystem::create_hard_link(folder_ / "a", folder_ / "hard");
  account::createSample(folder_ / "other", {.rows = 500, .years = 1});
  const std::string account = account::testing::contentOf(folder_ / "a");
  const std::string other = account::testing::contentOf(folder_ / "other");
  for (const std::string format : {"csv", "xlsx"}) {
    for (const auto& [target, reason] :
         std::vector<std::pair<std::string, std::string>>{{"a", "is an account"},
                                                          {"hard", "is an account"},
                                                          {"other", "is an account"},
                                                          {"a-journal", "belongs to an account"},
                                                          {"a-wal", "belongs to an account"},
                                                          {"a-shm", "belongs to an account"},
                                                          {"f.json", "is read by this command"}}) {
      const CommandEnd end = report({"--filter", path("f.json"), "--format", format, "-o", path(target)});
      EXPECT_EQ(end.status, 1);
      EXPECT_EQ(end.errors,
                "quillon: will not write over " + path(target) + ": it " + reason + "; name another file\n");
    }
  }
  EXPECT_TRUE(account::testing::contentOf(folder_ / "a") == account);
  EXPECT_TRUE(account::testing::contentOf(folder_ / "other") == other);
  EXPECT_EQ(account::testing::contentOf(folder_ / "f.json"), R"({"items":[]})");
}

TEST_F(OnAccount, ACodeThatItDoesNotHaveIsToldAndTheReportRuns) {
  const auto notesOf = [this](std::vector<std::string> more) {
    testing::internal::CaptureStderr();
    more.insert(more.end(), {"--lang", "en"});
    const CommandEnd end = report(std::move(more));
    EXPECT_EQ(end.status, 0) << end.errors;
    EXPECT_THAT(end.output, StartsWith("Receipt/issue/balance by cost item\n"));
    return testing::internal::GetCapturedStderr();
  };
  EXPECT_EQ(notesOf({"--set", "cWhCode=ZZ,07"}), "quillon: filter item cWhCode: the account has no warehouse ZZ\n");
  EXPECT_EQ(notesOf({"--set", "cWhCode=线边"}),
            "quillon: filter item cWhCode: the account has no warehouse 线边; did you mean 07 线边库?\n");
  EXPECT_EQ(notesOf({"--set", "cWhCode=线边", "--no-dialog"}),
            "quillon: filter item cWhCode: the account has no warehouse 线边; did you mean 07 线边库?\n");
  EXPECT_EQ(notesOf({"--set", "cWhCode=07"}), "");
  EXPECT_EQ(notesOf({"--set", "cInvClass=9"}), "");
}

TEST_F(OnAccount, ADialogTellsOfACodeThatTheAccountDoesNotHave) {
  testing::internal::CaptureStderr();
  const CommandEnd end = command(
      {"dialog", "fx-wt", "--account", path("a"), "--step", "init", "--step", "change:cWhCode=ZZ", "--lang", "en"});
  EXPECT_EQ(end.status, 0) << end.errors;
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "quillon: filter item cWhCode: the account has no warehouse ZZ\n");
}

TEST_F(OnAccount, WholeNumbersAreHeldToTheirColumnBeforeAnyStatement) {
  const CommandEnd end = report({"--set", "cDefine5=3000000000"}, "fx-wt");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(
      end.errors,
      "quillon: filter item cDefine5 (User-defined field 5): \"3000000000\" is no whole number from -2147483648 to "
      "2147483647\n");
}

TEST_F(OnAccount, ADrillThroughSaysWhatTheRowLacks) {
  const auto drill = [this](const std::string& name, std::vector<std::string> row, const std::string& action) {
    std::vector<std::string> arguments = {"drill", name, "--account", path("a"), "--action", action, "--lang", "en"};
    for (std::string& setting : row)
      arguments.insert(arguments.end(), {"--row", std::move(setting)});
    return command(arguments);
  };
  EXPECT_EQ(drill("fx-wt", {"cVouType=32", "cVouCode=x"}, "Vouch").errors,
            "quillon: the row lacks what opens its document: add --row AutoID=...\n");
  EXPECT_EQ(drill("fx-detail", {"AutoID=1"}, "Vouch").errors,
            "quillon: the row lacks what opens its document: add --row cVouType=...\n");
  EXPECT_EQ(drill("fx-detail", {"cVouType=32"}, "Vouch").errors,
            "quillon: the row lacks what opens its document: add --row ID=...\n");
  EXPECT_EQ(drill("fx-wt", {"AutoID=1"}, "Voucher").errors,
            "quillon: the row lacks what opens its document: add --row cVouType=... --row cPZID=... --row iPZID=...\n");
  EXPECT_EQ(drill("fx-wt", {"CVOUTYPE=", "cVouCode=", "id="}, "Vouch").output,
            "Nothing was opened: opening balances and month-end balances have no document\n");
  for (const std::string name : {"sfc-item", "outsum-item"}) {
    const CommandEnd end = drill(name, {"AutoID=1"}, "Vouch");
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.errors,
              "quillon: the rows of " + name + " open no documents; those of these reports do: fx-detail, fx-wt\n");
  }
}

}  // namespace
}  // namespace quillon::workbench

#include "workbench/cli/sql_command.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "workbench/cli/account_option.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/line_editor.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/pager.h"
#include "workbench/cli/sql_batch.h"
#include "workbench/cli/sql_prompt.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/terminal.h"
#include "workbench/messages/common.h"
#include "workbench/messages/program.h"
#include "workbench/platform/user_error.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

class ScriptReader {
 public:
  explicit ScriptReader(std::istream& script) : script_(script) {}

  // Goes on to the next batch; false at the end of the script.
  bool next() {
    batch_.clear();
    firstLine_ = lines_ + 1;
    std::string line;
    while (std::getline(script_, line)) {
      ++lines_;
      if (endsBatch(line)) return true;
      batch_ += line + '\n';
    }
    return !batch_.empty();
  }

  const std::string& batch() const { return batch_; }
  // Where the batch begins, counting lines from 1.
  int firstLine() const { return firstLine_; }

 private:
  std::istream& script_;
  std::string batch_;
  int lines_ = 0;  // read so far
  int firstLine_ = 1;
};

}  // namespace

int runScript(tsql::Database& account, std::istream& script, const std::string& name, SqlFormat format,
              std::ostream& out, std::ostream& errors, const TableStyle& style) {
  const std::unique_ptr<SqlOutput> output = makeSqlOutput(format, name, out, errors, style);
  int failed = 0, done = 0;
  ScriptReader reader(script);
  for (; reader.next(); ++done) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view text = reader.batch();
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    if (isBlank(text)) continue;
    try {
      account.run(text, *output);
    } catch (const tsql::Stopped&) {
      throw UserError(messages::stoppedInBatch(done + 1));
    } catch (const tsql::SqlError& error) {
      output->error(error, reader.firstLine());
      ++failed;
    }
    out.flush();
  }
  return failed;
}

void addSqlCommand(CLI::App& app) {
  struct Options {
    AccountSource account;
    bool empty = false;
    SqlFormat format = SqlFormat::table;
    std::string file;
    bool wide = false;
    bool pager = true;
    Language language = Language::english;
  };
  CLI::App& command = *app.add_subcommand("sql", "Run T-SQL batches, separated by lines that hold only `go`");
  const auto options = std::make_shared<Options>();
  static const std::map<std::string, SqlFormat> formats = {
      {"table", SqlFormat::table}, {"csv", SqlFormat::csv}, {"json", SqlFormat::json}};
  CLI::Option& source = addAccountOption(command, "--account", options->account);
  command.add_flag("--empty", options->empty, "Instead of an account an empty database in memory")->excludes(&source);
  command.add_option("--format", options->format, "table, csv or json")->transform(oneOf(formats));
  command.add_option("FILE", options->file,
                     "The script; standard input when it is left out, and a prompt where somebody types there");
  addLanguageOption(command, options->language);
  command.add_flag("--wide", options->wide, "Show all of a table on a terminal that is too narrow for it");
  command.add_flag_callback(
      "--no-pager", [options] { options->pager = false; },
      "Do not show what is longer than the terminal in the pager (PAGER)");
  command.callback([options] {
    if (options->account.text().empty() && !options->empty) refuseUsage(messages::accountOrEmpty());
    const std::unique_ptr<tsql::Database> account =
        options->empty
            ? tsql::Connection::openInMemory()
            : options->account.open(tsql::OpenMode::existing,
                                    {.messages = [](const odbc::Diagnostic& said) { std::cerr << said.text << '\n'; }});
    const std::optional<Screen> screen = outputScreen();
    if (options->file.empty() && inputIsTerminal()) {
      const auto editor = makeLineEditor();
      runPrompt(*account, *editor, std::cout, std::cerr,
                {.format = options->format,
                 .screen = screen,
                 .wide = options->wide,
                 .pager = options->pager,
                 .language = options->language});
      return;
    }
    std::ifstream file;
    if (!options->file.empty()) {
      file.open(pathFromUtf8(options->file), std::ios::binary);
      if (!file) throw UserError(messages::cannotRead(options->file));
    }
    std::istream& script = options->file.empty() ? std::cin : file;
    const std::string name =
        options->file.empty() ? std::string(messages::theScript.in(options->language)) : options->file;
    PagedOutput paged(std::cout, {.screen = screen, .pager = options->pager});
    // Where the pager has the terminal, errors are read in it, too.
    const bool errorsInPager = screen && options->pager && errorsGoToTerminal();
    const int failed =
        runScript(*account, script, name, options->format, paged.stream(), errorsInPager ? paged.stream() : std::cerr,
                  tableStyle(screen, options->wide, options->language));
    if (!paged.finish()) throw UserError(messages::resultsNotWritten());
    if (failed > 0 && options->format != SqlFormat::json) endWith(1);
  });
}

}  // namespace quillon::workbench

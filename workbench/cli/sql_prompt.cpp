#include "workbench/cli/sql_prompt.h"

#include <algorithm>
#include <csignal>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "frame/text.h"
#include "workbench/cli/pager.h"
#include "workbench/cli/sql_batch.h"
#include "workbench/cli/stop_signals.h"
#include "workbench/messages/program.h"
#include "workbench/runs/run_monitor.h"
#include "workbench/tsql/values/stop.h"

namespace quillon::workbench {

namespace {

class Prompt {
 public:
  Prompt(tsql::Database& account, LineEditor& editor, std::ostream& out, std::ostream& errors,
         const PromptOptions& options)
      : account_(account), editor_(editor), out_(out), errors_(errors), options_(options) {}

  void run() {
    talk() << messages::promptWelcome.in(options_.language) << '\n' << std::flush;
    while (true) {
      const TypedLine line = editor_.read(batch_.empty() ? "sql> " : "  -> ");
      switch (line.end) {
        case TypedLine::End::entered:
          if (!enter(line.text)) return;
          break;
        case TypedLine::End::interrupted:
        case TypedLine::End::interruptedEmpty:
          goOnAfterStop();
          talk() << "^C\n" << std::flush;
          if (line.end == TypedLine::End::interruptedEmpty) batch_.clear();
          break;
        case TypedLine::End::left:
          talk() << '\n' << std::flush;
          return;
      }
    }
  }

 private:
  // Where the conversation is: what stands in a file or a pipe is results alone.
  std::ostream& talk() { return options_.screen ? out_ : errors_; }

  // Takes Ctrl-C and a pager's early end back; whatever else asks the program to end, ends it.
  static void goOnAfterStop() {
    const auto stop = stopCause();
    constexpr int interrupted = 128 + SIGINT;
    if (stop && stop->exitStatus != interrupted && !stop->name.english.empty()) throw tsql::Stopped();
    forgetStopCause();
  }

  // False when the user leaves.
  bool enter(const std::string& line) {
    if (endsBatch(line)) {
      runBatch();
      return true;
    }
    const std::string_view text = trimBlanks(line);
    constexpr std::string_view small = "abcdefghijklmnopqrstuvwxyz";
    if (text.size() > 1 && text[0] == '.' && small.find(text[1]) != std::string_view::npos) return command(text);
    if (batch_.empty() && text.empty()) return true;
    if (!text.empty()) editor_.remember(line);
    batch_ += line + '\n';
    return true;
  }

  bool command(std::string_view text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view name = text.substr(0, end), argument = trimBlanks(text.substr(end));
    if (name == ".quit") return false;
    if (name == ".help") {
      talk() << messages::promptHelp.in(options_.language) << '\n';
    } else if (name == ".tables") {
      show([this](std::ostream& out) { listTables(out); });
    } else if (name == ".columns" && !argument.empty()) {
      show([this, argument](std::ostream& out) { listColumns(out, std::string(argument)); });
    } else if (name == ".columns") {
      errors_ << messages::promptNameTable.in(options_.language) << '\n';
    } else {
      errors_ << messages::promptNoCommand(name).in(options_.language) << '\n';
    }
    return true;
  }

  void listTables(std::ostream& out) {
    std::vector<std::string> names = account_.tables("");
    std::ranges::sort(names);
    for (const std::string& name : names)
      out << name << '\n';
  }

  void listColumns(std::ostream& out, const std::string& name) {
    const std::vector<tsql::Column> columns = account_.describe(name);
    if (columns.empty()) {
      errors_ << messages::promptNoTable(name).in(options_.language) << '\n';
      return;
    }
    TextTable table(out,
                    {{std::string(messages::columnHeading.in(options_.language))},
                     {std::string(messages::typeHeading.in(options_.language))}},
                    tableStyle(options_.screen, options_.wide, options_.language));
    for (const tsql::Column& column : columns)
      table.row({column.name, column.type.name()});
    table.finish();
  }

  void runBatch() {
    const std::string batch = std::exchange(batch_, {});
    if (isBlank(batch)) return;
    show([&](std::ostream& out) {
      std::ostringstream errors;
      const auto output = makeSqlOutput(options_.format, std::string(messages::theBatch.in(options_.language)), out,
                                        errors, tableStyle(options_.screen, options_.wide, options_.language));
      try {
        account_.run(batch, *output);
      } catch (const tsql::Stopped&) {
        throw;
      } catch (const tsql::SqlError& error) {
        output->error(error, 1);
      }
      failure_ = errors.str();
    });
  }

  // Shows what `write` writes, a page at a time where it is long; then what went wrong.
  template <typename Write>
  void show(const Write& write) {
    failure_.clear();
    bool stopped = false;
    try {
      PagedOutput paged(out_, {.screen = options_.screen, .pager = options_.pager});
      try {
        write(paged.stream());
      } catch (const tsql::Stopped&) {
        stopped = true;
      }
      paged.finish();
    } catch (const std::exception& error) {
      failure_ += "quillon: " + errorText(error).in(options_.language) + '\n';
    }
    const auto stop = stopCause();
    const bool byUser = stopped && stop && !stop->name.english.empty();
    goOnAfterStop();
    if (byUser) failure_.append(messages::promptStopped.in(options_.language)).append("\n");
    errors_ << failure_ << std::flush;
  }

  tsql::Database& account_;
  LineEditor& editor_;
  std::ostream& out_;
  std::ostream& errors_;
  PromptOptions options_;
  std::string batch_;
  std::string failure_;
};

}  // namespace

void runPrompt(tsql::Database& account, LineEditor& editor, std::ostream& out, std::ostream& errors,
               const PromptOptions& options) {
  Prompt(account, editor, out, errors, options).run();
}

}  // namespace quillon::workbench

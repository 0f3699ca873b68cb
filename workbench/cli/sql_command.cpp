#include "workbench/cli/sql_command.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "frame/text.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/run_monitor.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_table.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

class ScriptOutput : public tsql::ResultSink {
 public:
  // The batch that failed begins in line `firstLine` of the script.
  virtual void error(const tsql::SqlError& error, int firstLine) = 0;
};

class JsonOutput final : public ScriptOutput {
 public:
  explicit JsonOutput(std::ostream& out) : out_(out) {}

  void columns(std::span<const tsql::Column> columns) override {
    endResultSet();
    out_ << "{\"columns\":";
    writeJsonColumns(out_, columns);
    out_ << ",\"rows\":[";
    inResultSet_ = true;
    separator_ = "";
  }

  void row(std::span<const tsql::Value> values) override {
    out_ << separator_ << '[';
    separator_ = ",";
    const char* comma = "";
    for (const tsql::Value& value : values) {
      out_ << comma;
      writeJsonValue(out_, value);
      comma = ",";
    }
    out_ << ']';
  }

  void rowsAffected(std::int64_t count) override {
    if (endResultSet()) return;
    out_ << "{\"rowsAffected\":" << count << "}\n";
  }

  void error(const tsql::SqlError& error, int /*firstLine*/) override {
    endResultSet();
    out_ << "{\"error\":{\"number\":" << error.number() << ",\"message\":";
    writeJsonText(out_, error.message());
    out_ << "}}\n";
  }

 private:
  bool endResultSet() {
    const bool ended = inResultSet_;
    if (ended) out_ << "]}\n";
    inResultSet_ = false;
    return ended;
  }

  std::ostream& out_;
  bool inResultSet_ = false;
  const char* separator_ = "";
};

class TableOutput final : public ScriptOutput {
 public:
  TableOutput(std::string script, std::ostream& out, std::ostream& errors)
      : script_(std::move(script)), out_(out), errors_(errors) {}

  void columns(std::span<const tsql::Column> columns) override {
    std::vector<TableColumn> headings;
    for (const tsql::Column& column : columns) {
      const bool text = column.type.kind == tsql::Kind::nVarChar || column.type.kind == tsql::Kind::varChar ||
                        column.type.kind == tsql::Kind::dateTime;
      headings.push_back({column.name, text ? Align::left : Align::right});
    }
    table_ = std::make_unique<TextTable>(out_, std::move(headings));
  }

  void row(std::span<const tsql::Value> values) override {
    std::vector<std::string> cells;
    for (const tsql::Value& value : values)
      cells.push_back(plainText(value, "NULL"));
    table_->row(std::move(cells));
  }

  void rowsAffected(std::int64_t count) override {
    endTable();
    out_ << '(' << count << (count == 1 ? " row)\n\n" : " rows)\n\n");
  }

  void error(const tsql::SqlError& error, int firstLine) override {
    endTable();
    errors_ << "quillon: " << script_;
    if (error.line() > 0) {
      errors_ << ", line " << firstLine + error.line() - 1 << ": ";
    } else {
      errors_ << ", in the batch that begins in line " << firstLine << ": ";
    }
    errors_ << errorText(error.number(), 0, error.message()) << '\n';
  }

 private:
  void endTable() {
    if (table_) table_->finish();
    table_.reset();
  }

  std::string script_;
  std::ostream& out_;
  std::ostream& errors_;
  std::unique_ptr<TextTable> table_;
};

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
      std::string_view text = line;
      if (text.ends_with('\r')) text.remove_suffix(1);
      if (equalIgnoringCase(trimBlanks(text), "go")) return true;
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
              std::ostream& out, std::ostream& errors) {
  std::unique_ptr<ScriptOutput> output;
  if (format == SqlFormat::json) {
    output = std::make_unique<JsonOutput>(out);
  } else {
    output = std::make_unique<TableOutput>(name, out, errors);
  }
  int failed = 0, done = 0;
  ScriptReader reader(script);
  for (; reader.next(); ++done) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string_view text = reader.batch();
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) continue;
    try {
      account.run(text, *output);
    } catch (const tsql::Stopped&) {
      throw UserError("in batch " + std::to_string(done + 1) + "; the batches before it are done");
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
  };
  CLI::App& command = *app.add_subcommand("sql", "Run T-SQL batches, separated by lines that hold only `go`");
  const auto options = std::make_shared<Options>();
  static const std::map<std::string, SqlFormat> formats = {{"table", SqlFormat::table}, {"json", SqlFormat::json}};
  CLI::Option& source = addAccountOption(command, "--account", options->account);
  command.add_flag("--empty", options->empty, "Instead of an account an empty database in memory")->excludes(&source);
  command.add_option("--format", options->format, "table or json")->transform(oneOf(formats));
  command.add_option("FILE", options->file, "The script; standard input when it is left out");
  command.callback([options] {
    if (options->account.text().empty() && !options->empty) refuseUsage("give either --account or --empty");
    const std::unique_ptr<tsql::Database> account =
        options->empty
            ? tsql::Connection::openInMemory()
            : options->account.open(tsql::OpenMode::existing,
                                    {.messages = [](const odbc::Diagnostic& said) { std::cerr << said.text << '\n'; }});
    std::ifstream file;
    if (!options->file.empty()) {
      file.open(pathFromUtf8(options->file), std::ios::binary);
      if (!file) throw UserError("cannot read " + options->file + "; check the name and its permissions");
    }
    std::istream& script = options->file.empty() ? std::cin : file;
    const std::string name = options->file.empty() ? "the script" : options->file;
    const int failed = runScript(*account, script, name, options->format, std::cout, std::cerr);
    if (failed > 0 && options->format == SqlFormat::table) endWith(1);
  });
}

}  // namespace quillon::workbench

#include "workbench/cli/book_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/command_line.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/progress_line.h"
#include "workbench/cli/run_notes.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/terminal.h"
#include "workbench/messages/common.h"
#include "workbench/messages/keeping.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/book_index.h"
#include "workbench/presentation/html_page.h"
#include "workbench/presentation/output_file.h"
#include "workbench/presentation/value_output.h"
#include "workbench/presentation/xlsx_workbook.h"
#include "workbench/runs/book_file.h"
#include "workbench/runs/run_fingerprint.h"
#include "workbench/tsql/values/stop.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace fs = std::filesystem;

namespace {

// Where the entries of a book go.
class BookOutput {
 public:
  virtual ~BookOutput() = default;
  virtual LayoutOutput form() const = 0;
  // Writes the next entry.
  virtual void add(const LaidOutReport& report) = 0;
  // Gives what was written its name. Without it nothing is left.
  virtual void complete() = 0;
};

class WorkbookOutput final : public BookOutput {
 public:
  WorkbookOutput(const fs::path& file, const Book& book) : book_(file, book.title, book.company) {}

  LayoutOutput form() const override { return LayoutOutput::workbook; }
  void add(const LaidOutReport& report) override {
    book_.add(report, std::to_string(++count_) + " " + report.heading.title);
  }
  void complete() override { book_.save(); }

 private:
  XlsxBook book_;
  std::size_t count_ = 0;
};

// A folder beside its place, which goes unless it gets its name.
class FolderOutput final : public BookOutput {
 public:
  FolderOutput(fs::path folder, const Book& book, Language language)
      : folder_(std::move(folder)),
        draft_(folder_),
        index_{.language = language, .title = book.title, .company = book.company, .printed = {}, .pages = {}} {
    std::error_code error;
    if (fs::exists(fs::symlink_status(folder_, error)) &&
        !(fs::is_directory(folder_, error) && fs::is_empty(folder_, error)))
      throw UserError(messages::bookFolderNotEmpty(utf8FromPath(folder_)));
    if (draft_.filename().empty()) draft_ = draft_.parent_path();
    draft_ += pathFromUtf8("." + uniqueNamePart());
    fs::create_directory(draft_, error);
    if (error) throw UserError(messages::cannotWriteBecause(utf8FromPath(folder_), error.message()));
  }
  FolderOutput(const FolderOutput&) = delete;
  FolderOutput& operator=(const FolderOutput&) = delete;
  ~FolderOutput() override {
    std::error_code ignored;
    if (!complete_) fs::remove_all(draft_, ignored);
  }

  LayoutOutput form() const override { return LayoutOutput::page; }
  void add(const LaidOutReport& report) override {
    const std::string& title = report.heading.title;
    const std::string name = bookPageFile(index_.pages.size() + 1, title);
    writeFile(name, [&report](std::ostream& out) { writeHtml(out, report); });
    index_.pages.push_back({.title = title,
                            .file = name,
                            .rows = report.heading.rowCount,
                            .digest = fingerprintDigest(canonicalText(report.fingerprint.value()))});
    index_.printed = report.heading.printed;
    if (index_.title.empty()) index_.title = report.heading.company;
  }
  void complete() override {
    writeFile("index.html", [this](std::ostream& out) { writeBookIndex(out, index_); });
    std::error_code error;
    fs::remove(folder_, error);  // an empty one
    fs::rename(draft_, folder_, error);
    if (error) throw UserError(messages::cannotWriteBecause(utf8FromPath(folder_), error.message()));
    complete_ = true;
  }

 private:
  template <typename Write>
  void writeFile(const std::string& name, const Write& write) {
    std::ofstream file(draft_ / pathFromUtf8(name), std::ios::binary);
    if (file) write(file);
    file.close();
    if (!file) throw UserError(messages::cannotWrite(utf8FromPath(folder_ / pathFromUtf8(name))));
  }

  fs::path folder_;
  fs::path draft_;
  BookIndex index_;
  bool complete_ = false;
};

bool isWorkbook(const std::string& output) {
  return equalIgnoringCase(utf8FromPath(pathFromUtf8(output).extension()), ".xlsx");
}

std::unique_ptr<BookOutput> outputOf(const BookOptions& options, const Book& book) {
  const fs::path path = pathFromUtf8(options.output);
  if (!isWorkbook(options.output)) return std::make_unique<FolderOutput>(path, book, options.language);
  std::vector<fs::path> inputs = {pathFromUtf8(options.file)};
  if (!options.account.onServer()) inputs.push_back(options.account.file());
  for (const BookEntry& entry : book.entries) {
    if (!entry.filterFile.empty()) inputs.push_back(pathFromUtf8(entry.filterFile));
  }
  refuseToReplace(path, inputs);
  return std::make_unique<WorkbookOutput>(path, book);
}

// What the entry comes to, one line for the user.
std::string makeEntry(const BookOptions& options, const Book& book, const BookEntry& entry, BookOutput& output,
                      std::ostream& notes) {
  std::unique_ptr<ProgressLine> progress;
  if (options.terminal) progress = std::make_unique<ProgressLine>(notes, errorColumns(), options.language);
  RunNotes observer(notes, options.language, progress.get());
  LayoutOptions layout = layoutOptionsOf(reportNamed(entry.report), entry.layout);
  layout.company = book.company;
  const auto report = makeReport({.report = entry.report,
                                  .account = options.account,
                                  .filterFile = entry.filterFile,
                                  .settings = entry.settings,
                                  .language = options.language,
                                  .date = options.date},
                                 observer);
  if (progress) progress->readSums();
  LaidOutReport laid = laidOut(*report, options.language, layout, output.form());
  if (!entry.title.empty()) laid.heading.title = entry.title;
  laid.fingerprint = fingerprintOf(*report);
  output.add(laid);
  if (progress) progress->finish();
  return groupedCount(laid.heading.rowCount);
}

void tellFault(const Book& book, std::size_t entry, const Message& reason, Language language, std::ostream& out) {
  out << messages::bookEntryFails(book.nameOf(entry), reason).in(language) << '\n';
}

std::string listOfNumbers(const std::vector<std::size_t>& numbers) {
  std::string list;
  for (const std::size_t number : numbers)
    list += (list.empty() ? "" : ", ") + std::to_string(number);
  return list;
}

}  // namespace

bool checkBook(const std::string& file, Language language, std::ostream& out) {
  const Book book = readBook(file);
  for (const BookFault& fault : book.faults)
    tellFault(book, fault.entry, fault.reason, language, out);
  if (book.faults.empty()) out << messages::bookIsRight(book.entries.size()).in(language) << '\n';
  return book.faults.empty();
}

bool runBook(const BookOptions& options, std::ostream& out, std::ostream& notes) {
  Book book = readBook(options.file);
  for (const BookFault& fault : book.faults) {
    notes << "quillon: ";
    tellFault(book, fault.entry, fault.reason, options.language, notes);
  }
  if (!book.faults.empty()) return false;
  for (const TakenSetting& setting : setInAll(book, options.settings))
    out << messages::settingTaken(setting.setting, listOfNumbers(setting.entries)).in(options.language) << '\n';
  const auto output = outputOf(options, book);
  bool all = true;
  for (std::size_t entry = 1; entry <= book.entries.size(); ++entry) {
    try {
      const std::string rows = makeEntry(options, book, book.entries[entry - 1], *output, notes);
      out << messages::bookEntryMade(book.nameOf(entry), rows).in(options.language) << '\n';
    } catch (const std::exception& error) {
      tsql::endIfStopped();
      all = false;
      notes << "quillon: "
            << messages::bookEntryFails(book.nameOf(entry), Message::verbatim(errorLine(error, options.language)))
                   .in(options.language)
            << '\n';
    }
  }
  if (all) {
    output->complete();
    out << messages::bookWritten(options.output).in(options.language) << '\n';
  } else {
    notes << "quillon: " << messages::bookNotWritten(options.output).in(options.language) << '\n';
  }
  return all;
}

void addBookCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("book", "Make the reports that a file lists, in one go");
  command.require_subcommand(1);
  const auto options = std::make_shared<BookOptions>();
  CLI::App& run = *command.add_subcommand("run", "Make all reports of a book, as a folder of pages or a workbook");
  run.add_option("FILE", options->file, "The book, a JSON file")->required();
  addAccountOption(run, "--account", options->account).required();
  run.add_option("--set", options->settings, "Set a filter item in every entry that has it: key=value")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  run.add_option("-o,--output", options->output, "A folder to be made, or a workbook (.xlsx)")->required();
  addLanguageOption(run, options->language);
  addDateOption(run, options->date);
  run.callback([options] {
    options->terminal = errorsGoToTerminal();
    if (!runBook(*options, std::cout, std::cerr)) endWith(1);
  });
  CLI::App& check = *command.add_subcommand("check", "Tell what is wrong with a book, without an account");
  check.add_option("FILE", options->file, "The book, a JSON file")->required();
  addLanguageOption(check, options->language);
  check.callback([options] {
    if (!checkBook(options->file, options->language, std::cout)) endWith(1);
  });
}

}  // namespace quillon::workbench

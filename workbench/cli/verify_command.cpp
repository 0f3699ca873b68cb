#include "workbench/cli/verify_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/exit_status.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/progress_line.h"
#include "workbench/cli/run_notes.h"
#include "workbench/cli/standard_streams.h"
#include "workbench/cli/terminal.h"
#include "workbench/messages/common.h"
#include "workbench/messages/keeping.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/exact_sum.h"
#include "workbench/presentation/fingerprint_file.h"
#include "workbench/presentation/value_output.h"
#include "workbench/runs/run_fingerprint.h"
#include "workbench/tsql/values/exact.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// `after` less `before`, with its sign: "+0.01"; nothing when one of them is no exact number.
std::optional<std::string> differenceOf(const std::string& before, const std::string& after) {
  const auto exact = [](const std::string& text) { return tsql::parseExact(text); };
  const auto one = exact(before), other = exact(after);
  if (!one || !other) return {};
  ExactSum difference;
  difference.add(tsql::Value(*other));
  difference.subtract(tsql::Value(*one));
  const std::string text = withoutEndingZeros(tsql::toText(difference.value()).value_or("0"));
  return text.starts_with('-') ? text : "+" + text;
}

void tellSum(const FingerprintSum& sum, const std::string& before, const std::string& after, Language language,
             std::ostream& out) {
  const Message name = sum.caption.empty() ? Message::verbatim(sum.name) : sum.caption;
  const auto difference = differenceOf(before, after);
  const Message line =
      difference ? messages::differentSum(name, before, after, *difference) : messages::differentOtherwise(name);
  out << line.in(language) << '\n';
}

// What of the one is not so in the other.
void tellDifferences(const RunFingerprint& file, const RunFingerprint& now, Language language, std::ostream& out) {
  if (file.rows != now.rows) {
    const std::int64_t more = now.rows - file.rows;
    const std::string sign = more > 0 ? "+" : "-";
    out << messages::differentRowCount(groupedCount(file.rows), groupedCount(now.rows),
                                       sign + groupedCount(more > 0 ? more : -more))
               .in(language)
        << '\n';
  }
  const std::string nothing;
  for (const FingerprintSum& sum : now.sums) {
    const auto before = std::ranges::find(file.sums, sum.name, &FingerprintSum::name);
    const std::string& value = before == file.sums.end() ? nothing : before->value;
    if (value != sum.value) tellSum(sum, value, sum.value, language, out);
  }
  for (const FingerprintSum& sum : file.sums) {
    if (std::ranges::find(now.sums, sum.name, &FingerprintSum::name) == now.sums.end())
      tellSum(sum, sum.value, nothing, language, out);
  }
}

// Refuses a fingerprint of an account with another code. One of another name may be the same account: a copy, a renamed
// file, or one that was taken to a server; that is told.
void requireAccount(const VerifyOptions& options, const RunFingerprint& fingerprint, std::ostream& notes) {
  const SignedInAccount account = logIn(options.account, options.language, fingerprint.date);
  const RunFingerprint own = fingerprintOfAccount(account);
  if (own.accountCode != fingerprint.accountCode)
    throw UserError(messages::fingerprintOfOther(options.file, accountOf(fingerprint), accountOf(own)));
  if (own.accountName != fingerprint.accountName) {
    notes << "quillon: "
          << messages::fingerprintOfOtherName(options.file, accountOf(fingerprint), accountOf(own)).in(options.language)
          << '\n';
  }
}

}  // namespace

bool verify(const VerifyOptions& options, std::ostream& out, std::ostream& notes) {
  bool same = true;
  bool first = true;
  for (const RunFingerprint& fingerprint : readFingerprints(pathFromUtf8(options.file))) {
    const bool hasSql = std::ranges::any_of(fingerprint.filter, [](const auto& item) { return !item.sql.empty(); });
    if (hasSql && !options.allowSql) throw UserError(messages::fingerprintWithSql(options.file));
    const Report& report = reportNamed(fingerprint.report);
    if (std::exchange(first, false)) requireAccount(options, fingerprint, notes);
    std::unique_ptr<ProgressLine> progress;
    if (options.terminal) progress = std::make_unique<ProgressLine>(notes, errorColumns(), options.language);
    RunNotes observer(notes, options.language, progress.get());
    const auto made = makeReport({.report = fingerprint.report,
                                  .account = options.account,
                                  .accepted = filterOf(fingerprint),
                                  .language = options.language,
                                  .date = fingerprint.date},
                                 observer);
    RunFingerprint now = fingerprintOf(*made);
    now.accountName = fingerprint.accountName;
    if (progress) progress->finish();
    const std::string before = canonicalText(fingerprint), after = canonicalText(now);
    const std::string& title = report.registration.title(options.language);
    if (before == after) {
      out << messages::verifiedSame(title, groupedCount(now.rows), fingerprintDigest(after)).in(options.language)
          << '\n';
      continue;
    }
    same = false;
    out << messages::verifiedDifferent(title, fingerprintDigest(before), fingerprintDigest(after)).in(options.language)
        << '\n';
    tellDifferences(fingerprint, now, options.language, out);
  }
  return same;
}

void addVerifyCommand(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("verify", "Tell whether an account still gives what a page or workbook shows");
  const auto options = std::make_shared<VerifyOptions>();
  command.add_option("FILE", options->file, "The page (html) or workbook (xlsx)")->required();
  addAccountOption(command, "--account", options->account).required();
  command.add_flag("--allow-sql", options->allowSql, "Run conditions that the file holds as SQL, if you trust it");
  addLanguageOption(command, options->language);
  command.callback([options] {
    options->terminal = errorsGoToTerminal();
    if (!verify(*options, std::cout, std::cerr)) endWith(1);
  });
}

}  // namespace quillon::workbench

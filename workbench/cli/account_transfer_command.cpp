#include "workbench/cli/account_transfer_command.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "workbench/account/partial_file.h"
#include "workbench/account/script.h"
#include "workbench/account/transfer.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/transfer_line.h"
#include "workbench/messages/account.h"
#include "workbench/messages/common.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

Message described(const account::TransferCounts& counts) {
  return messages::transferCounts(groupedCount(counts.tables), groupedCount(counts.rows));
}

void exportTo(const AccountSource& source, const std::string& folder, Language language) {
  const auto connection = tsql::Connection::open(source.file(), tsql::OpenMode::readOnly);
  TransferLine line(language);
  const account::TransferCounts counts = account::exportAccount(*connection, pathFromUtf8(folder), line.ofRows());
  line.finish();
  std::cout << messages::wroteTo(described(counts), folder).in(language) << '\n';
}

void importFrom(const std::string& file, const std::string& folder, Language language) {
  TransferLine line(language);
  const account::TransferCounts counts =
      account::importAccount(pathFromUtf8(file), pathFromUtf8(folder), line.ofRows());
  line.finish();
  std::cout << messages::madeWith(file, described(counts)).in(language) << '\n';
}

void writeScriptTo(const AccountSource& source, const std::string& target, const account::ScriptOptions& options,
                   Language language) {
  const auto connection = tsql::Connection::open(source.file(), tsql::OpenMode::readOnly);
  if (target.empty()) {
    account::writeScript(*connection, std::cout, options);
    std::cout.flush();
    if (!std::cout) throw UserError(messages::scriptNotWritten());
    return;
  }
  account::PartialFile partial(pathFromUtf8(target));
  std::ofstream file(partial.path(), std::ios::binary);
  account::TransferCounts counts;
  TransferLine line(language);
  if (file) counts = account::writeScript(*connection, file, options, line.ofRows());
  file.close();
  line.finish();
  if (!file) throw UserError(messages::cannotWrite(target));
  partial.complete();
  std::cout << messages::wroteTo(described(counts), target).in(language) << '\n';
}

}  // namespace

void addTransferCommands(CLI::App& account) {
  const auto source = std::make_shared<AccountSource>();
  const auto folder = std::make_shared<std::string>();
  const auto target = std::make_shared<std::string>();
  const auto language = std::make_shared<Language>(Language::english);

  CLI::App& exporting = *account.add_subcommand("export", "Write every table to a folder of CSV files");
  addAccountOption(exporting, "SOURCE", *source, "The account file").required();
  exporting.add_option("DIR", *target, "The folder to write; it must not exist, or be empty")->required();
  addLanguageOption(exporting, *language);
  exporting.callback([source, target, language] { exportTo(*source, *target, *language); });

  CLI::App& importing = *account.add_subcommand("import", "Make an account of a folder of CSV files");
  importing.add_option("FILE", *target, "The account file to make; it must not exist")->required();
  importing.add_option("DIR", *folder, "The folder: schema.sql and a CSV file for each table")->required();
  addLanguageOption(importing, *language);
  importing.callback([target, folder, language] { importFrom(*target, *folder, *language); });

  CLI::App& scripting = *account.add_subcommand("script", "Write the account as T-SQL for a new server");
  addAccountOption(scripting, "SOURCE", *source, "The account file").required();
  scripting.add_option("FILE", *target, "The script to write; it must not exist. Standard output when it is left out");
  const auto options = std::make_shared<account::ScriptOptions>();
  scripting
      .add_option("--account-id", options->accountId,
                  "The account's id on a server that has a system database with other accounts already")
      ->type_name("ID");
  scripting.add_option("--batch-size", options->batchRows, "The most rows in a batch")
      ->type_name("ROWS")
      ->transform(wholeNumber(1, account::mostBatchRows))
      ->capture_default_str();
  addLanguageOption(scripting, *language);
  scripting.callback([source, target, options, language] { writeScriptTo(*source, *target, *options, *language); });
}

}  // namespace quillon::workbench

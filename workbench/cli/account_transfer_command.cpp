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
#include "workbench/platform/user_error.h"
#include "workbench/presentation/value_output.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

std::string described(const account::TransferCounts& counts) {
  return groupedCount(counts.tables) + " tables with " + groupedCount(counts.rows) + " rows";
}

void exportTo(const AccountSource& source, const std::string& folder) {
  const auto connection = tsql::Connection::open(source.file(), tsql::OpenMode::readOnly);
  const account::TransferCounts counts = account::exportAccount(*connection, pathFromUtf8(folder));
  std::cout << "wrote " << described(counts) << " to " << folder << '\n';
}

void importFrom(const std::string& file, const std::string& folder) {
  const account::TransferCounts counts = account::importAccount(pathFromUtf8(file), pathFromUtf8(folder));
  std::cout << "made " << file << ": " << described(counts) << '\n';
}

void writeScriptTo(const AccountSource& source, const std::string& target) {
  const auto connection = tsql::Connection::open(source.file(), tsql::OpenMode::readOnly);
  if (target.empty()) {
    account::writeScript(*connection, std::cout);
    std::cout.flush();
    if (!std::cout) throw UserError("the script could not be written to standard output");
    return;
  }
  account::PartialFile partial(pathFromUtf8(target));
  std::ofstream file(partial.path(), std::ios::binary);
  account::TransferCounts counts;
  if (file) counts = account::writeScript(*connection, file);
  file.close();
  if (!file) throw UserError("cannot write " + target + "; check the folder, its permissions and its free space");
  partial.complete();
  std::cout << "wrote " << described(counts) << " to " << target << '\n';
}

}  // namespace

void addTransferCommands(CLI::App& account) {
  const auto source = std::make_shared<AccountSource>();
  const auto folder = std::make_shared<std::string>();
  const auto target = std::make_shared<std::string>();

  CLI::App& exporting = *account.add_subcommand("export", "Write every table to a folder of CSV files");
  addAccountOption(exporting, "SOURCE", *source, "The account file").required();
  exporting.add_option("DIR", *target, "The folder to write; it must not exist, or be empty")->required();
  exporting.callback([source, target] { exportTo(*source, *target); });

  CLI::App& importing = *account.add_subcommand("import", "Make an account of a folder of CSV files");
  importing.add_option("FILE", *target, "The account file to make; it must not exist")->required();
  importing.add_option("DIR", *folder, "The folder: schema.sql and a CSV file for each table")->required();
  importing.callback([target, folder] { importFrom(*target, *folder); });

  CLI::App& scripting = *account.add_subcommand("script", "Write the account as T-SQL for a new server");
  addAccountOption(scripting, "SOURCE", *source, "The account file").required();
  scripting.add_option("FILE", *target, "The script to write; it must not exist. Standard output when it is left out");
  scripting.callback([source, target] { writeScriptTo(*source, *target); });
}

}  // namespace quillon::workbench

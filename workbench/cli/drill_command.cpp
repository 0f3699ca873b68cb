#include "workbench/cli/drill_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "frame/text.h"
#include "workbench/catalogue/catalogue.h"
#include "workbench/cli/account_option.h"
#include "workbench/cli/checked_values.h"
#include "workbench/cli/filters_command.h"
#include "workbench/cli/language_option.h"
#include "workbench/cli/named_choice.h"
#include "workbench/cli/run_notes.h"
#include "workbench/messages/common.h"
#include "workbench/messages/report.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/text_table.h"
#include "workbench/runs/row_document.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

RowValues readRow(const std::vector<std::string>& settings) {
  RowValues row;
  for (const std::string& setting : settings) {
    const auto equals = setting.find('=');
    if (equals == std::string::npos || equals == 0) throw UserError(messages::noColumnOfRow(setting));
    row.emplace_back(trimBlanks(std::string_view(setting).substr(0, equals)), setting.substr(equals + 1));
  }
  return row;
}

void requireDocuments(const Report& report) {
  if (report.opensDocuments()) return;
  std::vector<std::string> others;
  for (const Report& other : reports()) {
    if (other.opensDocuments()) others.push_back(other.registration.name);
  }
  throw UserError(messages::noDocuments(report.registration.name, listOf(others)));
}

// A row that is given by itself has what the action's document cannot be opened without.
void requireDocumentColumns(const Report& report, const RowValues& row, const std::string& action) {
  std::string missing;
  for (const std::string_view column :
       action == sourceDocumentAction ? report.sourceDocumentColumns : report.ledgerVoucherColumns) {
    // Either name of the ledger line's number will do, as for the drill-through.
    const bool number = equalIgnoringCase(column, "ID") || equalIgnoringCase(column, "AutoID");
    const bool has =
        number ? valueIn(row, "ID") != nullptr || valueIn(row, "AutoID") != nullptr : valueIn(row, column) != nullptr;
    if (!has) missing.append(" --row ").append(column).append("=...");
  }
  if (!missing.empty()) throw UserError(messages::rowLacksColumns(missing));
}

// The row that is acted on, and who is signed in. A report that was run for it is gone again.
std::pair<RowValues, SignedInAccount> chooseRow(const DrillOptions& options, std::ostream& notes) {
  const RowValues wanted = readRow(options.row);
  const ReportRequest& request = options.report;
  if (!request.filterFile.empty() || !request.settings.empty()) {
    RunNotes observer(notes, request.language);
    const auto report = makeReport(request, observer);
    return {findRow(*report, wanted), report->account()};
  }
  if (valueIn(wanted, "RowNo") != nullptr) {
    throw UserError(messages::rowNumberNeedsFilter());
  }
  requireDocumentColumns(reportNamed(request.report), wanted, options.action);
  return {wanted, logIn(request.account, request.language, request.date)};
}

void writeVoucher(std::ostream& out, const OpenedVoucher& voucher, const TableStyle& style) {
  const Language language = style.language;
  out << voucher.title.in(language) << '\n'
      << messages::headed(messages::openedBy.caption(), voucher.member).in(language) << '\n';
  for (const auto& [field, value] : voucher.heading) {
    if (!value.empty()) out << messages::headed(field.caption, oneLine(shownValue(field, value))).in(language) << '\n';
  }
  out << '\n';
  std::vector<TableColumn> columns;
  for (const VoucherField& field : voucher.columns) {
    columns.push_back(
        {std::string(field.caption.in(language)), field.kind == VoucherField::Kind::text ? Align::left : Align::right});
  }
  TextTable table(out, std::move(columns), style);
  for (const auto& line : voucher.lines) {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < line.size(); ++i)
      cells.push_back(shownValue(voucher.columns[i], line[i]));
    table.row(std::move(cells));
  }
  table.finish();
}

void writeTable(std::ostream& out, const OpenedDocuments& outcome, const TableStyle& style) {
  for (const std::string& message : outcome.messages)
    out << oneLine(message) << '\n';
  for (const OpenedVoucher& voucher : outcome.opened)
    writeVoucher(out, voucher, style);
  if (outcome.messages.empty() && outcome.opened.empty()) out << messages::nothingOpened.in(style.language) << '\n';
}

Json jsonOf(const OpenedVoucher& voucher, Language language) {
  Json heading = Json::object();
  for (const auto& [field, value] : voucher.heading)
    heading[std::string(field.name)] = value;
  Json lines = Json::array();
  for (const auto& line : voucher.lines) {
    Json entry = Json::object();
    for (std::size_t i = 0; i < line.size(); ++i)
      entry[std::string(voucher.columns[i].name)] = line[i];
    lines.push_back(std::move(entry));
  }
  return {{"member", voucher.member},
          {"title", voucher.title.in(language)},
          {"heading", std::move(heading)},
          {"lines", std::move(lines)}};
}

void writeJson(std::ostream& out, const DrillOptions& options, const RowValues& row, const OpenedDocuments& outcome) {
  Json columns = Json::object();
  for (const auto& [column, value] : row) {
    if (!value.empty()) columns[column] = value;
  }
  Json opened = Json::array();
  for (const OpenedVoucher& voucher : outcome.opened)
    opened.push_back(jsonOf(voucher, options.report.language));
  out << Json{{"action", options.action},
              {"row", std::move(columns)},
              {"messages", outcome.messages},
              {"opened", std::move(opened)}}
             .dump(-1, ' ', false, Json::error_handler_t::replace)  // a text may hold half a surrogate pair
      << '\n';
}

}  // namespace

void runDrill(const DrillOptions& options, std::ostream& out, std::ostream& notes) {
  requireDocuments(reportNamed(options.report.report));
  const auto [row, account] = chooseRow(options, notes);
  const OpenedDocuments outcome =
      openDocuments(reportNamed(options.report.report), account, options.report.language, row, options.action);
  const bool written = writePaged(out, options.screen, [&, &shown = row](std::ostream& pages) {
    if (options.format == DrillFormat::json) {
      writeJson(pages, options, shown, outcome);
    } else {
      writeTable(pages, outcome, options.screen.style(options.report.language));
    }
  });
  if (!written) throw UserError(messages::documentNotWritten());
}

void addDrillCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand("drill", "Open the document behind a row of a report");
  const auto options = std::make_shared<DrillOptions>();
  static const std::map<std::string, DrillFormat> formats = {{"table", DrillFormat::table},
                                                             {"json", DrillFormat::json}};
  const auto several = [](CLI::Option* option) {
    return option->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  };
  command.add_option("REPORT", options->report.report, "The report: " + reportNames())->required();
  addAccountOption(command, "--account", options->report.account).required();
  several(command.add_option("--row", options->row,
                             "The row: column=value (may be repeated). With a filter the report is run and its first "
                             "row that has these values is taken (RowNo=N: line N); without one these are its columns"))
      ->required();
  command.add_option("--action", options->action,
                     "Vouch: the source document; anything else: the general-ledger voucher");
  addFilterOption(command, options->report.filterFile, "The report's filter");
  several(command.add_option("--set", options->report.settings, "Set a filter item of the report: key=value"));
  command.add_flag_callback(
      "--no-dialog", [options] { options->report.dialog = false; }, "Do not run the report's filter dialog");
  command.add_option("--format", options->format, "table or json")->transform(oneOf(formats));
  addLanguageOption(command, options->report.language);
  addScreenOptions(command, options->screen);
  addDateOption(command, options->report.date);
  command.callback([options] {
    options->screen.screen = outputScreen();
    runDrill(*options, std::cout, std::cerr);
  });
}

}  // namespace quillon::workbench

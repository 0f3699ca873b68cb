#include "workbench/cli/item_help.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "workbench/catalogue/catalogue.h"
#include "workbench/platform/lookup.h"
#include "workbench/presentation/text_table.h"

namespace quillon::workbench {

namespace {

std::string kindOf(const ItemRegistration& item) {
  switch (item.kind) {
    case InputKind::reference:
      return item.beginning ? "beginning of a code" : "code";
    case InputKind::choice:
      return "choice";
    case InputKind::flag:
      return "yes or no";
    case InputKind::number:
      return "number";
    case InputKind::date:
      return "date";
    case InputKind::text:
      break;
  }
  return "text";
}

std::string valuesOf(const ItemRegistration& item) {
  const std::string many = item.range ? "range" : item.multiple ? "list" : "one";
  return item.required ? many + ", required" : many;
}

// Where the item's codes are to be seen: a list, or the few that there are.
std::string codesOf(const ItemRegistration& item) {
  if (item.lookup != nullptr) return "quillon list " + std::string(item.lookup->kind);
  std::string codes;
  for (const Choice& choice : item.choices)
    codes += (codes.empty() ? "" : ", ") + choice.code + (choice.english == choice.code ? "" : " " + choice.english);
  return codes;
}

std::string exampleValue(const ItemRegistration& item) {
  if (!item.example.empty()) return item.example;
  // What is set anyway shows less.
  const auto other =
      std::ranges::find_if(item.choices, [&item](const Choice& choice) { return choice.code != item.defaultValue; });
  if (other != item.choices.end()) return other->code;
  if (item.lookup != nullptr) return std::string(item.lookup->example);
  if (item.kind == InputKind::number) return "100";
  if (item.kind == InputKind::date) return item.range ? "2024-03-01..2024-03-31" : "2024-03-31";
  return "A1";
}

}  // namespace

std::string exampleOf(const ItemRegistration& item) {
  return item.key + "=" + exampleValue(item);
}

std::string itemHelp(const Report& report) {
  std::ostringstream out;
  out << "Filter items of " << report.registration.name << " (" << report.registration.chinese << ", "
      << report.registration.english
      << ").\nA key may be given as its caption, a code as its name where that is unique: --set 仓库=线边库. Of a list, several\n"
         "values with commas; of a range, lower..upper, where either may be missing.\n\n";
  TextTable table(out, {{"Key", Align::left},
                        {"中文", Align::left},
                        {"English", Align::left},
                        {"Kind", Align::left},
                        {"Values", Align::left},
                        {"Example", Align::left},
                        {"Codes", Align::left}});
  for (const ItemRegistration& item : report.registration.items)
    table.row({item.key, item.chinese, item.english, kindOf(item), valuesOf(item), "--set " + exampleOf(item),
               codesOf(item)});
  table.finish();
  return out.str();
}

void addItemHelp(CLI::App& command, const std::string& name) {
  command.footer([&name]() -> std::string {
    const auto all = reports();
    const auto report =
        std::ranges::find_if(all, [&name](const Report& known) { return known.registration.name == name; });
    return report == all.end() ? "With a REPORT before --help, the report's filter items are listed."
                               : itemHelp(*report);
  });
}

}  // namespace quillon::workbench

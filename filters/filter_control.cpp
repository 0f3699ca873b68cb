#include "filters/filter_control.h"

#include <memory>

#include "filters/dialog_rules.h"
#include "frame/account_options.h"
#include "frame/inventory_checks.h"
#include "frame/inventory_environment.h"
#include "frame/pub_mod.h"
#include "frame/text.h"

namespace quillon {

namespace {

// Values of cCaType: what the ledger is broken down by.
constexpr std::string_view byCostItem = "成本项目";
constexpr std::string_view byCostItemClass = "项目分类";

// Resource keys of the refusals.
constexpr std::string_view warehouseMissing = "Mirel.IA.Mirel71.00217";
constexpr std::string_view departmentMissing = "Mirel.IA.Mirel71.00218";
constexpr std::string_view freeItemMissing = "Mirel.IA.Mirel71.00228";  // with the item's caption
constexpr std::string_view batch = "Mirel.IA.CHHSSQL.00010";
constexpr std::string_view isMissing = "Mirel.IA.CHHSSQL.13198";

// What the chosen inventory and the account ask for.
struct Requirements {
  std::string valuationMethod;
  InventoryChecks checks;
};

Requirements requirementsOf(Module& module, FilterDialog& dialog) {
  const OpenEnvironment environment = openInventoryEnvironment(module.platform(), *dialog.login());
  Requirements required;
  required.valuationMethod = environment.options->costingBasis();
  const std::string inventoryTable = environment.options->inventoryTable();
  const std::string inventory = dialog.item("cInvCode")->value();
  required.checks = readInventoryChecks(*dialog.connection().query(
      inventoryChecksQuery(inventoryTable, "Inventory", inventory),
      {.cursorType = CursorType::fixed, .lockType = LockType::optimistic, .cursorLocation = CursorLocation::client}));
  return required;
}

// Whether `name` is the key of a free item that the inventory is checked for.
bool isCheckedFreeItem(std::string_view name, const InventoryChecks& checks) {
  for (std::size_t i = 0; i < freeItemCount; ++i) {
    if (checks.freeItems.at(i) && equalIgnoringCase(name, "cFree" + std::to_string(i + 1))) return true;
  }
  return false;
}

// What to tell the user when the item has no value; nothing when it may be empty.
std::optional<std::string> refusal(DialogItem& item, std::string_view name, const Requirements& required,
                                   ResourceService& resources) {
  if (equalIgnoringCase(name, "cWhCode") && required.valuationMethod == valuationByWarehouse) {
    return resources.text(warehouseMissing);
  }
  if (equalIgnoringCase(name, "cDepCode") && required.valuationMethod == valuationByDepartment) {
    return resources.text(departmentMissing);
  }
  if (isCheckedFreeItem(name, required.checks)) return resources.formattedText(freeItemMissing, {item.caption()});
  if (equalIgnoringCase(name, "cBatchIA") && required.checks.batch) {
    const std::string subject = resources.text(batch);
    return subject + resources.text(isMissing);
  }
  return std::nullopt;
}

}  // namespace

void FilterControl::filterInit(FilterDialog& dialog) {
  module_.login = dialog.login();
  liftDataRights(module_);
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    const std::string name = item->name();
    if (equalIgnoringCase(name, "iYear")) {
      offerUsedYears(module_, dialog, *item);
    } else if (equalIgnoringCase(name, "cCaType")) {
      if (item->value().empty()) item->setValue(byCostItemClass);
    }
  }
  const int year = leadingNumber(dialog.item("iYear")->value());
  applyValuationRule(dialog, valueStyle(module_, year, dialog.connection()));
}

void FilterControl::valueChange(std::string_view key, FilterDialog& dialog) {
  if (key == "cInvCCode") {
    dialog.setLookupCondition("cInvCode", "", "#FN[cInvCCode] like N'" + dialog.item(key)->value() + "%'");
  } else if (key == "iYear") {
    const OpenEnvironment environment = openInventoryEnvironment(module_.platform(), *dialog.login());
    applyValuationRule(dialog, environment.options->costingBasis());
  }
}

std::optional<std::string> FilterControl::filterClick(FilterDialog& dialog) {
  const Requirements required = requirementsOf(module_, dialog);
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    std::string name = item->name();
    if (!item->value().empty()) continue;
    ResourceService& resources = module_.resources();
    if (const auto message = refusal(*item, name, required, resources)) {
      resources.showMessage(*message, 0);
      return name;
    }
  }
  return std::nullopt;
}

std::optional<std::string> FilterControl::reportView(FilterDialog& dialog) {
  std::optional<std::string> view;
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    if (!equalIgnoringCase(item->name(), "cCaType")) continue;
    view = item->value() == byCostItem ? "IA_FXDetail_FXDef" : "IA_FXDetail_FXClass";
  }
  return view;
}

}  // namespace quillon

#include "workbench/catalogue/registration_items.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace quillon::workbench {

namespace {

constexpr std::array freeItemNumbers = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

constexpr std::array inventoryTexts = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
constexpr std::array inventoryNumbers = {11, 12, 13, 14};
constexpr std::array inventoryDates = {15, 16};

constexpr std::array definedTexts = {1, 2, 3, 8, 9, 10, 11, 12, 13, 14, 22, 23, 24, 25, 28, 29, 30, 31, 32, 33};
constexpr std::array definedDates = {4, 6, 16, 36, 37};
constexpr std::array definedNumbers = {5, 7, 15, 26, 27, 34, 35};

}  // namespace

std::vector<Choice> yesNo() {
  return {{"0", "否", "no"}, {"1", "是", "yes"}};
}

std::vector<ItemRegistration> summaryReportItems() {
  return {{.key = "iYear",
           .chinese = "会计年度",
           .english = "Year",
           .kind = InputKind::choice,
           .required = true,
           .column = "base.iYear",
           .lookup = &years},
          {.key = "cModal",
           .chinese = "报表方式",
           .english = "Report mode",
           .kind = InputKind::choice,
           .required = true,
           .defaultValue = "0",
           .choices = {{"0", "按成本项目分类", "by cost-item class"},
                       {"1", "按成本项目", "by cost item"},
                       {"2", "按费用项目", "by expense item"}}},
          {.key = "iGrade",
           .chinese = "分类级次",
           .english = "Class grade",
           .kind = InputKind::choice,
           .defaultValue = "1",
           .example = "2"}};
}

std::vector<ItemRegistration> numberedFields(const NumberedField& field, std::span<const int> numbers, InputKind kind,
                                             bool multiple) {
  std::vector<ItemRegistration> items;
  for (const int number : numbers) {
    const std::string text = std::to_string(number);
    items.push_back({.key = field.key + text,
                     .chinese = field.chinese + text,
                     .english = field.english + " " + text,
                     .kind = kind,
                     .multiple = multiple,
                     .column = field.column + text});
  }
  return items;
}

std::vector<ItemRegistration> freeItems() {
  return numberedFields({"cFree", "自由项", "Free item", "base.cFree"}, freeItemNumbers, InputKind::text, true);
}

std::vector<ItemRegistration> definedFields() {
  const NumberedField field = {"cDefine", "自定义项", "User-defined field", "base.cDefine"};
  std::vector<ItemRegistration> fields = numberedFields(field, definedTexts, InputKind::text, true);
  append(fields, numberedFields(field, definedDates, InputKind::date, false));
  append(fields, numberedFields(field, definedNumbers, InputKind::number, false));
  return fields;
}

std::vector<ItemRegistration> inventoryFields(const std::string& table, bool multiple) {
  const NumberedField field = {"cInvDefine", "存货自定义项", "Inventory field", table + ".cInvDefine"};
  std::vector<ItemRegistration> fields = numberedFields(field, inventoryTexts, InputKind::text, multiple);
  append(fields, numberedFields(field, inventoryNumbers, InputKind::number, false));
  append(fields, numberedFields(field, inventoryDates, InputKind::date, false));
  return fields;
}

ItemRegistration batchItem(const char* key) {
  return {.key = key,
          .chinese = "批号",
          .english = "Batch",
          .multiple = true,
          .column = "base.cBatchia",
          .lookup = &batches};
}

ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           const Lookup* lookup) {
  return {.key = key,
          .chinese = chinese,
          .english = english,
          .kind = InputKind::reference,
          .column = column,
          .lookup = lookup};
}

ItemRegistration references(const char* key, const char* chinese, const char* english, const char* column,
                            const Lookup* lookup) {
  ItemRegistration item = reference(key, chinese, english, column, lookup);
  item.multiple = true;
  return item;
}

ItemRegistration beginning(const char* key, const char* chinese, const char* english, const char* column,
                           const Lookup& lookup) {
  ItemRegistration item = reference(key, chinese, english, column, &lookup);
  item.beginning = true;
  return item;
}

void append(std::vector<ItemRegistration>& items, std::vector<ItemRegistration> more) {
  std::ranges::move(more, std::back_inserter(items));
}

}  // namespace quillon::workbench

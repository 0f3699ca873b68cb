// Filter items that several reports register alike.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "workbench/platform/filter_object.h"
#include "workbench/platform/lookup.h"

namespace quillon::workbench {

// No and yes, "0" and "1".
std::vector<Choice> yesNo();

// What the summary reports begin with: iYear, cModal and iGrade.
std::vector<ItemRegistration> summaryReportItems();

// The free items of an inventory: cFree1 to cFree10.
std::vector<ItemRegistration> freeItems();

// The user-defined fields of the ledger, texts first, then dates, then numbers: cDefine1 to cDefine16 and cDefine22 to
// cDefine37; 17 to 21 belong to document lines and are not in the ledger.
std::vector<ItemRegistration> definedFields();

// The inventory master's own fields, cInvDefine1 to cInvDefine16: texts, of which several values may be selected when
// `multiple` is set, then numbers, then dates. `table` is the master's name in the report's conditions.
std::vector<ItemRegistration> inventoryFields(const std::string& table, bool multiple);

// The batches of the ledger.
ItemRegistration batchItem(const char* key);

// How a document's number is written.
inline constexpr const char* documentNumber = "11-202403-0014933";

// A code of a master, looked up there; of `references` several may be selected. Without `lookup`, it is a code that an
// account keeps nowhere.
ItemRegistration reference(const char* key, const char* chinese, const char* english, const char* column,
                           const Lookup* lookup = nullptr);
ItemRegistration references(const char* key, const char* chinese, const char* english, const char* column,
                            const Lookup* lookup = nullptr);
// The beginning of a code, such as that of a class with the classes below it.
ItemRegistration beginning(const char* key, const char* chinese, const char* english, const char* column,
                           const Lookup& lookup);

// Fields numbered `numbers`: key, captions and column are the texts given with the number behind them.
struct NumberedField {
  std::string key;
  std::string chinese;
  std::string english;
  std::string column;
};
std::vector<ItemRegistration> numberedFields(const NumberedField& field, std::span<const int> numbers, InputKind kind,
                                             bool multiple);

// Puts `more` behind `items`.
void append(std::vector<ItemRegistration>& items, std::vector<ItemRegistration> more);

}  // namespace quillon::workbench

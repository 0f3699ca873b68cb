#include "workbench/platform/resource_texts.h"

#include <algorithm>
#include <array>

namespace quillon::workbench {

namespace {

struct Resource {
  std::string_view key;
  Caption text;
};

constexpr std::array resources = {
    Resource{openingBalanceKey, {"期初结存", "Opening balance"}},
    Resource{receiptKey, {"收入", "Receipt"}},
    Resource{issueKey, {"发出", "Issue"}},
    Resource{closingBalanceKey, {"期末结存", "Closing balance"}},
    Resource{openingDigestKey, {"期初结存", "Opening balance"}},
    Resource{monthDigestKey, {"月末结存", "month-end balance"}},
    Resource{"Mirel.IA.CHHSSQL.02787", {"该记录没有生成凭证", "This row has not been posted to the general ledger"}},
    Resource{"Mirel.IA.Mirel71.00217",
             {"按仓库核算时，仓库不能为空", "Costs are kept by warehouse: the warehouse must be given"}},
    Resource{"Mirel.IA.Mirel71.00218",
             {"按部门核算时，部门不能为空", "Costs are kept by department: the department must be given"}},
    // {0} is the item's caption.
    Resource{"Mirel.IA.Mirel71.00228", {"{0}不能为空", "{0} must be given"}},
    // These two follow one another.
    Resource{"Mirel.IA.CHHSSQL.00010", {"批号", "Batch"}},
    Resource{"Mirel.IA.CHHSSQL.13198", {"不能为空", " must be given"}},
};

}  // namespace

std::string resourceText(std::string_view key, Language language) {
  const auto* const found = std::ranges::find(resources, key, &Resource::key);
  return std::string(found == resources.end() ? key : found->text.in(language));
}

}  // namespace quillon::workbench

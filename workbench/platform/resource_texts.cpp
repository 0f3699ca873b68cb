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
};

}  // namespace

std::string resourceText(std::string_view key, Language language) {
  const auto* const found = std::ranges::find(resources, key, &Resource::key);
  return std::string(found == resources.end() ? key : found->text.in(language));
}

}  // namespace quillon::workbench

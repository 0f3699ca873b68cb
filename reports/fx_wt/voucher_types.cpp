#include "reports/fx_wt/voucher_types.h"

#include <array>
#include <string_view>

#include "frame/text.h"

namespace quillon::fx_wt {

namespace {

struct Flavours {
  std::string_view plain;
  std::string_view second;
};
constexpr std::array flavoured{Flavours{"01", "011"}, Flavours{"30", "301"}, Flavours{"70", "701"}};

struct Replacement {
  std::string_view from;
  std::string_view to;
};
// In this order: the types that belong to a chosen one, and the ledger's own type in place of a second flavour.
constexpr std::array replacements{
    Replacement{"'32'", "'32','3201'"}, Replacement{"'25'", "'25','2501'"}, Replacement{"'011'", "'01'"},
    Replacement{"'301'", "'30'"},       Replacement{"'701'", "'70'"},       Replacement{"'05'", "'05','06'"},
};

std::string quoted(std::string_view type) {
  return "'" + std::string(type) + "'";
}

bool contains(std::string_view list, std::string_view quotedType) {
  return list.find(quotedType) != std::string_view::npos;
}

// With the comma that goes with it.
void remove(std::string& list, const std::string& quotedType) {
  replaceAll(list, "," + quotedType, "");
  replaceAll(list, quotedType + ",", "");
  replaceAll(list, quotedType, "");
}

}  // namespace

std::string voucherTypeCondition(std::string list) {
  std::string oneFlavour;  // the conditions on types of which only one flavour is chosen
  for (const auto& [plain, second] : flavoured) {
    const bool plainChosen = contains(list, quoted(plain));
    const bool secondChosen = contains(list, quoted(second));
    if (plainChosen == secondChosen) continue;
    oneFlavour += (oneFlavour.empty() ? " (cVouType=" : " OR (cVouType=") + quoted(plain) +
                  (plainChosen ? " and bFlag<>1) " : " and bFlag=1) ");
    remove(list, quoted(plainChosen ? plain : second));
  }
  for (const auto& [from, to] : replacements)
    replaceAll(list, from, to);

  if (list.empty()) return oneFlavour.empty() ? std::string() : " (" + oneFlavour + ")";
  return " (base.cVouType in (" + list + ")" + (oneFlavour.empty() ? std::string() : " or " + oneFlavour) + ")";
}

}  // namespace quillon::fx_wt

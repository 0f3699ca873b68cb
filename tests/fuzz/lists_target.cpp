#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "frame/quoted_list.h"
#include "frame/text.h"
#include "reports/fx_wt/voucher_types.h"
#include "tests/fuzz/targets.h"

namespace quillon::fuzz {

namespace {

std::vector<std::string> selectionsOf(std::string_view value) {
  std::vector<std::string> selections;
  if (value.empty()) return selections;
  for (bool more = true; more;) {
    const std::size_t tab = value.find('\t');
    more = tab != std::string_view::npos;
    selections.emplace_back(trimBlanks(value.substr(0, tab)));
    if (more) value.remove_prefix(tab + 1);
  }
  return selections;
}

// The texts of a list, as a database reads it. Nothing but texts and single commas may stand there.
std::vector<std::string> textsOf(std::string_view list) {
  std::vector<std::string> texts;
  for (std::size_t at = 0; at < list.size(); ++at) {
    if (!texts.empty()) {
      require(list[at] == ',', "the texts of a list stand between commas");
      ++at;
    }
    require(at < list.size() && list[at] == '\'', "a list holds texts");
    std::string& text = texts.emplace_back();
    for (++at;; ++at) {
      require(at < list.size(), "every text of a list is closed");
      if (list[at] == '\'' && (at + 1 == list.size() || list[at + 1] != '\'')) break;
      if (list[at] == '\'') ++at;
      text += list[at];
    }
  }
  return texts;
}

struct Flavour {
  std::string_view type;
  std::string_view condition;  // on the lines of that flavour alone
  std::string_view choice;
  std::string_view other;  // the choice that stands for the other flavour
};
constexpr std::array flavours{
    Flavour{"01", " (cVouType='01' and bFlag<>1) ", "01", "011"},
    Flavour{"01", " (cVouType='01' and bFlag=1) ", "011", "01"},
    Flavour{"30", " (cVouType='30' and bFlag<>1) ", "30", "301"},
    Flavour{"30", " (cVouType='30' and bFlag=1) ", "301", "30"},
    Flavour{"70", " (cVouType='70' and bFlag<>1) ", "70", "701"},
    Flavour{"70", " (cVouType='70' and bFlag=1) ", "701", "70"},
};

// What a choice of `chosen` must give, told from the meaning of the choices.
void checkVoucherTypes(const std::vector<std::string>& chosen, const std::string& condition) {
  const std::set<std::string, std::less<>> choices(chosen.begin(), chosen.end());
  if (choices.empty()) {
    require(condition.empty(), "without a choice there is no condition");
    return;
  }
  std::set<std::string, std::less<>> whole = choices;  // the types whose lines all count
  for (const Flavour& flavour : flavours) {
    const bool alone = choices.contains(flavour.choice) && !choices.contains(flavour.other);
    require((condition.find(flavour.condition) != std::string::npos) == alone,
            "a flavour has a condition of its own when the other one is not chosen");
    whole.erase(std::string(flavour.choice));
  }
  for (const std::string_view type : {"01", "30", "70"}) {
    if (choices.contains(type) && choices.contains(std::string(type) + "1")) whole.emplace(type);
  }
  for (const auto& [type, more] : {std::pair{"32", "3201"}, std::pair{"25", "2501"}, std::pair{"05", "06"}}) {
    if (choices.contains(type)) whole.emplace(more);
  }
  constexpr std::string_view open = " (base.cVouType in (";
  std::set<std::string, std::less<>> listed;
  if (condition.starts_with(open)) {
    std::string_view list = std::string_view(condition).substr(open.size());
    std::size_t end = 0;
    for (bool inText = false; end < list.size() && (inText || list[end] != ')'); ++end) {
      if (list[end] == '\'') inText = !inText;
    }
    const std::vector<std::string> texts = textsOf(list.substr(0, end));
    listed.insert(texts.begin(), texts.end());
  }
  require(listed == whole, "the list holds the types whose lines all count");
}

}  // namespace

void checkLists(std::string_view input) {
  const std::string list = quotedList(input);
  const std::vector<std::string> selections = selectionsOf(input);
  const std::string condition = fx_wt::voucherTypeCondition(list);
  // A quote in a selection stays as it is; what the list then is as SQL is the value's doing.
  if (input.find('\'') != std::string_view::npos) {
    require(std::ranges::count(list, '\'') == std::ranges::count(input, '\'') + 2 * std::ssize(selections),
            "each selection gets its two quotes, and no other");
    return;
  }
  require(textsOf(list) == selections, "the texts of the list are the selections");
  checkVoucherTypes(selections, condition);
}

}  // namespace quillon::fuzz

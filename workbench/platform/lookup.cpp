#include "workbench/platform/lookup.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

#include "frame/text.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/pinyin_initials.h"
#include "workbench/tsql/values/collation.h"
#include "workbench/tsql/values/text.h"

namespace quillon::workbench {

namespace {

constexpr std::array allLookups = {
    &warehouses,     &departments,  &inventories,     &inventoryClasses, &batches,           &costItemClasses,
    &costItems,      &customers,    &customerClasses, &vendors,          &vendorClasses,     &persons,
    &users,          &voucherTypes, &businessTypes,   &costCentres,      &receiptIssueTypes, &workCentres,
    &projectClasses, &projectItems, &ledgerAccounts,  &expenseTypes,     &expenseItems,      &units,
    &years,
};

std::string inLanguage(std::string sql, Language language) {
  constexpr std::string_view place = "{language}";
  const std::string_view locale = language == Language::chinese ? "zh-CN" : "en-US";
  for (auto at = sql.find(place); at != std::string::npos; at = sql.find(place, at))
    sql.replace(at, place.size(), locale);
  return sql;
}

// The lookup as a derived table; empty when it has no entries.
std::string rowsOf(const Lookup& lookup, Language language, Session& session) {
  const std::string sql =
      inLanguage(lookup.makeRows == nullptr ? std::string(lookup.rows) : lookup.makeRows(session), language);
  return sql.empty() ? sql : "(" + sql + ") entry";
}

// The same, as far as a dialog lets the entries be chosen.
std::string restrictedRows(const Lookup& lookup, const LookupQuery& query, Session& session) {
  const bool oneTable = !lookup.rows.empty() && lookup.rows.find(" Where ") == std::string_view::npos &&
                        lookup.rows.find(" Join ") == std::string_view::npos;
  if (query.restriction.empty() || !oneTable) return rowsOf(lookup, query.language, session);
  std::string condition = query.restriction;
  constexpr std::string_view mark = "#FN[";
  for (auto at = condition.find(mark); at != std::string::npos; at = condition.find(mark, at))
    condition.replace(at, mark.size(), "[");
  return "(" + std::string(lookup.rows) + " Where " + condition + ") entry";
}

std::vector<LookupRow> read(Session& session, const std::string& sql) {
  const std::unique_ptr<Recordset> rows = session.query(sql, readOnlyQuery);
  std::vector<LookupRow> read;
  for (; !rows->eof(); rows->moveNext())
    read.push_back({rows->text(0).value_or(""), rows->text(1).value_or("")});
  rows->close();
  return read;
}

// A character as it is compared: without letter case and width. A Chinese one has its initials besides.
struct Sign {
  std::uint32_t weight = 0;
  char32_t character = 0;
  // Blanks and signs do not count between the characters of a name: 离心泵（单级）has the initials lxbdj.
  bool counts = true;
};

using Signs = std::vector<Sign>;

bool isSign(char32_t character) {
  constexpr char32_t firstFullWidth = 0xff01, lastFullWidth = 0xff5e, apart = 0xfee0, asciiEnd = 0x80;
  if (character >= firstFullWidth && character <= lastFullWidth) character -= apart;
  if (character < asciiEnd) return !isDigit(static_cast<char>(character)) && (character | 0x20U) - U'a' >= 26;
  // General punctuation, and that of Chinese.
  return (character >= 0x2000 && character <= 0x206f) || (character >= 0x3000 && character <= 0x303f) ||
         character == 0xb7;
}

void addSigns(std::string_view text, Signs& signs) {
  for (std::size_t position = 0; position < text.size();) {
    const char32_t character = tsql::text::next(text, position);
    const bool known = character <= tsql::text::lastCharacter;
    signs.push_back({known ? tsql::characterWeight(character) : character, character, !known || !isSign(character)});
  }
}

bool hasInitial(const Sign& sign, const Sign& wanted) {
  char32_t letter = wanted.character | 0x20U;
  if (letter < U'a' || letter > U'z') return false;
  return pinyinInitials(sign.character).find(static_cast<char>(letter)) != std::string_view::npos;
}

// Whether `text` from `start` on has the word; `initials`: by the first letters of Chinese characters, too.
bool hasAt(const Signs& text, std::size_t start, const Signs& word, bool initials) {
  std::size_t at = start;
  for (const Sign& wanted : word) {
    const auto fits = [&wanted, initials](const Sign& sign) {
      return sign.weight == wanted.weight || (initials && hasInitial(sign, wanted));
    };
    while (initials && at > start && at < text.size() && !text[at].counts && !fits(text[at]))
      ++at;
    if (at == text.size() || !fits(text[at])) return false;
    ++at;
  }
  return true;
}

bool has(const Signs& text, const Signs& word, bool initials) {
  for (std::size_t start = 0; start < text.size(); ++start) {
    if (hasAt(text, start, word, initials)) return true;
  }
  return false;
}

std::vector<Signs> wordsOf(std::string_view search) {
  std::vector<Signs> words(1);
  for (std::size_t position = 0; position < search.size();) {
    const std::size_t begin = position;
    const char32_t character = tsql::text::next(search, position);
    constexpr char32_t wideBlank = 0x3000;
    if (character != U' ' && character != U'\t' && character != wideBlank) {
      addSigns(search.substr(begin, position - begin), words.back());
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

// Keeps the rows that have all words.
void keepFound(std::vector<LookupRow>& rows, const std::vector<Signs>& words) {
  Signs code, name;
  std::erase_if(rows, [&](const LookupRow& row) {
    code.clear();
    name.clear();
    addSigns(row.code, code);
    addSigns(row.name, name);
    return !std::ranges::all_of(
        words, [&code, &name](const Signs& word) { return has(code, word, false) || has(name, word, true); });
  });
}

std::string quotedPattern(std::string_view beginning) {
  std::string pattern;
  for (const char c : beginning) {
    if (c == '%' || c == '_' || c == '[') {
      pattern.append("[").append(1, c).append("]");
    } else {
      pattern += c;
    }
  }
  return quotedText(pattern + "%");
}

}  // namespace

std::span<const Lookup* const> lookups() {
  return allLookups;
}

const Lookup* lookupOf(std::string_view kind) {
  const auto found =
      std::ranges::find_if(allLookups, [kind](const Lookup* lookup) { return equalIgnoringCase(lookup->kind, kind); });
  return found == allLookups.end() ? nullptr : *found;
}

const Lookup* lookupOfLedgerColumn(std::string_view column) {
  static constexpr std::pair<std::string_view, const Lookup*> columns[] = {{"cWhCode", &warehouses},
                                                                           {"cDepCode", &departments},
                                                                           {"cAccDep", &departments},
                                                                           {"cInvCode", &inventories},
                                                                           {"cPspCode", &inventories},
                                                                           {"cBatchIA", &batches},
                                                                           {"cRdCode", &receiptIssueTypes},
                                                                           {"cVouType", &voucherTypes},
                                                                           {"cBusType", &businessTypes},
                                                                           {"cCusCode", &customers},
                                                                           {"cVenCode", &vendors},
                                                                           {"cPersonCode", &persons},
                                                                           {"cMaker", &users},
                                                                           {"cworkcentername", &workCentres},
                                                                           {"cItem_Class", &projectClasses},
                                                                           {"cItemCode", &projectItems},
                                                                           {"cOppHead", &ledgerAccounts}};
  const auto* const found =
      std::ranges::find_if(columns, [column](const auto& known) { return equalIgnoringCase(known.first, column); });
  return found == std::end(columns) ? nullptr : found->second;
}

std::string entryRows(const Lookup& lookup, Language language) {
  return inLanguage(std::string(lookup.rows), language);
}

LookupPage findEntries(const Lookup& lookup, const LookupQuery& query, Session& session) {
  LookupPage page;
  const std::string rows = restrictedRows(lookup, query, session);
  if (rows.empty()) return page;
  page.rows = read(session, "Select entryCode, entryName From " + rows + " Order By entryCode, entryName");
  if (const std::vector<Signs> words = wordsOf(query.search); !words.empty()) {
    keepFound(page.rows, words);
    std::stable_partition(page.rows.begin(), page.rows.end(), [&query](const LookupRow& row) {
      return tsql::equalText(row.code, query.search) || tsql::equalText(row.name, query.search);
    });
  }
  page.count = page.rows.size();
  const std::size_t first = std::min(query.offset, page.count);
  const std::size_t shown = std::min(query.limit.value_or(page.count), page.count - first);
  page.rows.erase(page.rows.begin(), page.rows.begin() + static_cast<std::ptrdiff_t>(first));
  page.rows.resize(shown);
  return page;
}

bool hasCode(const Lookup& lookup, std::string_view code, bool beginning, Session& session) {
  const std::string rows = rowsOf(lookup, Language::chinese, session);
  if (rows.empty()) return false;
  const std::string condition = beginning ? "Like " + quotedPattern(code) : "= " + quotedText(code);
  return lookUp(session, "Select Top 1 entryCode From " + rows + " Where entryCode " + condition).has_value();
}

std::vector<LookupRow> entriesNamed(const Lookup& lookup, std::string_view name, Language language, Session& session) {
  const std::string rows = rowsOf(lookup, language, session);
  if (rows.empty()) return {};
  return read(session, "Select Distinct entryCode, entryName From " + rows + " Where entryName = " + quotedText(name) +
                           " Order By entryCode");
}

std::string entryText(const LookupRow& row) {
  return row.name.empty() || row.name == row.code ? row.code : row.code + " " + row.name;
}

std::string projectItemRows(Session& session) {
  std::string sql;
  for (const LookupRow& row :
       read(session, "Select cTable, cItem_Class From fItem Where cTable <> N'' Order By cItem_Class")) {
    if (!sql.empty()) sql += " Union ";
    // Class "ch" is the inventory itself.
    if (equalIgnoringCase(row.name, "ch")) {
      sql += inventories.rows;
      continue;
    }
    sql += "Select cItemCode As entryCode, cItemName As entryName From [";
    for (const char c : row.code)
      sql.append(c == ']' ? 2 : 1, c);
    sql += "]";
  }
  return sql;
}

}  // namespace quillon::workbench

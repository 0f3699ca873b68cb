#include "workbench/presentation/run_fingerprint.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "frame/text.h"
#include "workbench/messages/common.h"
#include "workbench/messages/keeping.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/fingerprint_cells.h"
#include "workbench/presentation/sha256.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

namespace {

using Json = nlohmann::ordered_json;

constexpr int formatVersion = 1;

Json itemOf(const FingerprintItem& item) {
  Json written = {{"name", item.name}, {"value", item.value}};
  if (!item.value2.empty()) written["value2"] = item.value2;
  if (!item.sql.empty()) written["sql"] = item.sql;
  if (item.range) written["range"] = true;
  if (item.multiple) written["multi"] = true;
  return written;
}

FingerprintItem itemFrom(const Json& written) {
  return {.name = written.at("name"),
          .value = written.at("value"),
          .value2 = written.value("value2", ""),
          .sql = written.value("sql", ""),
          .range = written.value("range", false),
          .multiple = written.value("multi", false)};
}

// Values as a reader separates them.
std::string readable(std::string value) {
  for (std::size_t at = value.find('\t'); at != std::string::npos; at = value.find('\t', at))
    value.replace(at, 1, ", ");
  return value;
}

std::string itemText(const FingerprintItem& item) {
  std::string text = item.name + "=" + readable(item.sql.empty() ? item.value : item.sql);
  if (item.sql.empty() && !item.value2.empty()) text += ".." + item.value2;
  return text;
}

}  // namespace

std::string canonicalText(const RunFingerprint& fingerprint) {
  Json filter = Json::array();
  for (const FingerprintItem& item : fingerprint.filter)
    filter.push_back(itemOf(item));
  Json sums = Json::array();
  for (const FingerprintSum& sum : fingerprint.sums)
    sums.push_back(Json::array({sum.name, sum.value}));
  const Json document = {{"version", formatVersion},
                         {"account", {{"code", fingerprint.accountCode}, {"name", fingerprint.accountName}}},
                         {"report", fingerprint.report},
                         {"date", fingerprint.date},
                         {"filter", std::move(filter)},
                         {"rows", fingerprint.rows},
                         {"sums", std::move(sums)}};
  return document.dump(-1, ' ', true, Json::error_handler_t::replace);
}

RunFingerprint parseFingerprint(std::string_view text) {
  try {
    const Json document = Json::parse(text);
    if (document.at("version") != formatVersion) throw InputError(messages::otherFingerprint());
    RunFingerprint fingerprint{.accountCode = document.at("account").at("code"),
                               .accountName = document.at("account").at("name"),
                               .report = document.at("report"),
                               .date = document.at("date"),
                               .filter = {},
                               .rows = document.at("rows"),
                               .sums = {}};
    for (const Json& item : document.at("filter"))
      fingerprint.filter.push_back(itemFrom(item));
    for (const Json& sum : document.at("sums"))
      fingerprint.sums.push_back({.name = sum.at(0), .value = sum.at(1)});
    return fingerprint;
  } catch (const Json::exception&) {
    throw InputError(messages::otherFingerprint());
  }
}

std::string fingerprintDigest(std::string_view canonicalText) {
  constexpr std::size_t groups = 4, lengthOfGroup = 4;
  const std::string digits = sha256Hexadecimal(canonicalText);
  std::string text;
  for (std::size_t i = 0; i < groups * lengthOfGroup; ++i) {
    if (i > 0 && i % lengthOfGroup == 0) text += ' ';
    const char digit = digits[i];
    text += digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  }
  return text;
}

Message accountOf(const RunFingerprint& fingerprint) {
  return messages::named(fingerprint.accountCode, fingerprint.accountName);
}

std::vector<FingerprintFact> factsOf(const RunFingerprint& fingerprint, Language language) {
  const auto caption = [language](const Text<0>& text) { return std::string(text.in(language)); };
  std::vector<FingerprintFact> facts = {
      {caption(messages::fingerprintCaption), fingerprintDigest(canonicalText(fingerprint))},
      {caption(messages::fingerprintAccount), accountOf(fingerprint).in(language)},
      {caption(messages::fingerprintReport), fingerprint.report},
      {caption(messages::fingerprintDate), fingerprint.date},
      {caption(messages::fingerprintRows), groupedCount(fingerprint.rows)}};
  std::string filter;
  for (const FingerprintItem& item : fingerprint.filter)
    filter.append(filter.empty() ? "" : "; ").append(itemText(item));
  facts.push_back({caption(messages::fingerprintFilter), filter});
  std::string sums;
  for (const FingerprintSum& sum : fingerprint.sums) {
    const std::string& name = sum.caption.empty() ? sum.name : sum.caption.in(language);
    sums.append(sums.empty() ? "" : "; ").append(name).append(" ").append(sum.value);
  }
  facts.push_back({caption(messages::fingerprintSums), sums});
  return facts;
}

std::string withoutEndingZeros(std::string exact) {
  if (exact.find('.') == std::string::npos) return exact;
  exact.erase(exact.find_last_not_of('0') + 1);
  if (exact.ends_with('.')) exact.pop_back();
  return exact == "-0" ? "0" : exact;
}

std::vector<std::string> fingerprintCells(const RunFingerprint& fingerprint) {
  const std::string text = canonicalText(fingerprint);
  std::string digest = fingerprintDigest(text);
  std::erase(digest, ' ');
  const std::size_t count = (text.size() + cellPartLength - 1) / cellPartLength;
  std::vector<std::string> cells;
  for (std::size_t part = 0; part < count; ++part) {
    cells.push_back(std::string(cellMark) + digest + " " + std::to_string(part + 1) + "/" + std::to_string(count) +
                    " " + text.substr(part * cellPartLength, cellPartLength));
  }
  return cells;
}

}  // namespace quillon::workbench

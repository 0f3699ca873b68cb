// The fingerprint of a report run: what was run on which account, with which filter, and what came of it, as its row count
// and exact sums. It does not depend on how the result is shown. Pages and workbooks carry it, so that an account can be
// asked later whether it still gives the same.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/language.h"
#include "workbench/messages/message.h"

namespace quillon::workbench {

// An item of the filter that has a value.
struct FingerprintItem {
  std::string name;
  std::string value = {};  // several values with TABs between them, sorted
  std::string value2 = {};
  std::string sql = {};
  bool range = false;
  bool multiple = false;

  friend bool operator==(const FingerprintItem&, const FingerprintItem&) = default;
};

struct FingerprintSum {
  std::string name;      // the column of the result table; "iMoney/2" is that of the rows of a state
  std::string value;     // exact, without zeros at the end of its decimals
  Message caption = {};  // for a reader; no part of the fingerprint
};

struct RunFingerprint {
  std::string accountCode = {};
  std::string accountName = {};  // of the account's file or database
  std::string report = {};       // "sfc-item"
  std::string date = {};         // the login's, yyyy-mm-dd
  std::vector<FingerprintItem> filter = {};
  std::int64_t rows = 0;
  std::vector<FingerprintSum> sums = {};
};

// The whole fingerprint as one line of JSON in ASCII; the same run gives the same text.
std::string canonicalText(const RunFingerprint& fingerprint);
// What canonicalText() gave. Throws std::invalid_argument for any other text.
RunFingerprint parseFingerprint(std::string_view text);

// The digest of a canonical text, "3F2A 91BC 02DE 77F1".
std::string fingerprintDigest(std::string_view canonicalText);

// "001 (march.account)".
Message accountOf(const RunFingerprint& fingerprint);

struct FingerprintFact {
  std::string caption;
  std::string text;
};
// What a reader sees of it, the digest first.
std::vector<FingerprintFact> factsOf(const RunFingerprint& fingerprint, Language language);

// `exact` without zeros at the end of its decimals: "12.5" of "12.500".
std::string withoutEndingZeros(std::string exact);

// What stands before the canonical text in a page: the name of an attribute.
inline constexpr std::string_view fingerprintAttribute = "data-quillon-fingerprint";
// The texts that cells of a workbook hold it in, each one short enough for a cell.
std::vector<std::string> fingerprintCells(const RunFingerprint& fingerprint);

}  // namespace quillon::workbench

// Fingerprints as texts: written, read back, split over cells.
#include "workbench/presentation/run_fingerprint.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace quillon::workbench {
namespace {

TEST(RunFingerprint, IsSplitOverCellsWhenItIsLong) {
  RunFingerprint fingerprint{.accountCode = "001", .report = "sfc-item"};
  std::string value;
  for (int i = 0; i < 9000; ++i)
    value += (i > 0 ? "\t" : "") + std::to_string(100000 + i);
  fingerprint.filter.push_back({.name = "cInvCode", .value = value, .multiple = true});
  const std::vector<std::string> cells = fingerprintCells(fingerprint);
  EXPECT_GT(cells.size(), 1u);
  for (const std::string& cell : cells)
    EXPECT_LE(cell.size(), 32767u);
}

TEST(RunFingerprint, ReadsItsOwnText) {
  const RunFingerprint fingerprint{
      .accountCode = "001",
      .accountName = "账套.account",
      .report = "fx-wt",
      .date = "2024-12-31",
      .filter = {{.name = "cFree1", .value = "_x0041_\"<红>", .value2 = "b", .range = true}},
      .rows = 7,
      .sums = {{.name = "iMoney", .value = "-0.01"}}};
  const std::string text = canonicalText(fingerprint);
  EXPECT_EQ(canonicalText(parseFingerprint(text)), text);
  EXPECT_THROW(parseFingerprint("{}"), std::invalid_argument);
  EXPECT_THROW(parseFingerprint(R"({"version": 2})"), std::invalid_argument);
}

TEST(RunFingerprint, HasNoZerosAtTheEnd) {
  EXPECT_EQ(withoutEndingZeros("12.500"), "12.5");
  EXPECT_EQ(withoutEndingZeros("100"), "100");
  EXPECT_EQ(withoutEndingZeros("-0.00"), "0");
}

TEST(RunFingerprint, TellsAReaderWhatWasRun) {
  const RunFingerprint fingerprint{.accountCode = "001",
                                   .accountName = "a.account",
                                   .report = "outsum-item",
                                   .date = "2024-12-31",
                                   .filter = {{.name = "cWhCode", .value = "01\t03", .multiple = true},
                                              {.name = "dKeepDate", .value = "2024-01-01", .value2 = "2024-01-31"}},
                                   .rows = 1234,
                                   .sums = {{.name = "iMoney", .value = "12.5"}}};
  std::string text;
  for (const FingerprintFact& fact : factsOf(fingerprint, Language::english))
    text += fact.caption + ": " + fact.text + "\n";
  EXPECT_EQ(text, "Fingerprint: " + fingerprintDigest(canonicalText(fingerprint)) +
                      "\nAccount: 001 (a.account)\nReport: outsum-item\nLogin date: 2024-12-31\nRows: 1,234\n"
                      "Filter: cWhCode=01, 03; dKeepDate=2024-01-01..2024-01-31\nSums: iMoney 12.5\n");
  EXPECT_EQ(fingerprintDigest("abc"), "BA78 16BF 8F01 CFEA");
}

}  // namespace
}  // namespace quillon::workbench

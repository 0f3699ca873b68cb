// An account of a few dozen ledger lines in a file of its own, and what is done with it in long use: reports, their
// dialogs, documents. Accounts of different seeds give different rows, so that one thread's rows cannot pass for
// another's.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/workbench/platform/temporary_file.h"

namespace quillon::long_life {

// One use of the account: a report, with or without its dialog, or the document behind a row of a report.
struct Use {
  enum class Kind { report, reportWithDialog, document };

  Kind kind = Kind::report;
  std::string report = {};
  std::vector<std::string> settings = {};
};

class SmallAccount {
 public:
  explicit SmallAccount(std::uint64_t seed);

  // All four reports in every mode, each with and without its dialog, and a document behind a row.
  std::vector<Use> uses() const;
  // Gives the result table's rows as text, or the document as JSON, and drops the result table. Throws std::exception.
  std::string resultOf(const Use& use) const;

 private:
  // The one value that a query on the account gives.
  std::string value(const std::string& sql) const;

  workbench::test::TemporaryFile file_{".account"};
  std::string inventory_;    // the one with most ledger lines
  std::string voucherType_;  // the one with most lines
};

// The number in the environment's variable `name`, `otherwise` when it is not set. Throws std::invalid_argument when it
// is no number.
int numberFromEnvironment(const char* name, int otherwise);

}  // namespace quillon::long_life

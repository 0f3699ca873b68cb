// The workbench's resource file: the texts that reports and dialogs fetch by key, in both languages.
#pragma once

#include <string>
#include <string_view>

#include "workbench/platform/language.h"

namespace quillon::workbench {

// The keys of the state texts of receipt/issue/balance.
inline constexpr std::string_view openingBalanceKey = "Mirel.IA.CHHSSQL.00182";
inline constexpr std::string_view receiptKey = "Mirel.IA.Mirel71.00269";
inline constexpr std::string_view issueKey = "Mirel.IA.Mirel71.00270";
inline constexpr std::string_view closingBalanceKey = "Mirel.IA.Mirel71.00271";

// Digests of the detail ledger's opening balances and, behind the month's number, of its month balances.
inline constexpr std::string_view openingDigestKey = "Mirel.IA.CHHSSQL.05360";
inline constexpr std::string_view monthDigestKey = "Mirel.IA.Mirel71.00298";

// The text of `key`; the key itself when there is none, so that a missing text is seen and found.
std::string resourceText(std::string_view key, Language language);

}  // namespace quillon::workbench

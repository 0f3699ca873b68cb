// What a detail ledger of a sample account can be asked for.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

// The filter of a detail ledger: an inventory that is kept neither by batch nor by free items, with many lines.
inline std::vector<std::string> oneInventory(const std::filesystem::path& file) {
  const auto account = tsql::Connection::open(file, tsql::OpenMode::readOnly);
  std::string plain = "item.bCheckBatch = 0";
  for (int i = 1; i <= 10; ++i)
    plain += " And item.bCheckFree" + std::to_string(i) + " = 0";
  const auto rows = account->query(
      "Select Top 1 line.cInvCode, line.cWhCode From ia_subsidiary line Inner Join Inventory item On item.cInvCode = "
      "line.cInvCode Where line.iMonth > 0 And " +
      plain + " Group By line.cInvCode, line.cWhCode Order By Count(*) Desc, line.cInvCode, line.cWhCode");
  EXPECT_TRUE(rows->next());
  return {"cInvCode=" + tsql::toText(rows->value(0)).value(), "cWhCode=" + tsql::toText(rows->value(1)).value()};
}

}  // namespace quillon::workbench::test

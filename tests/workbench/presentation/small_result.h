// A small result table in memory, as the receipt/issue/balance report leaves one, with the columns that the tests look
// at.
#pragma once

#include <memory>
#include <string>

#include "workbench/catalogue/catalogue.h"
#include "workbench/presentation/report_document.h"
#include "workbench/presentation/result_table.h"
#include "workbench/tsql/engine/engine.h"

namespace quillon::workbench::test {

inline std::unique_ptr<tsql::Connection> accountWithResult() {
  auto account = tsql::Connection::openInMemory();
  account->execute(
      "Create Table Result (autoid int, cWhCode nvarchar(10), cWhName nvarchar(60), cInvCode nvarchar(20), cInvName "
      "nvarchar(60), cFree1 nvarchar(20), cFree2 nvarchar(20), dKeepDate datetime, cFXCode nvarchar(20), cFXName "
      "nvarchar(60), cState nvarchar(40), iState int, iQuantity decimal(18,6), iMoney money, iQcQuantity "
      "decimal(18,6), "
      "iQcMoney money, iInQuantity decimal(18,6), iInMoney money, iOutQuantity decimal(18,6), iOutMoney money, "
      "iQmQuantity decimal(18,6), iQmMoney money, cFSType nvarchar(10))");
  return account;
}

// Cost items 01 (material) and 02 (labour): 01 opens with 100, receives 50.5, issues 30.25; 02 receives 1000000.
inline void fillResult(tsql::Connection& account) {
  account.execute(
      "Insert Into Result Values "
      "(1, N'1', N'原料库', N'0101', N'螺栓, \"M8\" <1&2>', N'红', N'', Null, N'01', N'材料', N'期初结存', 1, 10, 100, "
      "10, 100, 0, 0, 0, 0, 10, 100, N'0'), "
      "(2, N'1', N'原料库', N'0101', N'螺栓', N'', N'', '2024-03-05', N'01', N'材料', N'收入', 2, 5.125, 50.5, "
      "0, 0, 5.125, 50.5, 0, 0, 5.125, 50.5, N'0'), "
      "(3, N'1', N'原料库', N'0101', N'螺栓', Null, N'', '2024-03-06 08:30:00', N'01', N'材料', N'发出', 3, 3, 30.25, "
      "0, 0, 0, 0, 3, 30.25, -3, -30.25, N'0'), "
      "(1, N'1', N'原料库', N'0101', N'螺栓', N'', N'', Null, N'01', N'材料', N'期末结存', 4, 12.125, 120.25, "
      "0, 0, 0, 0, 0, 0, 0, 0, N'0'), "
      "(4, N'2', N'成品库', N'0201', N'电机', N'', N'', '2024-04-01', N'02', N'人工', N'收入', 2, 1, 1000000, "
      "0, 0, 1, 1000000, 0, 0, 1, 1000000, N'0'), "
      "(4, N'2', N'成品库', N'0201', N'电机', N'', N'', Null, N'02', N'人工', N'期末结存', 4, 1, 1000000, "
      "0, 0, 0, 0, 0, 0, 0, 0, N'0')");
}

inline ReportDocument documentOf(const ResultTable& table, Language language) {
  ReportDocument document;
  document.language = language;
  document.report = "sfc-item";
  document.title = language == Language::chinese ? "收发存" : "Receipt/issue/balance";
  document.conditions = {{language == Language::chinese ? "会计年度" : "Year", "2024"}};
  document.rowCount = table.rowCount();
  return document;
}

}  // namespace quillon::workbench::test

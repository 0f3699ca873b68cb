// Messages about accounts: making, taking elsewhere and back, comparing, checking and cleaning them.
#pragma once

#include "workbench/messages/message.h"

namespace quillon::workbench::messages {

// --- Files and folders of accounts ------------------------------------------------------------------------------------

inline constexpr Text<1> missingTable{
    "这不是账套：缺少表 {1}；请用以下命令新建：quillon account new FILE",
    "this is no account: the table {1} is missing; make one with: quillon account new FILE"};
inline constexpr Text<1> existsAlready{"{1} 已存在；请换一个名称，或先删除该文件",
                                       "{1} exists already; choose another name or delete the file first"};
inline constexpr Text<1> folderHoldsFiles{"{1} 中已有文件；请换一个文件夹，或先清空",
                                          "{1} holds files already; choose another folder or empty it first"};
inline constexpr Text<2> cannotWriteFolder{"无法写入文件夹 {1}：{2}", "cannot write to the folder {1}: {2}"};
inline constexpr Text<1> noExportFolder{
    "无法读取 {1}：没有此文件夹；请指定 quillon account export 写出的文件夹",
    "cannot read {1}: there is no such folder; name one that quillon account export wrote"};
inline constexpr Text<1> cannotReadOfFolder{"无法读取 {1}；文件夹中必须有此文件，并且可读",
                                            "cannot read {1}; the folder must have it, and it must be readable"};
inline constexpr Text<2> noScratchFolder{
    "无法在 {1} 中为本次运行的表建立文件夹；请检查该文件夹，或在 {2} 中另行指定",
    "cannot make a folder for this run's tables in {1}; check that folder, or name another one in {2}"};
inline constexpr Text<0> temporaryFolder{"临时文件夹", "the folder for temporary files"};

// --- schema.sql and the CSV files -------------------------------------------------------------------------------------

inline constexpr Text<2> schemaLacksTable{"{1} 不能建成账套：缺少表 {2}；请加上它的 Create Table",
                                          "{1} makes no account: the table {2} is missing; add its Create Table"};
inline constexpr Text<1> fileOfNoTable{
    "{1} 不属于 schema.sql 中的任何表；请在其中加上该表，或移走此文件",
    "{1} belongs to no table of schema.sql; add the table there or take the file away"};
inline constexpr Text<0> otherStatement{
    "此处只能有 Create Table、Index、View 和 Function；请去掉这条语句",
    "only Create Table, Index, View and Function stand here; take this statement out"};
inline constexpr Text<1> correctStatement{"{1} 请改正这条语句", "{1} Correct the statement"};
inline constexpr Text<1> scriptCannotMake{
    "脚本无法建立 {1}：服务器只能在视图或函数所在的数据库中建立它；请先删除它",
    "a script cannot make {1}: a server makes a view or function from within its database only; drop it first"};
inline constexpr Text<1> scriptAccountId{
    "账套号最多 {1} 个字符，不能含控制字符；请改正 --account-id",
    "an account id has at most {1} characters and none that controls; correct --account-id"};
inline constexpr Text<0> emptyCsvFile{"文件是空的；请以表的列名开头",
                                      "the file is empty; begin it with the names of the table's columns"};
inline constexpr Text<1> csvUnknownColumn{"表中没有列 {1}；请改正名称，或在 schema.sql 中加上它",
                                          "the table has no column {1}; correct the name, or add it in schema.sql"};
inline constexpr Text<1> csvColumnTwice{"列 {1} 在这里出现两次；请只留一个",
                                        "the column {1} stands here twice; leave one"};
inline constexpr Text<1> csvColumnMissing{"缺少列 {1}；请加上，没有值时留空",
                                          "the column {1} is missing; add it, empty where it has no value"};
inline constexpr Text<1> csvLineTooShort{"行在此列之前就结束了；请写满 {1} 个值，NULL 留空",
                                         "the line ends before this column; give it {1} values, empty ones for NULL"};
inline constexpr Text<1> csvLineTooLong{
    "行在 {1} 个值之后还有内容；含逗号的值请加引号",
    "the line goes on behind its {1} values; put a value that holds a comma in quotes"};
inline constexpr Text<0> csvValueNeeded{"此列必须有值；请写一个，空文本写 \"\"",
                                        "the column must have a value; write one, or \"\" for an empty text"};
inline constexpr Text<1> csvKeyTwice{"已有一行的键为 {1}；请只留一行",
                                     "another row has the key {1} already; leave one of them"};
inline constexpr Text<0> csvQuoteWithin{
    "值中有引号；请给值加引号，并将其中的引号写两次",
    "a quote within a value; put the value in quotes and double the quotes within it"};
inline constexpr Text<0> csvQuoteOpen{"此值的引号没有结束；请补上",
                                      "the quote that opens this value is not closed; close it"};
inline constexpr Text<0> csvCarriageReturn{
    "回车后没有换行；行尾两者都要写，含回车的值请加引号",
    "a carriage return without a line feed; end lines with both, and put a value that holds one in quotes"};
inline constexpr Text<0> csvTextBehindQuote{"结束引号后还有文本；值中的引号请写两次",
                                            "text behind the closing quote; double the quotes within a value"};

// --- Values -----------------------------------------------------------------------------------------------------------

inline constexpr Text<3> valueOfOtherType{"{1} 不是 {2}；{3}", "{1} is no {2}; {3}"};
inline constexpr Text<0> leaveQuotesOut{"没有值时请不要写引号", "leave the quotes out when there is no value"};
inline constexpr Text<0> writeBit{"请写 0 或 1", "write 0 or 1"};
inline constexpr Text<0> writeWholeNumber{"只能写数字，负数前加减号",
                                          "write digits only, with a minus in front of a negative number"};
inline constexpr Text<0> writeDecimal{
    "请写数字，小数前加点，千位之间不加任何符号",
    "write digits with a point before the decimals and nothing between the thousands"};
inline constexpr Text<0> writeFloat{"请写数字，小数前加点，或写成 1.5e-10",
                                    "write digits with a point before the decimals, or 1.5e-10"};
inline constexpr Text<0> writeDate{"请写成 2024-03-05 或 2024-03-05 13:14:15.457",
                                   "write it as 2024-03-05 or 2024-03-05 13:14:15.457"};
inline constexpr Text<2> valueOutOfRange{"{1} 超出 {2} 的范围；请改正数字",
                                         "{1} is out of the range of {2}; correct the number"};
inline constexpr Text<3> tooManyDecimals{"{1} 的小数位多于 {2}；请舍入到 {3} 位",
                                         "{1} has more decimals than {2}; round it to {3}"};
inline constexpr Text<1> dayOutOfRange{"{1} 不是 1753-01-01 至 9999-12-31 之间的日期；请改正",
                                       "{1} is no day between 1753-01-01 and 9999-12-31; correct the date"};
inline constexpr Text<3> textTooLong{
    "文本有 {1} 个字符，而 {2} 只能容纳 {3} 个；请缩短，或在 schema.sql 中加宽此列",
    "the text has {1} characters and {2} takes {3}; shorten it or widen the column in schema.sql"};
inline constexpr Text<0> textNotUtf8{"文本不是 UTF-8；请用此编码保存文件",
                                     "the text is not UTF-8; save the file in that encoding"};

// --- The sample -------------------------------------------------------------------------------------------------------

inline constexpr Text<2> sampleYears{"示例账套有 1 至 {1} 年，而不是 {2} 年",
                                     "a sample account has 1 to {1} years, not {2}"};
inline constexpr Text<4> sampleRows{"{1} 年的示例账套有 {2} 至 {3} 条明细账记录，而不是 {4} 条",
                                    "a sample account of {1} years has {2} to {3} ledger lines, not {4}"};
inline constexpr Text<1> sampleCostItemMonth{"成本分项从 1 至 12 月中的一个月开始，而不是 {1} 月",
                                             "cost items start in month 1 to 12, not {1}"};
inline constexpr Text<2> sampleStartMonth{
    "存货核算从 1 至 {1} 月中的一个月开始（{1} 月开始成本分项），而不是 {2} 月",
    "inventory accounting starts in month 1 to {1}, the month in which the cost items start, not {2}"};
inline constexpr Text<2> sampleProgress{"明细账记录 {1} / {2}", "{1} of {2} ledger lines"};
inline constexpr Text<2> sampleMade{"已建立 {1}，有明细账记录 {2} 条", "made {1} with {2} ledger lines"};

// --- quillon account info, clean, check -------------------------------------------------------------------------------

inline constexpr Text<4> accountLine{
    "账套 {1}，存货核算启用于 {2}，核算方式 {3}，当前年度 {4}",
    "account {1}, inventory accounting since {2}, valuation method {3}, current year {4}"};
inline constexpr Text<0> yearHeading{"年度", "year"};
inline constexpr Text<0> costItemsHeading{"成本分项启用月", "cost items from month"};
inline constexpr Text<0> settledHeading{"已结账月", "settled months"};
inline constexpr Text<0> ledgerLinesHeading{"明细账记录", "ledger lines"};
inline constexpr Text<0> tableHeading{"表", "table"};
inline constexpr Text<0> rowsHeading{"行数", "rows"};
inline constexpr Text<0> keyHeading{"键", "key"};
inline constexpr Text<0> reportsHeading{"报表", "reports"};
inline constexpr Text<0> leftoverTables{"报表的表（quillon account clean 可删除）：",
                                        "tables of reports (quillon account clean drops them):"};
inline constexpr Text<2> tableOfAge{"{1}，建于 {2}前", "{1}, made {2} ago"};
inline constexpr Text<0> oneDay{"1 天", "1 day"};
inline constexpr Text<1> days{"{1} 天", "{1} days"};
inline constexpr Text<0> oneHour{"1 小时", "1 hour"};
inline constexpr Text<1> hours{"{1} 小时", "{1} hours"};
inline constexpr Text<0> oneMinute{"1 分钟", "1 minute"};
inline constexpr Text<1> minutes{"{1} 分钟", "{1} minutes"};
inline constexpr Text<2> someDropped{"{2} 个表中已删除 {1} 个", "{1} of {2} tables are dropped"};
inline constexpr Text<1> kept{"已保留 {1}；可能正在使用或仍需要：--yes 也会删除它",
                              "kept {1}; it may be in use or wanted: --yes drops it, too"};
inline constexpr Text<1> dropped{"已删除 {1}", "dropped {1}"};
inline constexpr Text<1> dropQuestion{"删除 {1}？", "drop {1}?"};
inline constexpr Text<0> nothingLeft{"没有报表留下的表", "no tables of reports were left"};
inline constexpr Text<0> keysUnique{"报表连接所用的每个键都只有一行",
                                    "every key by which the reports join has one row"};
inline constexpr Text<0> keysBroken{
    "对于以此为键的明细账记录，这些报表按其行数重复计算；请每个键只留一行。",
    "These reports count a ledger line that names such a key once for each of its rows; leave one row a key."};
inline constexpr Text<2> workCentreAndDepartment{"同一批出库的工作中心 {1} 和部门 {2}",
                                                 "work centre {1} and department {2} of the same issues"};
inline constexpr Text<2> classesOfGrade{"第 {1} 级分类，位于 cFxCCode = {2} 的开头",
                                        "classes of grade {1} at the beginning of cFxCCode = {2}"};
inline constexpr Text<0> integrityOfFiles{
    "--integrity 只用于账套文件；服务器用 DBCC CHECKDB 检查自己的数据",
    "--integrity is for account files; a server checks its own with DBCC CHECKDB"};
inline constexpr Text<0> fileSound{"账套文件完好", "the account file is sound"};
inline constexpr Text<0> fileDamaged{
    "账套文件已损坏：请恢复备份，或用 `quillon account export` 保存仍能读出的内容。",
    "The account file is damaged: go back to a copy, or save with `quillon account export` what can still be read."};

// --- quillon account export, import, script, diff ---------------------------------------------------------------------

inline constexpr Text<2> transferCounts{"{1} 个表，{2} 行", "{1} tables with {2} rows"};
inline constexpr Text<1> rowsDone{"已处理 {1} 行", "{1} rows"};
inline constexpr Text<2> aSecond{"{1}，每秒 {2}", "{1}, {2} a second"};
inline constexpr Text<0> makingIndexes{"正在建立索引", "Making the indexes"};
inline constexpr Text<2> wroteTo{"已写出 {1} 到 {2}", "wrote {1} to {2}"};
inline constexpr Text<2> madeWith{"已建立 {1}：{2}", "made {1}: {2}"};
inline constexpr Text<0> scriptNotWritten{"脚本无法写到标准输出", "the script could not be written to standard output"};
inline constexpr Text<1> secondLacksColumn{"第二个账套没有列 {1}", "the second account has no column {1}"};
inline constexpr Text<1> firstLacksColumn{"第一个账套没有列 {1}", "the first account has no column {1}"};
inline constexpr Text<3> otherType{"列 {1} 在第一个账套中是 {2}，在第二个中是 {3}",
                                   "column {1} is {2} in the first account and {3} in the second"};
inline constexpr Text<0> firstLacksTable{"第一个账套没有此表", "the first account has no such table"};
inline constexpr Text<0> secondLacksTable{"第二个账套没有此表", "the second account has no such table"};
inline constexpr Text<4> tableDifference{"{1}：仅在第一个中 {2} 行，仅在第二个中 {3} 行，已改变 {4} 行",
                                         "{1}: {2} only in the first, {3} only in the second, {4} changed"};
inline constexpr Text<0> onlyInFirst{"仅在第一个中：", "only in the first: "};
inline constexpr Text<0> onlyInSecond{"仅在第二个中：", "only in the second: "};
inline constexpr Text<1> moreDifferences{"另有 {1} 处", "and {1} more"};
inline constexpr Text<0> noAccounts{"两个来源都没有账套的表；请指定两个账套",
                                    "neither source has a table of an account; name two accounts"};
inline constexpr Text<2> equalAccounts{"相同：{1} 个表，{2} 行", "equal: {1} tables, {2} rows"};
inline constexpr Text<2> differentAccounts{"不同：{2} 个表中有 {1} 个", "different: {1} of {2} tables"};

// --- Naming an account ------------------------------------------------------------------------------------------------

inline constexpr Text<0> fileWanted{
    "此处不能用数据库服务器的连接字符串；请指定账套文件（用 \"quillon account new FILE\" 建立）",
    "a connection string to a database server cannot be used here; name an account file (made with \"quillon account new FILE\")"};
inline constexpr Text<1> noAccountFile{"无法打开账套文件“{1}”：没有此文件",
                                       "Unable to open the account file '{1}': there is no such file."};
inline constexpr Text<0> noAccountNamed{"没有指定账套；请指定账套文件", "no account is named; name an account file"};
inline constexpr Text<0> noDriverNamed{
    "连接字符串没有指定 ODBC 驱动程序；请写 Driver={ODBC Driver 17 for SQL Server};Server=...;Database=...;UID=...;PWD=...，或 DSN=...",
    "the connection string names no ODBC driver; write Driver={ODBC Driver 17 for SQL Server};Server=...;Database=...;UID=...;PWD=..., or DSN=..."};
inline constexpr Text<3> noSuchYear{"账套没有年度“{1}”；其年度为 {2} 至 {3}",
                                    "the account has no year \"{1}\"; its years are {2} to {3}"};

// --- Database servers -------------------------------------------------------------------------------------------------

inline constexpr Text<2> cannotConnect{"无法连接数据库服务器：{1}；{2}",
                                       "cannot connect to the database server: {1}; {2}"};
inline constexpr Text<0> noDriverManager{
    "无法连接数据库服务器：本机的 ODBC 驱动程序管理器不能工作",
    "cannot connect to the database server: ODBC's driver manager does not work on this machine"};
inline constexpr Text<1> connectionLost{
    "与数据库服务器的连接已断开：{1}；服务器可用后请重新运行",
    "the connection to the database server is lost: {1}; run it again when the server can be reached"};
inline constexpr Text<0> driverSilent{"ODBC 驱动程序失败，没有说明原因", "the ODBC driver failed and did not say why"};
inline constexpr Text<1> checkDriver{
    "请检查驱动程序（Driver=）或数据源（DSN=）的名称，以及驱动程序是否已安装（{1}）",
    "check the driver's name (Driver=) or the data source's (DSN=), and that the driver is installed ({1})"};
inline constexpr Text<0> driversOnWindows{"32 位 Windows 的 ODBC 管理器列出两者",
                                          "the ODBC administrator of 32-bit Windows lists both"};
inline constexpr Text<0> driversElsewhere{"\"odbcinst -q -d\" 和 \"odbcinst -q -s\" 列出两者",
                                          "\"odbcinst -q -d\" and \"odbcinst -q -s\" list both"};
inline constexpr Text<0> checkPassword{"请检查用户和密码（UID=、PWD=）",
                                       "check the user and the password (UID=, PWD=)"};
inline constexpr Text<0> checkServer{"请检查 Server= 和端口，以及服务器是否运行且可以访问",
                                     "check Server= and its port, and that the server runs and can be reached"};
inline constexpr Text<0> checkConnectionString{"请检查连接字符串", "check the connection string"};

}  // namespace quillon::workbench::messages

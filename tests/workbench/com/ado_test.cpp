#include "workbench/com/ado.h"

#include "tests/workbench/com/ado_fixture.h"

namespace quillon::workbench {
namespace {

using automation::LateBound;
using automation::Variant;
using test::AdoTest;

constexpr HResult closedError = static_cast<HResult>(0x800A0E78U);
constexpr HResult openError = static_cast<HResult>(0x800A0E79U);
constexpr HResult noConnectionError = static_cast<HResult>(0x800A0E7DU);
constexpr HResult noRowError = static_cast<HResult>(0x800A0BCDU);
constexpr HResult noItemError = static_cast<HResult>(0x800A0CC1U);
constexpr HResult wrongArgumentsError = static_cast<HResult>(0x800A0BB9U);
constexpr HResult syntaxError = static_cast<HResult>(0x80040E14U);
constexpr HResult noTableError = static_cast<HResult>(0x80040E37U);

TEST_F(AdoTest, AConnectionGoesFromClosedToOpenAndBack) {
  const LateBound connection = create(L"ADODB.Connection");
  EXPECT_EQ(connection.integer(L"State"), 0);
  EXPECT_EQ(codeOf([&] { connection.call(L"Close"); }), closedError);
  EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select 1"}); }), closedError);
  connection.call(L"Open", {connectionString(file_)});
  EXPECT_EQ(connection.integer(L"State"), 1);
  EXPECT_EQ(codeOf([&] { connection.call(L"Open"); }), openError);
  EXPECT_EQ(codeOf([&] { connection.put(L"ConnectionString", "x"); }), openError);
  connection.call(L"Close");
  EXPECT_EQ(connection.integer(L"State"), 0);
}

TEST_F(AdoTest, AConnectionKeepsItsSettings) {
  const LateBound connection = create(L"ADODB.Connection");
  EXPECT_EQ(connection.integer(L"CursorLocation"), 2);
  EXPECT_EQ(connection.integer(L"ConnectionTimeout"), 15);
  EXPECT_EQ(connection.integer(L"CommandTimeout"), 30);
  connection.put(L"CursorLocation", 3);
  connection.put(L"ConnectionTimeout", 0);
  connection.put(L"CommandTimeout", 0);
  EXPECT_EQ(connection.integer(L"CursorLocation"), 3);
  EXPECT_EQ(connection.integer(L"ConnectionTimeout"), 0);
  EXPECT_EQ(connection.integer(L"CommandTimeout"), 0);
}

TEST_F(AdoTest, AMissingAccountIsAnErrorInTheCollection) {
  const LateBound connection = create(L"ADODB.Connection");
  const std::string nowhere = connectionString(file_.parent_path() / "no-such.account");
  EXPECT_EQ(codeOf([&] { connection.call(L"Open", {nowhere}); }), hresult::fail);
  const LateBound errors = connection.object(L"Errors", "Errors");
  ASSERT_EQ(errors.integer(L"Count"), 1);
  EXPECT_EQ(errors.item(0, "Error").integer(L"Number"), hresult::fail);
  EXPECT_EQ(errors.item(0, "Error").integer(L"NativeError"), 0);
  EXPECT_EQ(connection.integer(L"State"), 0);
}

TEST_F(AdoTest, ExecuteTellsTheRowsAffectedInTheCallersVariable) {
  const LateBound connection = openConnection();
  Variant affected;
  connection.call(L"Execute", {"Update Material Set bStock = 0", Variant::reference(affected), -1});
  EXPECT_EQ(automation::toInteger(affected), 2);
  long typed = 0;
  Variant reference;
  reference.vt = VT_I4 | VT_BYREF;
  reference.plVal = &typed;
  connection.call(L"Execute", {"Delete From Material Where cCode = N'M1'", reference});
  EXPECT_EQ(typed, 1);
}

TEST_F(AdoTest, ExecuteGivesAClosedRecordsetForAStatementWithoutRows) {
  const LateBound connection = openConnection();
  const LateBound nothing = connection.object(L"Execute", "Recordset", {"Update Material Set bStock = 0"});
  EXPECT_EQ(nothing.integer(L"State"), 0);
  EXPECT_EQ(codeOf([&] { nothing.flag(L"EOF"); }), closedError);
  const LateBound rows = connection.object(L"Execute", "Recordset", {"Select cCode From Material Order By cCode"});
  EXPECT_EQ(rows.integer(L"State"), 1);
  EXPECT_EQ(automation::toText(field(rows, 0)), "M1");
}

TEST_F(AdoTest, AFailingStatementCarriesTheServersNumber) {
  const LateBound connection = openConnection();
  EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select * From NoSuchTable"}); }), noTableError);
  const LateBound error = connection.object(L"Errors", "Errors").item(0, "Error");
  EXPECT_EQ(error.integer(L"Number"), noTableError);
  EXPECT_EQ(error.integer(L"NativeError"), 208);
  EXPECT_EQ(error.text(L"Description"), "Invalid object name 'NoSuchTable'.");
  EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select From"}); }), syntaxError);
}

TEST_F(AdoTest, ErrorsShowOnlyTheLastStatement) {
  const LateBound connection = openConnection();
  const LateBound errors = connection.object(L"Errors", "Errors");
  EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select * From NoSuchTable"}); }), noTableError);
  EXPECT_EQ(errors.integer(L"Count"), 1);
  connection.call(L"Execute", {"Update Material Set bStock = 0"});
  EXPECT_EQ(errors.integer(L"Count"), 0);
  EXPECT_EQ(codeOf([&] { errors.item(0, "Error"); }), noItemError);
}

TEST_F(AdoTest, AClosedConnectionsRefusalIsNoProviderError) {
  const LateBound connection = create(L"ADODB.Connection");
  EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select 1"}); }), closedError);
  EXPECT_EQ(connection.object(L"Errors", "Errors").integer(L"Count"), 0);
}

TEST_F(AdoTest, ARecordsetIsReadRowByRow) {
  const LateBound connection = openConnection();
  const LateBound rows = openRecordset(connection, "Select * From Material Order By cCode");
  EXPECT_FALSE(rows.flag(L"BOF"));
  EXPECT_EQ(rows.integer(L"RecordCount"), 2);
  EXPECT_EQ(automation::toText(field(rows, "cname")), "钢板");
  rows.call(L"MoveNext");
  EXPECT_EQ(automation::toText(field(rows, "cCode")), "M2");
  EXPECT_TRUE(automation::isNull(field(rows, 1)));
  rows.call(L"MoveNext");
  EXPECT_TRUE(rows.flag(L"EOF"));
  EXPECT_EQ(codeOf([&] { field(rows, 0); }), noRowError);
  EXPECT_EQ(codeOf([&] { rows.call(L"MoveNext"); }), noRowError);
  rows.call(L"MoveFirst");
  EXPECT_EQ(automation::toText(field(rows, 0)), "M1");
  rows.call(L"Close");
  EXPECT_EQ(rows.integer(L"State"), 0);
  EXPECT_EQ(codeOf([&] { rows.call(L"Close"); }), closedError);
}

TEST_F(AdoTest, AnEmptyRecordsetIsAtBothEnds) {
  const LateBound rows = openRecordset(openConnection(), "Select cCode From Material Where cCode = N'none'");
  EXPECT_TRUE(rows.flag(L"BOF"));
  EXPECT_TRUE(rows.flag(L"EOF"));
  EXPECT_EQ(rows.integer(L"RecordCount"), 0);
  EXPECT_EQ(codeOf([&] { rows.call(L"MoveFirst"); }), noRowError);
}

TEST_F(AdoTest, FieldsTellNamesTypesAndExactValues) {
  const LateBound rows = openRecordset(openConnection(), "Select * From Material Order By cCode");
  const LateBound fields = rows.object(L"Fields", "Fields");
  ASSERT_EQ(fields.integer(L"Count"), 6);
  const LateBound quantity = fields.item("iQuantity", "Field");
  EXPECT_EQ(quantity.text(L"Name"), "iQuantity");
  EXPECT_EQ(quantity.integer(L"Type"), 131);
  EXPECT_EQ(quantity.integer(L"Precision"), 18);
  EXPECT_EQ(quantity.integer(L"NumericScale"), 6);
  EXPECT_EQ(fields.item("cName", "Field").integer(L"DefinedSize"), 60);
  EXPECT_EQ(field(rows, "iMoney").vt, VT_CY);
  EXPECT_EQ(field(rows, "dDate").vt, VT_DATE);
  EXPECT_EQ(automation::toText(field(rows, "dDate")), "2024-03-05");
  rows.call(L"MoveNext");
  // The field object reads the row on which its recordset stands.
  EXPECT_EQ(automation::toText(quantity.get(L"Value")), "0.000001");
  EXPECT_EQ(automation::toText(field(rows, "dDate")), "2024-03-06 08:30:00");
  EXPECT_EQ(codeOf([&] { fields.item("none", "Field"); }), noItemError);
  EXPECT_EQ(codeOf([&] { fields.item(6, "Field"); }), noItemError);
  EXPECT_EQ(codeOf([&] { fields.item(-1, "Field"); }), noItemError);
}

TEST_F(AdoTest, ARecordsetsDefaultMemberIsItsFields) {
  const LateBound rows = openRecordset(openConnection(), "Select cCode From Material Order By cCode");
  // rs("cCode"): the field, which stands for its value.
  EXPECT_EQ(automation::toText(rows.getById(DISPID_VALUE, L"Fields", {"cCode"})), "M1");
}

TEST_F(AdoTest, OpenTakesItsArgumentsFromTheProperties) {
  const LateBound connection = openConnection();
  const LateBound rows = create(L"ADODB.Recordset");
  EXPECT_EQ(codeOf([&] { rows.call(L"Open"); }), wrongArgumentsError);
  rows.put(L"Source", "Select cCode From Material");
  EXPECT_EQ(codeOf([&] { rows.call(L"Open"); }), noConnectionError);
  rows.put(L"ActiveConnection", connection.get());
  rows.put(L"CursorLocation", 3);
  rows.put(L"LockType", 3);
  rows.call(L"Open");
  EXPECT_EQ(rows.integer(L"CursorType"), 3);  // rows at the client are always static
  EXPECT_EQ(rows.integer(L"LockType"), 3);
  EXPECT_EQ(codeOf([&] { rows.call(L"Open"); }), openError);
  EXPECT_EQ(codeOf([&] { rows.put(L"Source", "x"); }), openError);
  EXPECT_EQ(codeOf([&] { rows.put(L"CursorType", 0); }), openError);
}

TEST_F(AdoTest, OpenTakesAConnectionString) {
  const LateBound rows = create(L"ADODB.Recordset");
  rows.call(L"Open", {"Select cCode From Material", connectionString(file_)});
  EXPECT_EQ(rows.integer(L"State"), 1);
  EXPECT_EQ(rows.object(L"ActiveConnection", "Connection").integer(L"State"), 1);
}

TEST_F(AdoTest, OpenRefusesAClosedAndAForeignConnection) {
  const LateBound closed = create(L"ADODB.Connection");
  const LateBound rows = create(L"ADODB.Recordset");
  EXPECT_EQ(codeOf([&] { rows.call(L"Open", {"Select 1", closed.get()}); }), noConnectionError);
  EXPECT_EQ(codeOf([&] { rows.call(L"Open", {"Select 1", rows.get()}); }), wrongArgumentsError);
}

TEST_F(AdoTest, AForwardOnlyCursorAtTheServerDoesNotKnowItsLength) {
  const LateBound connection = openConnection();
  const LateBound rows = create(L"ADODB.Recordset");
  rows.call(L"Open", {"Select cCode From Material", connection.get()});
  EXPECT_EQ(rows.integer(L"RecordCount"), -1);
}

TEST_F(AdoTest, GetRowsGivesFieldsByRows) {
  const LateBound rows = openRecordset(openConnection(), "Select cCode, iMoney From Material Order By cCode");
  const Variant all = rows.get(L"GetRows");
  ASSERT_EQ(all.vt, VT_ARRAY | VT_VARIANT);
  long upper = 0;
  SafeArrayGetUBound(all.parray, 1, &upper);
  EXPECT_EQ(upper, 1);
  SafeArrayGetUBound(all.parray, 2, &upper);
  EXPECT_EQ(upper, 1);
  long place[] = {0, 1};  // field 0 of row 1
  Variant value;
  ASSERT_EQ(SafeArrayGetElement(all.parray, place, value.out()), S_OK);
  EXPECT_EQ(automation::toText(value), "M2");
  EXPECT_TRUE(rows.flag(L"EOF"));
  EXPECT_EQ(codeOf([&] { rows.get(L"GetRows"); }), noRowError);
}

TEST_F(AdoTest, TemporaryTablesLiveAsLongAsTheConnection) {
  const LateBound connection = openConnection();
  connection.call(L"Execute", {"Select cCode Into #kept From Material"});
  EXPECT_EQ(automation::toInteger(field(openRecordset(connection, "Select Count(*) From #kept"), 0)), 2);
  EXPECT_EQ(codeOf([&] { openRecordset(openConnection(), "Select Count(*) From #kept"); }), noTableError);
}

TEST_F(AdoTest, EveryReferenceIsGivenBack) {
  const long before = automation::LiveCount::value();
  for (int round = 0; round < 3; ++round) {
    const LateBound connection = openConnection();
    const LateBound rows = openRecordset(connection, "Select * From Material");
    rows.get(L"GetRows");
    rows.call(L"MoveFirst");
    field(rows, 0);
    EXPECT_EQ(codeOf([&] { connection.call(L"Execute", {"Select From"}); }), syntaxError);
    connection.object(L"Errors", "Errors").item(0, "Error").text(L"Description");
    EXPECT_GT(automation::LiveCount::value(), before);
  }
  EXPECT_EQ(automation::LiveCount::value(), before);
}

TEST_F(AdoTest, OnlyWhileItLivesDoesItTakeAdosPlace) {
  EXPECT_TRUE(AdoConnection::from(create(L"ADODB.Connection").get()));
  ado_.reset();
  // What the machine has under ADO's name, if anything, is not the look-alike.
  automation::LateBound other;
  try {
    other = create(L"ADODB.Connection");
  } catch (const std::runtime_error&) {
    return;
  }
  EXPECT_FALSE(AdoConnection::from(other.get()));
}

}  // namespace
}  // namespace quillon::workbench

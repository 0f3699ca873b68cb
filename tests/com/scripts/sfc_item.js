// Runs the receipt/issue/balance report the way a JScript client does: late-bound, arguments always by value, errors
// as exceptions. Prints one line a finding; run_script.sh holds the lines against sfc_item.js.expected.
//
//   cscript //nologo sfc_item.js ACCOUNT

var wb;
var connection;

function say(subject, value) {
  WScript.Echo(subject + ": " + value);
}

function yesNo(holds) {
  return holds ? "yes" : "no";
}

function newArgument(mode) {
  var e = wb.NewArgument("sfc-item");
  e.rawFilter.FilterList("iYear").varValue = String(e.Login.iYear);
  e.rawFilter.FilterList("cModal").varValue = mode;
  return e;
}

// The first field of the first row, as text.
function look(sql) {
  var rows = new ActiveXObject("ADODB.Recordset");
  rows.Open(sql, connection, 3, 1);
  var value = String(rows.Fields(0).Value);
  rows.Close();
  return value;
}

function rowsOf(e) {
  return Number(look("Select Count(*) From " + e.DataSource.SQL));
}

function dropResult(e) {
  connection.Execute("Drop Table " + e.DataSource.SQL);
}

// The error that `action` ends with; null when it ends well.
function errorOf(action) {
  try {
    action();
    return null;
  } catch (error) {
    return error;
  }
}

// The HRESULT of an error in hexadecimal digits.
function codeOf(error) {
  return (error.number + 4294967296).toString(16);
}

function createEveryClass() {
  var names = ["clsSFC_Item", "ClsBusiness", "clsFXDetail", "clsOutsum_Item", "clsFXWt", "clsWtFilterControl",
               "clsSFCFilterControl", "clsFilterControl"];
  for (var i = 0; i < names.length; ++i) {
    say("created Quillon." + names[i], yesNo(new ActiveXObject("Quillon." + names[i]) != null));
  }
}

function runReport() {
  var e = newArgument("1");
  var report = new ActiveXObject("Quillon.clsSFC_Item");
  say("TempTablename before", "[" + report.TempTablename() + "]");
  report.tarn_tmpTable = "kept by the platform";
  report.GETSQL(e);
  say("TempTablename after", "[" + report.TempTablename() + "]");
  say("tarn_tmpTable", report.tarn_tmpTable);
  say("DataSource.Type", e.DataSource.Type);
  say("report has rows", yesNo(rowsOf(e) > 0));
  var received = look("Select Sum(iMoney) From " + e.DataSource.SQL + " Where iState = 2");
  var inLedger = look("Select Sum(IsNull(item.iItemInPrice, 0) + IsNull(item.iItemOutPrice, 0)) " +
                      "From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = base.AutoID " +
                      "Where base.bRdFlag = 1 And base.iMonth > 0 And base.iYear = " + e.Login.iYear +
                      " And base.cWhCode Is Not Null");
  say("receipts are the ledger's", yesNo(Number(received) > 0 && received == inLedger));
  say("the unknown cost item was removed",
      yesNo(look("Select Count(*) From " + e.DataSource.SQL + " Where IsNull(cFXCode, N'') = N''") == "0"));
  e.Action = "LINK";
  report.Execute(e);
  say("Execute left the rows alone", yesNo(rowsOf(e) > 0));
  dropResult(e);
}

function passArguments() {
  var report = new ActiveXObject("Quillon.clsSFC_Item");
  var list = [newArgument("0"), newArgument("2")];
  report.GETSQL(list[0]);
  say("an array's element", yesNo(rowsOf(list[0]) > 0));
  dropResult(list[0]);
  report["GETSQL"](list[1]);
  say("a member called by its name", yesNo(rowsOf(list[1]) > 0));
  dropResult(list[1]);
  var holder = {e: newArgument("1")};
  report.GETSQL(holder.e);
  say("a member of the script's object", yesNo(rowsOf(holder.e) > 0));
  dropResult(holder.e);
}

function provokeErrors() {
  var e = newArgument("1");
  var report = new ActiveXObject("Quillon.clsSFC_Item");
  say("no argument object", codeOf(errorOf(function() { report.GETSQL(null); })));
  say("a text as argument object", codeOf(errorOf(function() { report.GETSQL("text"); })));
  say("no argument", codeOf(errorOf(function() { report.GETSQL(); })));
  say("no such member", codeOf(errorOf(function() { report.NoSuchMember(); })));
  var missing = errorOf(function() { new ActiveXObject("ADODB.Connection").Open("Data Source=missing.account"); });
  say("a missing account is named", yesNo(missing.description.indexOf("missing.account") >= 0));
  say("a missing account", codeOf(missing));
  var refused = errorOf(function() { connection.Execute("Select * From NoSuchTable"); });
  say("ADO's error", refused.description);
  say("ADO's error number", codeOf(refused));
  say("ADO's native error", connection.Errors(0).NativeError);
  say("Init gives undefined", yesNo(new ActiveXObject("Quillon.ClsBusiness").Init(e) === undefined));
}

function stopTheBuild() {
  var report = new ActiveXObject("Quillon.clsSFC_Item");
  var e = newArgument("1");
  e.rawFilter.FilterList("cFSType").varValue = "1";
  report.GETSQL(e);
  say("dropping the group index fails", wb.FailureNumber);
  say("all rows are written before", yesNo(rowsOf(e) > 0));
  dropResult(e);
}

createEveryClass();
wb = new ActiveXObject("QuillonWorkbench.Platform");
wb.OpenAccount(WScript.Arguments(0));
connection = new ActiveXObject("ADODB.Connection");
connection.Open(newArgument("1").Login.OrvDbName);
runReport();
passArguments();
provokeErrors();
stopTheBuild();
WScript.Quit(0);

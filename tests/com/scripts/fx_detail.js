// Runs the ledger of one item and opens documents behind its rows the way a JScript client does: late-bound, arguments
// always by value, errors as exceptions. Prints one line a finding; run_script.sh holds the lines against
// fx_detail.js.expected.
//
//   cscript //nologo fx_detail.js ACCOUNT

var wb;

function say(subject, value) {
  WScript.Echo(subject + ": " + value);
}

function yesNo(holds) {
  return holds ? "yes" : "no";
}

// The first field of the first row, as text.
function look(sql) {
  return String(wb.Query(sql).Fields(0).Value);
}

// An argument with a filter on an inventory of which the current year has posted sales, in its warehouse.
function newArgument() {
  var e = wb.NewArgument("fx-detail");
  var rows = wb.Query("Select Top 1 base.cInvCode, base.cWhCode From ia_subsidiary base " +
                      "Where base.iYear = " + e.Login.iYear + " And base.iMonth > 0 And base.cVouType = N'32' " +
                      "And base.cPZID Is Not Null Order By base.cInvCode, base.cWhCode");
  e.rawFilter.FilterList("iYear").varValue = String(e.Login.iYear);
  e.rawFilter.FilterList("cInvCode").varValue = rows.Fields("cInvCode").Value;
  e.rawFilter.FilterList("cWhCode").varValue = rows.Fields("cWhCode").Value;
  return e;
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

function runLedger(e) {
  var before = e.DataSource.SQL;
  new ActiveXObject("Quillon.clsFXDetail").GETSQL(e);
  say("DataSource.Type", e.DataSource.Type);
  say("the ledger names its table itself", yesNo(e.DataSource.SQL != before));
  var ledger = " From " + e.DataSource.SQL;
  say("openings, movements and balances", look("Select Count(Distinct datatype)" + ledger));
  say("lines are numbered from 2", look("Select Min(RowNo)" + ledger));
  var moved = look("Select Sum(Case When base.bRdFlag = 1 Then item.iItemInPrice Else item.iItemOutPrice End) " +
                   "From ia_subsidiary_Item item Inner Join ia_subsidiary base On item.iSubID = base.AutoID " +
                   "Where base.iYear = " + e.Login.iYear + " And base.iMonth > 0 And base.cVouType <> N'33' " +
                   "And base.cInvCode = N'" + e.rawFilter.FilterList("cInvCode").varValue + "' " +
                   "And base.cWhCode = N'" + e.rawFilter.FilterList("cWhCode").varValue + "'");
  // JScript knows no Decimal, which the ledger's amounts are.
  say("movements of the cost items are the ledger's",
      yesNo(Number(moved) > 0 &&
            look("Select Cast(Sum(iItemPrice) As money)" + ledger + " Where datatype = 1") == moved));
}

function openDocuments(e) {
  var report = new ActiveXObject("Quillon.clsFXDetail");
  var posted = "Select Top 1 * From " + e.DataSource.SQL + " Where datatype = 1 And cPZID Is Not Null Order By RowNo";
  e.RelateData.TakeRow(wb.Query(posted));
  e.Action = "Vouch";
  report.Execute(e);
  e.Action = "Link";
  report.Execute(e);
  for (var each = new Enumerator(wb.Vouchers); !each.atEnd(); each.moveNext()) {
    say("opened through", each.item().Member);
  }
  say("the source document is the row's",
      yesNo(wb.Vouchers(1).Heading("cVouCode") == e.RelateData.GetData("cVouCode")));
  say("the voucher's year", yesNo(wb.Vouchers(2).Heading("dbill_date").substring(0, 4) == String(e.Login.iYear)));
  say("a third one", codeOf(errorOf(function() { wb.Vouchers(3); })));
  say("a field that it has not", codeOf(errorOf(function() { wb.Vouchers(1).Heading("cColour"); })));
  say("a line that it has not", codeOf(errorOf(function() { wb.Vouchers(1).Line(0, "cInvCode"); })));
}

function checkDialog() {
  var filter = wb.NewDialog("fx-detail").rawFilter;
  var control = new ActiveXObject("Quillon.clsFilterControl");
  control.CallBack_FilterInit(filter);
  filter.FilterList("cInvCode").varValue = look("Select Min(cInvCode) From Inventory");
  var cancel = false;
  control.CallBack_FilterClick(filter, cancel);
  say("messages", wb.Messages.Count);
  say("Cancel does not come back by value", yesNo(!cancel));
}

function provokeErrors() {
  var report = new ActiveXObject("Quillon.clsFXDetail");
  say("no argument object", codeOf(errorOf(function() { report.GETSQL(null); })));
  say("a text as argument object", codeOf(errorOf(function() { report.GETSQL("text"); })));
  say("no such member", codeOf(errorOf(function() { report.TempTablename(); })));
  var e = wb.NewArgument("fx-detail");
  e.rawFilter.FilterList("iYear").varValue = "soon";
  say("no year", yesNo(errorOf(function() { report.GETSQL(e); }).description.indexOf("soon") >= 0));
}

wb = new ActiveXObject("QuillonWorkbench.Platform");
wb.OpenAccount(WScript.Arguments(0));
provokeErrors();
var argument = newArgument();
runLedger(argument);
openDocuments(argument);
wb.Query("Drop Table " + argument.DataSource.SQL);
checkDialog();
WScript.Quit(0);

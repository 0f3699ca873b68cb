// A session with the voucher report as a JScript client has it, every argument by value: dialog, report, document behind
// a row, errors. The same session runs in VBScript and in two C++ clients; each has to print session.expected.
//
//   cscript //nologo session.js ACCOUNT

// The ledger lines of sales issues, settled by issue or by invoice.
var chosenLines = " From ia_subsidiary base Where base.cVouType In (N'32', N'3201')";
var wb = new ActiveXObject("QuillonWorkbench.Platform");
var quiet = false;

function say(subject, value) {
  if (!quiet) WScript.Echo(subject + ": " + value);
}

function yesNo(holds) {
  return holds ? "yes" : "no";
}

function look(sql) {
  return String(wb.Query(sql).Fields(0).Value);
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

function fillInFilter(e) {
  var filter = e.rawFilter;
  var control = new ActiveXObject("Quillon.clsWtFilterControl");
  say("FilterInit gives nothing", yesNo(control.CallBack_FilterInit(filter) === undefined));
  var codes = filter.FilterList("cVouType").Choices.split("{##}")[0];
  say("voucher types offered", codes.split("{#}").length);
  filter.FilterList("Inventory.cInvCCode").varValue = "01";
  control.CallBack_ValueChange("Inventory.cInvCCode", filter);
  say("inventories of class 01", "[" + filter.FilterList("Inventory.cInvCode").LookupCondition + "]");
  filter.FilterList("Inventory.cInvCCode").varValue = "";
  control.CallBack_ValueChange("Inventory.cInvCCode", filter);
  say("inventories of no class", "[" + filter.FilterList("Inventory.cInvCode").LookupCondition + "]");
  filter.FilterList("cVouType").varValue = "32";
  say("accepted", yesNo(control.CallBack_FilterClick(filter, false) === true));
}

function runReport(e) {
  var report = new ActiveXObject("Quillon.clsFXWt");
  report.tarn_tmpTable = "kept by the platform";
  report.GETSQL(e);
  var table = e.DataSource.SQL;
  say("tarn_tmpTable", report.tarn_tmpTable);
  say("the filter is the dialog's", yesNo(report.objFilter === e.rawFilter));
  say("every ledger line is there",
      yesNo(look("Select Count(Distinct AutoID) From " + table) == look("Select Count(*)" + chosenLines)));
  say("issues are the ledger's",
      yesNo(look("Select Sum(iItemOutPrice) From " + table) == look(
            "Select Sum(iItemOutPrice) From ia_subsidiary_Item Where iSubID In (Select base.AutoID" + chosenLines + ")")));
  e.Action = "Vouch";
  e.RelateData.TakeRow(wb.Query("Select * From " + table + " Where cVouType = N'32'"));
  report.Execute(e);
  var opened = wb.Vouchers(wb.Vouchers.Count);
  say("opened through", opened.Member);
  say("its type", opened.Heading("cVouType") + " " + opened.Heading("cVouName"));
  wb.Query("Drop Table " + table);
}

function provokeErrors() {
  var report = new ActiveXObject("Quillon.clsFXWt");
  say("no run before", errorOf(function() { report.MoveDataDetail(); }).description);
  if (errorOf(function() { report.NoSuchMember(); })) say("no such member", "refused");
}

function session() {
  var e = wb.NewDialog("fx-wt");
  fillInFilter(e);
  runReport(e);
  provokeErrors();
}

// The objects that live once the collector has run; documents that were opened stay with the platform object.
function kept() {
  CollectGarbage();
  return wb.LiveObjects - wb.Vouchers.Count;
}

wb.Language = "en";
wb.OpenAccount(WScript.Arguments(0));
session();
quiet = true;
var before = kept();
for (var run = 0; run < 3; ++run) session();
quiet = false;
say("objects that three more sessions leave", kept() - before);
WScript.Quit(0);

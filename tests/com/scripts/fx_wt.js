// Runs the cost-item voucher report and opens documents behind its rows the way a JScript client does: late-bound,
// arguments always by value, objects assigned without Set, errors as exceptions. Prints one line a finding;
// run_script.sh holds the lines against fx_wt.js.expected.
//
//   cscript //nologo fx_wt.js ACCOUNT

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

// An argument with a filter on material issues of the login's year.
function newArgument() {
  var e = wb.NewArgument("fx-wt");
  e.rawFilter.FilterList("cVouType").varValue = "11";
  e.rawFilter.FilterList("dKeepDate").varValue = e.Login.cIYear + "-01-01";
  e.rawFilter.FilterList("dKeepDate").varValue2 = e.Login.cIYear + "-12-31";
  return e;
}

function keepProperties() {
  var report = new ActiveXObject("Quillon.clsFXWt");
  say("no filter at first", yesNo(report.objFilter === null));
  report.objFilter = newArgument().rawFilter;
  say("the filter that was assigned", report.objFilter.FilterList("cVouType").varValue);
  report.msLanguage = "en-US";
  say("language", report.msLanguage);
  say("a number for a text", (report.tarn_tmpTable = 7, report.tarn_tmpTable));
  say("a text for a filter", codeOf(errorOf(function() { report.objFilter = "text"; })));
}

function runReport(e) {
  new ActiveXObject("Quillon.clsFXWt").GETSQL(e);
  say("DataSource.Type", e.DataSource.Type);
  var rows = " From " + e.DataSource.SQL;
  var lines = " From ia_subsidiary base Where base.cVouType = N'11' And base.dKeepDate >= '" +
              e.Login.cIYear + "-01-01' And base.dKeepDate <= '" + e.Login.cIYear + "-12-31'";
  say("every ledger line is there",
      yesNo(Number(look("Select Count(Distinct AutoID)" + rows)) > 0 &&
            look("Select Count(Distinct AutoID)" + rows) == look("Select Count(*)" + lines)));
  say("issues of the cost items are the ledger's",
      yesNo(look("Select Sum(iItemOutPrice)" + rows) ==
            look("Select Sum(item.iItemOutPrice) From ia_subsidiary_Item item Where item.iSubID In " +
                 "(Select base.AutoID" + lines + ")")));
  say("business types by name", yesNo(look("Select Count(*)" + rows + " Where cBusType Like '%[0-9]%'") == "0"));
}

function openDocuments(e) {
  var report = new ActiveXObject("Quillon.clsFXWt");
  e.RelateData.TakeRow(wb.Query("Select Top 1 * From " + e.DataSource.SQL +
                                " Where cPzID Is Not Null Order By AutoID, cfxCode"));
  say("the ledger line is the row's ID", yesNo(e.RelateData.GetData("ID") == e.RelateData.GetData("AutoID")));
  e.Action = "Vouch";
  report.Execute(e);
  e.Action = "Link";
  report.Execute(e);
  for (var each = new Enumerator(wb.Vouchers); !each.atEnd(); each.moveNext()) {
    say("opened through", each.item().Member);
  }
  say("the source document is the row's",
      yesNo(wb.Vouchers(1).Heading("cVouCode") == e.RelateData.GetData("cVouCode")));
  say("its type", wb.Vouchers(1).Heading("cVouType"));
  say("the voucher's year", yesNo(wb.Vouchers(2).Heading("dbill_date").substring(0, 4) == String(e.Login.iYear)));
}

function checkDialog() {
  var filter = wb.NewDialog("fx-wt").rawFilter;
  var control = new ActiveXObject("Quillon.clsWtFilterControl");
  control.CallBack_FilterInit(filter);
  say("voucher types", filter.FilterList("cVouType").Choices.split("{##}")[0].split("{#}").length);
  filter.FilterList("Customer.cCCCode").varValue = "01";
  control.CallBack_ValueChange("Customer.cCCCode", filter);
  say("customers", "[" + filter.FilterList("Customer.cCusCode").LookupCondition + "]");
  say("accepted", control.CallBack_FilterClick(filter, false));
}

function provokeErrors() {
  var report = new ActiveXObject("Quillon.clsFXWt");
  say("no argument object", codeOf(errorOf(function() { report.GETSQL(null); })));
  say("a text as argument object", codeOf(errorOf(function() { report.GETSQL("text"); })));
  say("no such member", codeOf(errorOf(function() { report.TempTablename(); })));
  var e = newArgument();
  e.rawFilter.FilterList("cVouCode").varValue = "it's";
  say("a value that breaks the statement", yesNo(errorOf(function() { report.GETSQL(e); }) !== null));
  say("which the platform can ask for", yesNo(wb.FailureStatement.indexOf("it's") > 0));
}

wb = new ActiveXObject("QuillonWorkbench.Platform");
wb.OpenAccount(WScript.Arguments(0));
keepProperties();
provokeErrors();
var argument = newArgument();
runReport(argument);
openDocuments(argument);
wb.Query("Drop Table " + argument.DataSource.SQL);
checkDialog();
WScript.Quit(0);

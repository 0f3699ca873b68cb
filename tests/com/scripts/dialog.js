// Fills in the filters of the two summary reports through their dialog's callbacks, as a JScript client does: every
// argument by value, so that the view cannot come back. Prints one line a finding; run_script.sh holds the lines against
// dialog.js.expected.
//
//   cscript //nologo dialog.js ACCOUNT

var wb;

function say(subject, value) {
  WScript.Echo(subject + ": " + value);
}

function yesNo(holds) {
  return holds ? "yes" : "no";
}

// The user enters a value, and the dialog calls the class.
function change(control, filter, key, value) {
  filter.FilterList(key).varValue = value;
  control.CallBack_ValueChange(key, filter);
}

function rowsOf(e) {
  var rows = Number(wb.Query("Select Count(*) From " + e.DataSource.SQL).Fields(0).Value);
  wb.Query("Drop Table " + e.DataSource.SQL);
  return rows;
}

function outboundSummary() {
  var e = wb.NewDialog("outsum-item");
  var filter = e.rawFilter;
  var control = new ActiveXObject("Quillon.clsSFCFilterControl");
  say("FilterInit gives undefined", yesNo(control.CallBack_FilterInit(filter) === undefined));
  say("the year is the login's", yesNo(filter.FilterList("iYear").varValue == e.Login.cIYear));
  say("grades", filter.FilterList("iGrade").Choices);
  var view = "as before";
  control.CallBack_ReportViewInit(filter, view);
  change(control, filter, "cModal", "1");
  control.CallBack_ReportViewChange("cModal", filter, view);
  say("view", view);
  say("grade", yesNo(filter.FilterList("iGrade").Available));
  change(control, filter, "cInvCCode", "01");
  say("inventories", filter.FilterList("cInvCode").LookupCondition);
  change(control, filter, "cInvCCode", "");
  change(control, filter, "iYear", e.Login.cIYear);
  control.InitYear();
  control.InitGrade();
  say("accepted", yesNo(control.CallBack_FilterClick(filter, false) === true));
  new ActiveXObject("Quillon.clsOutsum_Item").GETSQL(e);
  say("the report has rows", yesNo(rowsOf(e) > 0));
}

function receiptIssueBalance() {
  var e = wb.NewDialog("sfc-item");
  var control = new ActiveXObject("Quillon.clsSFCFilterControl");
  control.CallBack_FilterInit(e.rawFilter);
  say("transfers", e.rawFilter.FilterList("bIncludeTransVouch").varValue);
  say("warehouse", yesNo(e.rawFilter.FilterList("cWhCode").Available));
  say("department", yesNo(e.rawFilter.FilterList("cDepCode").Available));
  say("accepted without Cancel's value", yesNo(control.CallBack_FilterClick(e.rawFilter, undefined) === true));
  new ActiveXObject("Quillon.clsSFC_Item").GETSQL(e);
  say("its report has rows", yesNo(rowsOf(e) > 0));
}

function provokeErrors() {
  var control = new ActiveXObject("Quillon.clsSFCFilterControl");
  try {
    control.InitGrade();
    say("not started", "no error");
  } catch (error) {
    say("not started", error.description);
  }
}

wb = new ActiveXObject("QuillonWorkbench.Platform");
wb.OpenAccount(WScript.Arguments(0));
provokeErrors();
outboundSummary();
receiptIssueBalance();
WScript.Quit(0);

#include "filters/sfc_filter_control.h"

#include <algorithm>
#include <memory>

#include "frame/automation_error.h"
#include "frame/business_types.h"
#include "frame/pub_mod.h"
#include "frame/report_session.h"
#include "frame/statement.h"
#include "frame/text.h"

namespace quillon {

namespace {

// The identifiers that the platform gave the two reports' filters; compared to the letter.
constexpr std::string_view outboundSummary = "E55F9D31-F4C3-44D2-BDEB-9F83A208CAEE";
constexpr std::string_view receiptIssueBalance = "CA3BAD03-9D4C-463A-827E-E971D5A36C81";

constexpr QueryOptions listQuery{
    .cursorType = CursorType::fixed, .lockType = LockType::optimistic, .cursorLocation = CursorLocation::client};

std::string yearsQuery(const std::string& accountCode) {
  return terminated({
      "select Distinct iyear ",
      "from orvsystem..ua_period",
      "Inner Join AccInformation ON orvsystem..ua_period.iYear >= left(AccInformation.cValue, 4) And csysid = 'CA' and cid='11002'",
      "where cacc_id =N'" + accountCode + "' And iYear < 9999",
      "And ((select top 1 cValue from accinformation where csysid = N'aa' and cName = N'ArchiveDate') Is Null",
      "    Or OrvSystem..UA_Period.iYear > (Select top 1 iYear From OrvSystem..UA_Period Where cacc_id =N'" +
          accountCode +
          "' And (select top 1 cValue from accinformation where csysid = N'aa' and cName = N'ArchiveDate') Between dBegin And dEnd))",
      "order by iyear",
  });
}

constexpr std::string_view highestGradeQuery = "select IsNull(MAX(iGrade),1) from Ca_FxClassDef";

std::string notDirectlyShipped() {
  return "and Left(isnull(IA_Subsidiary.cBusType,N''),2)<>N'" + std::string(directShipment) + "'";
}

// The types of the year's issues from a warehouse.
std::string voucherTypesQuery(int year) {
  return joined({
      "select distinct AA_Enum.EnumName , IA_Subsidiary.cVouType  ",
      "From IA_Subsidiary ",
      "Left Join (select * from VouchType union select N'3201',N'销售出库单') VouchType On IA_Subsidiary.cVouType = VouchType.cVouchType ",
      "Left Join AA_Enum On VouchType.cVouchName = AA_Enum.EnumCode and AA_Enum.EnumType = N'IA.VchType'",
      "WHERE (AA_Enum.localeid = dbo.UDF_GetLocaleID()) And IA_Subsidiary.bRdFlag = 0 " + notDirectlyShipped() +
          " and ia_subsidiary.iyear = " + std::to_string(year),
      "Order By IA_Subsidiary.cVouType ",
  });
}
constexpr std::string_view otherVoucherTypeQuery =
    "select EnumName,N'08' as cVouType from AA_Enum  where EnumType =N'IA.VchType' and EnumCode =N'其他出库单' and LocaleId = dbo.UDF_GetLocaleID() ";

std::string businessTypesQuery(int year) {
  return joined({
      "select distinct AA_Enum.EnumName, IA_Subsidiary.cBusType  ",
      "From IA_Subsidiary ",
      "Left Join AA_Enum on IA_Subsidiary.cBusType = AA_Enum.EnumCode and AA_Enum.EnumType = 'IA.Bustype'",
      "WHERE (AA_Enum.localeid = dbo.UDF_GetLocaleID()) And IA_Subsidiary.bRdFlag = 0 ",
      " " + notDirectlyShipped() + " and ia_subsidiary.iYear = " + std::to_string(year),
  });
}
constexpr std::string_view otherBusinessTypeQuery =
    "select EnumName,N'其他出库' as cBusType from AA_Enum  where EnumType =N'IA.Bustype' and EnumCode =N'其他出库' and LocaleId = dbo.UDF_GetLocaleID() ";

void setWhenEmpty(DialogItem& item, std::string_view value) {
  if (item.value().empty()) item.setValue(value);
}

}  // namespace

void SfcFilterControl::filterInit(FilterDialog& dialog) {
  openDialogSession(module_, dialog);
  liftDataRights(module_);
  languageRegion_ = module_.loginInUse().languageRegion();
  const std::string report = dialog.identifier();
  if (report == outboundSummary) {
    initOutboundSummary(dialog);
  } else if (report == receiptIssueBalance) {
    initReceiptIssueBalance(dialog);
  }
}

void SfcFilterControl::initOutboundSummary(FilterDialog& dialog) {
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    const std::string name = item->name();
    if (name == "iYear") {
      offerUsedYears(module_, dialog, *item);
    } else if (name == "cModal" || name == "cSource") {
      setWhenEmpty(*item, "0");
    } else if (name == "iGrade") {
      offerGrades(dialog, *item);
    } else if (name == "cVouType") {
      offerVoucherTypes(dialog, yearOfLists(dialog));
    } else if (name == "cBusType") {
      offerBusinessTypes(dialog, yearOfLists(dialog));
    }
  }
  followValuationOfYear(dialog);
}

void SfcFilterControl::initReceiptIssueBalance(FilterDialog& dialog) {
  const int count = dialog.count();
  for (int position = 1; position <= count; ++position) {
    const std::unique_ptr<DialogItem> item = dialog.item(position);
    const std::string name = item->name();
    if (name == "iYear") {
      offerUsedYears(module_, dialog, *item);
    } else if (name == "cModal" || name == "cFSType") {
      setWhenEmpty(*item, "0");
    } else if (name == "bIncludeExpire" || name == "bIncludeTransVouch") {
      setWhenEmpty(*item, "1");
    } else if (name == "iGrade") {
      offerGrades(dialog, *item);
    }
  }
  // Transfers between warehouses matter only where the warehouses are valued as one.
  dialog.setUnavailable("bIncludeTransVouch", followValuationOfYear(dialog) != valuationByInventory);
}

void SfcFilterControl::valueChange(std::string_view key, FilterDialog& dialog) {
  if (key == "cInvClass" || key == "cInvCCode") {
    dialog.setLookupCondition("cInvCode", "", "#FN[cInvCCode] Like '" + dialog.item(key)->value() + "%'");
  } else if (key == "cModal") {
    dialog.setUnavailable("iGrade", false);
    if (dialog.item(key)->value() != "0") dialog.setUnavailable("iGrade", true);
  } else if (key == "iYear") {
    changeYear(dialog);
  }
}

void SfcFilterControl::changeYear(FilterDialog& dialog) {
  const std::string valuationMethod = followValuationOfYear(dialog);
  const std::string report = dialog.identifier();
  if (report == receiptIssueBalance) {
    if (valuationMethod == valuationByInventory) {
      dialog.setUnavailable("bIncludeTransVouch", false);
    } else {
      dialog.setUnavailable("bIncludeTransVouch", true);
      dialog.item("bIncludeTransVouch")->setValue("1");
    }
  } else if (report == outboundSummary) {
    const int year = leadingNumber(dialog.item("iYear")->value());
    offerBusinessTypes(dialog, year);
    offerVoucherTypes(dialog, year);
  }
}

std::string SfcFilterControl::reportView(FilterDialog& dialog) {
  return dialog.item("cModal")->value() == "2" ? "ordin" : "cross";
}

void SfcFilterControl::initYear() {
  years_.clear();
  const auto rows = session().query(yearsQuery(module_.loginInUse().accountCode()), listQuery);
  for (; !rows->eof(); rows->moveNext()) {
    constexpr std::size_t digits = 4;
    const std::string year = rows->text(0).value_or("");
    years_.push_back(std::string(digits - std::min(digits, year.size()), '0') + year);
  }
  rows->close();
}

void SfcFilterControl::initGrade() {
  grades_.clear();
  const auto rows = session().query(highestGradeQuery, listQuery);
  const int highest = rows->eof() ? 0 : leadingNumber(rows->text(0).value_or(""));
  rows->close();
  for (int grade = 1; grade <= highest; ++grade)
    grades_.push_back(grade);
}

void SfcFilterControl::offerGrades(FilterDialog& dialog, DialogItem& item) {
  initGrade();
  std::vector<Choice> grades;
  grades.reserve(grades_.size());
  for (const int grade : grades_)
    grades.push_back({.code = std::to_string(grade), .name = std::to_string(grade)});
  dialog.setEnumeration("iGrade", enumerationText(grades));
  if (item.value().empty()) item.setBounds("1", "1");
}

void SfcFilterControl::offerVoucherTypes(FilterDialog& dialog, int year) {
  std::vector<Choice> types = choices(voucherTypesQuery(year), otherVoucherTypeQuery);
  // 3201 is shown by the name of 32, and choosing 32 also chooses 3201.
  if (std::ranges::find(types, "32", &Choice::code) != types.end()) {
    std::erase_if(types, [](const Choice& type) { return type.code == "3201"; });
  }
  dialog.setEnumeration("cVouType", enumerationText(types));
}

void SfcFilterControl::offerBusinessTypes(FilterDialog& dialog, int year) {
  dialog.setEnumeration("cBusType", enumerationText(choices(businessTypesQuery(year), otherBusinessTypeQuery)));
}

// The rows of `sql`, or when it has none of `whenEmpty`: name, then code. A code that comes again keeps its place and
// takes the later name.
std::vector<Choice> SfcFilterControl::choices(std::string_view sql, std::string_view whenEmpty) {
  std::unique_ptr<Recordset> rows = session().query(sql, listQuery);
  if (rows->eof()) {
    rows->close();
    rows = session().query(whenEmpty, listQuery);
  }
  std::vector<Choice> list;
  for (; !rows->eof(); rows->moveNext()) {
    Choice choice{.code = rows->text(1).value_or(""), .name = rows->text(0).value_or("")};
    const auto known = std::ranges::find(list, choice.code, &Choice::code);
    if (known == list.end()) {
      list.push_back(std::move(choice));
    } else {
      known->name = std::move(choice.name);
    }
  }
  rows->close();
  return list;
}

std::string SfcFilterControl::followValuationOfYear(FilterDialog& dialog) {
  std::string method = valueStyle(module_, leadingNumber(dialog.item("iYear")->value()), session());
  applyValuationRule(dialog, method);
  return method;
}

int SfcFilterControl::yearOfLists(FilterDialog& dialog) {
  const std::string year = dialog.item("iYear")->value();
  return leadingNumber(year.empty() ? module_.loginInUse().accountingYearText() : year);
}

Session& SfcFilterControl::session() {
  // A start that failed may have left a session without a login.
  if (!module_.session || !module_.login) {
    throw AutomationError(hresult::unexpected, "Quillon.clsSFCFilterControl",
                          "The dialog has no connection to the account yet; call CallBack_FilterInit first.");
  }
  return *module_.session;
}

}  // namespace quillon

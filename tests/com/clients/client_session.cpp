#include "tests/com/clients/client_session.h"

#include <functional>
#include <iostream>

#include "frame/automation_error.h"

namespace quillon::automation::test {
namespace {

// The ledger lines of sales issues, settled by issue or by invoice.
const std::string chosenLines = " From ia_subsidiary base Where base.cVouType In (N'32', N'3201')";

const char* yesNo(bool holds) {
  return holds ? "yes" : "no";
}

int partsOf(const std::string& text, const std::string& separator) {
  int parts = 1;
  for (std::size_t at = text.find(separator); at != std::string::npos; at = text.find(separator, at + separator.size()))
    ++parts;
  return parts;
}

class Session {
 public:
  Session(VoucherReportClasses& classes, const std::string& account) : classes_(classes) {
    CLSID platform;
    ComPtr<IDispatch> object;
    if (FAILED(CLSIDFromProgID(L"QuillonWorkbench.Platform", &platform)) ||
        FAILED(CoCreateInstance(platform, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(object.out()))))
      throw AutomationError(REGDB_E_CLASSNOTREG, "client", "QuillonWorkbench.dll is not registered");
    platform_ = LateBound(object, "QuillonWorkbench.Platform");
    platform_.put(L"Language", "en");
    platform_.call(L"OpenAccount", {account});
  }

  void run() {
    const LateBound e = platform_.object(L"NewDialog", "e", {"fx-wt"});
    classes_.create();
    fillInFilter(e);
    runReport(e);
    provokeErrors();
  }
  void runAgain() {
    quiet_ = true;
    classes_.create();
    const int before = kept();
    for (int run = 0; run < 3; ++run)
      this->run();
    classes_.create();
    quiet_ = false;
    say("objects that three more sessions leave", std::to_string(kept() - before));
  }

 private:
  void say(const std::string& subject, const std::string& value) const {
    if (!quiet_) std::cout << subject << ": " << value << "\n";
  }
  // The objects that live; documents that were opened stay with the platform object.
  int kept() const {
    return platform_.integer(L"LiveObjects") - platform_.object(L"Vouchers", "documents").integer(L"Count");
  }
  std::string look(const std::string& sql) const {
    const LateBound fields = platform_.object(L"Query", "rows", {sql}).object(L"Fields", "fields");
    return fields.item(0, "field").text(L"Value");
  }
  static LateBound itemOf(const LateBound& filter, const char* key) {
    return filter.object(L"FilterList", "item", {key});
  }

  void fillInFilter(const LateBound& e) {
    const LateBound filter = e.object(L"rawFilter", "filter");
    say("FilterInit gives nothing", yesNo(classes_.filterInit(filter.get()).vt == VT_EMPTY));
    const std::string choices = itemOf(filter, "cVouType").text(L"Choices");
    say("voucher types offered", std::to_string(partsOf(choices.substr(0, choices.find("{##}")), "{#}")));
    for (const auto& [shown, inventoryClass] : {std::pair("class 01", "01"), std::pair("no class", "")}) {
      itemOf(filter, "Inventory.cInvCCode").put(L"varValue", inventoryClass);
      classes_.valueChange("Inventory.cInvCCode", filter.get());
      say(std::string("inventories of ") + shown,
          "[" + itemOf(filter, "Inventory.cInvCode").text(L"LookupCondition") + "]");
    }
    itemOf(filter, "cVouType").put(L"varValue", "32");
    bool cancel = false;
    const bool accepted = classes_.filterClick(filter.get(), cancel);
    say("accepted", yesNo(accepted && !cancel));
  }

  void runReport(const LateBound& e) {
    classes_.setTemporaryTable("kept by the platform");
    classes_.getSql(e.get());
    const std::string table = e.object(L"DataSource", "data source").text(L"SQL");
    say("tarn_tmpTable", classes_.temporaryTable());
    say("the filter is the dialog's", yesNo(classes_.filter().get() == e.object(L"rawFilter", "filter").get()));
    say("every ledger line is there",
        yesNo(look("Select Count(Distinct AutoID) From " + table) == look("Select Count(*)" + chosenLines)));
    say("issues are the ledger's",
        yesNo(look("Select Sum(iItemOutPrice) From " + table) ==
              look("Select Sum(iItemOutPrice) From ia_subsidiary_Item Where iSubID In (Select base.AutoID" +
                   chosenLines + ")")));
    e.put(L"Action", "Vouch");
    const LateBound row = platform_.object(L"Query", "rows", {"Select * From " + table + " Where cVouType = N'32'"});
    e.object(L"RelateData", "row").call(L"TakeRow", {row.object()});
    classes_.execute(e.get());
    const int count = platform_.object(L"Vouchers", "documents").integer(L"Count");
    const LateBound opened = platform_.object(L"Vouchers", "document", {count});
    say("opened through", opened.text(L"Member"));
    say("its type", opened.text(L"Heading", {"cVouType"}) + " " + opened.text(L"Heading", {"cVouName"}));
    platform_.get(L"Query", {"Drop Table " + table});
  }

  void provokeErrors() {
    classes_.create();
    try {
      classes_.moveDataDetail();
    } catch (const AutomationError& error) {
      say("no run before", error.description());
    }
    if (!classes_.hasMember(L"NoSuchMember")) say("no such member", "refused");
  }

  VoucherReportClasses& classes_;
  LateBound platform_;
  bool quiet_ = false;
};

}  // namespace

int runSession(VoucherReportClasses& classes, int argumentCount, char** arguments) {
  if (argumentCount != 2) {
    std::cerr << "usage: " << arguments[0] << " ACCOUNT\n";
    return 2;
  }
  try {
    Session session(classes, arguments[1]);
    session.run();
    session.runAgain();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << arguments[0] << ": " << error.what() << "\n";
    return 1;
  }
}

}  // namespace quillon::automation::test

// The session that every client has with the voucher report, for clients in C++: what is said of dialog, report, document
// and errors. How the classes of Quillon.dll are called is the client's own business. The workbench's platform, which
// has no type library, is called by name.
#pragma once

#include <string>

#include "automation/late_bound.h"

namespace quillon::automation::test {

// The voucher report's two classes, as a client calls them. All members throw AutomationError.
class VoucherReportClasses {
 public:
  VoucherReportClasses() = default;
  VoucherReportClasses(const VoucherReportClasses&) = delete;
  VoucherReportClasses& operator=(const VoucherReportClasses&) = delete;
  virtual ~VoucherReportClasses() = default;

  // Fresh objects of both classes, in place of the ones before.
  virtual void create() = 0;

  // --- The dialog ---
  virtual Variant filterInit(IDispatch* filter) = 0;
  virtual void valueChange(const char* key, IDispatch* filter) = 0;
  // What the class said; `cancel` comes back as it left it.
  virtual bool filterClick(IDispatch* filter, bool& cancel) = 0;

  // --- The report ---
  virtual void setTemporaryTable(const char* name) = 0;
  virtual std::string temporaryTable() = 0;
  virtual ComPtr<IDispatch> filter() = 0;
  virtual void getSql(IDispatch* e) = 0;
  virtual void execute(IDispatch* e) = 0;
  virtual void moveDataDetail() = 0;
  // Whether the class has a member of this name.
  virtual bool hasMember(const wchar_t* name) = 0;
};

// Runs the session on the account of the program's only argument and prints a line a finding. Gives the program's exit
// status; what went wrong is told on standard error.
int runSession(VoucherReportClasses& classes, int argumentCount, char** arguments);

}  // namespace quillon::automation::test

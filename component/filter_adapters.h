// Filter, FilterDialog, their items and DrillThroughHelper (ports of the core) over the platform's filter objects: the
// library calls the ports, the adapters call the objects late-bound, each member one call by name (platform_bindings.h).
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "automation/late_bound.h"
#include "component/ado_session.h"
#include "frame/filter_dialog.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundFilterItem : public FilterItem {
 public:
  explicit LateBoundFilterItem(automation::LateBound item) : item_(std::move(item)) {}

  void setGroupToken(int token) override;
  std::string name() override;
  std::string value() override;
  std::string value2() override;
  bool rangeInput() override;
  bool multipleSelection() override;
  std::string sqlText() override;

 private:
  automation::LateBound item_;
};

class LateBoundFilter : public Filter {
 public:
  explicit LateBoundFilter(automation::LateBound filter) : filter_(std::move(filter)) {}

  int count() override;
  std::unique_ptr<FilterItem> item(int position) override;
  std::unique_ptr<FilterItem> item(std::string_view key) override;
  std::string whereWithToken(int token) override;

  // The filter itself, for whoever asks the report for it.
  const automation::ComPtr<IDispatch>& object() const { return filter_.object(); }

 private:
  automation::LateBound list() const;

  automation::LateBound filter_;
};

class LateBoundDialogItem : public DialogItem {
 public:
  explicit LateBoundDialogItem(automation::LateBound item) : item_(std::move(item)) {}

  std::string name() override;
  std::string caption() override;
  std::string value() override;
  void setValue(std::string_view value) override;
  void setBounds(std::string_view lower, std::string_view upper) override;
  void setListText(std::string_view choices) override;
  void setListSource(std::string_view choicesOrStatement) override;

 private:
  automation::LateBound item_;
};

// One callback's view of the dialog.
class LateBoundFilterDialog : public FilterDialog {
 public:
  // `filter` may be null ("Nothing"): every member then throws Basic's error 91.
  explicit LateBoundFilterDialog(automation::ComPtr<IDispatch> filter) : filter_(std::move(filter), "filter") {}

  std::shared_ptr<Login> login() override;
  std::string identifier() override;
  Session& connection() override;
  int count() override;
  std::unique_ptr<DialogItem> item(int position) override;
  std::unique_ptr<DialogItem> item(std::string_view key) override;
  void setUnavailable(std::string_view key, bool flag) override;
  void setEnumeration(std::string_view key, std::string_view text) override;
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override;
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override;

 private:
  automation::LateBound list() const;

  automation::LateBound filter_;
  std::unique_ptr<AdoSession> connection_;  // from the first time that it is asked for
};

class LateBoundDrillThroughHelper : public DrillThroughHelper {
 public:
  explicit LateBoundDrillThroughHelper(automation::LateBound helper) : helper_(std::move(helper)) {}
  // `login` is one that came from a LateBoundReportArgument.
  std::shared_ptr<Filter> filterFor(Login* login, bool drillThrough) override;

 private:
  automation::LateBound helper_;
};

}  // namespace quillon::component

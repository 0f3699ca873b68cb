// The dialog side of the workbench's filter object: what a filter-control class reads and changes while the filter is
// filled in. It works on the entries of a FilterObject, so that the report afterwards reads what the dialog left.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/filter_dialog.h"
#include "workbench/platform/account_session.h"
#include "workbench/platform/filter_object.h"

namespace quillon::workbench {

class FilterDialogObject final : public FilterDialog {
 public:
  // `connection` is open. Captions come in the login's language.
  FilterDialogObject(std::shared_ptr<FilterObject> filter, std::shared_ptr<Login> login,
                     std::shared_ptr<AccountSession> connection);

  std::shared_ptr<Login> login() override { return login_; }
  std::string identifier() override { return filter_->identifier(); }
  Session& connection() override { return *connection_; }

  // The members below throw AutomationError (0x8002000B, bad index) when there is no such item.
  int count() override { return filter_->count(); }
  std::unique_ptr<DialogItem> item(int position) override;
  std::unique_ptr<DialogItem> item(std::string_view key) override;
  void setUnavailable(std::string_view key, bool flag) override;
  // Makes the enumeration the item's choices. Throws AutomationError (invalid argument) for a text that is no
  // enumeration: codes, "{##}" and as many names.
  void setEnumeration(std::string_view key, std::string_view text) override;
  // The second argument makes no difference here.
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override;
  // A condition on an empty value would find nothing, so the restriction is lifted instead.
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override;

  // The parts of the dialog, for the automation object that exposes it.
  const std::shared_ptr<FilterObject>& filter() const { return filter_; }
  const std::shared_ptr<AccountSession>& ownConnection() const { return connection_; }

 private:
  std::shared_ptr<FilterObject> filter_;
  std::shared_ptr<Login> login_;
  std::shared_ptr<AccountSession> connection_;
};

// A list of choices as a dialog item takes it (setListText): codes separated by commas. An empty part offers nothing.
std::vector<Choice> choicesOfList(std::string_view list);

// Choices as setEnumeration takes them. Throws as that does.
std::vector<Choice> choicesOfEnumeration(std::string_view text);

}  // namespace quillon::workbench

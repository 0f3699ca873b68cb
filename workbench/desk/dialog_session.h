// A filter dialog that is open on the desk.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "workbench/catalogue/report.h"
#include "workbench/desk/api_error.h"
#include "workbench/desk/discretion.h"
#include "workbench/desk/task_thread.h"
#include "workbench/platform/account_source.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/language.h"

namespace quillon::workbench::desk {

// The report's own dialog class plays on a thread of its own, with a session of its own. Members may be called on any
// thread; they wait for each other. They throw ApiError, and what the class or the account throws.
class DialogSession {
 public:
  // Opens the dialog with these values in it. What the dialog does not take of them is left out and said in the state's
  // messages. `discretion` outlives the session.
  DialogSession(const AccountSource& account, const Report& report, Language language, const Discretion& discretion,
                std::vector<ItemValue> values);
  DialogSession(const DialogSession&) = delete;
  DialogSession& operator=(const DialogSession&) = delete;
  // Stops what runs.
  ~DialogSession();

  // The dialog as it is: report, view, messages of the last step, items.
  Json state();
  // A change with its callbacks; gives the state. A refusal is ApiError 422 with the item, the words and the state.
  Json change(const ItemValue& value);
  // Confirms the filter: {"accepted": ..., "state": ...}.
  Json click();
  // {"count": ..., "rows": [{"code", "name"}]}
  Json lookUp(const std::string& item, const std::string& search, std::size_t offset, std::size_t limit);
  // A copy of the filter. Throws ApiError 409 unless the last step has confirmed it.
  std::shared_ptr<FilterObject> acceptedFilter();

  const Report& report() const { return report_; }

 private:
  struct Inside;  // what lives on the thread

  const Report& report_;
  std::unique_ptr<Inside> inside_;
  TaskThread thread_;
};

// What a report's item is before a dialog has seen it, in the form of the state.
Json registeredItem(const ItemRegistration& item);

}  // namespace quillon::workbench::desk

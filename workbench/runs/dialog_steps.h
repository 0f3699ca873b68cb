// The steps of a filter dialog as the command line writes them, and what the dialog shows after each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/catalogue/library_runner.h"
#include "workbench/platform/filter_input.h"

namespace quillon::workbench {

// What the user, or the platform on the user's behalf, does to a dialog.
struct DialogStep {
  enum class Kind { init, view, click, change };

  Kind kind = Kind::init;
  std::string text;     // as it was written: "change:iYear=2023"
  std::string setting;  // of a change: "iYear=2023"
};

// Reads "init", "view", "click" and "change:KEY=VALUE". Throws UserError that says which steps there are.
DialogStep dialogStep(const std::string& text);

// A dialog with its class, and what it shows besides its items.
class DialogPlay {
 public:
  // `dialog` and `runner` belong together; `messages` is where the platform's message display puts its texts.
  DialogPlay(std::shared_ptr<FilterDialogObject> dialog, DialogRunner& runner, std::vector<std::string>& messages)
      : dialog_(std::move(dialog)), runner_(runner), messages_(messages) {}

  // Takes one step. A change sets the item's value as the dialog lets the user do it, then tells the class, and asks it
  // for the view anew. Throws UserError that names the step when the value is not accepted, when the item is not
  // available, and when the class fails.
  void take(const DialogStep& step);
  // A change of one item, from whoever does not write it as a step. Throws as take(), without a step to name.
  void take(const ItemValue& value);

  const FilterObject& filter() const { return *dialog_->filter(); }
  // The view class, as last asked for; nullopt before that, or when the class left it open.
  const std::optional<std::string>& view() const { return view_; }
  // Whether the last step confirmed the filter: true when it was accepted, false when the class keeps the dialog open;
  // nullopt when the last step was none.
  const std::optional<bool>& accepted() const { return accepted_; }
  // The item that the last step changed; nullptr when it changed none.
  const FilterEntry* changed() const { return changed_; }
  // What was shown to the user during the last step.
  const std::vector<std::string>& messages() const { return messages_; }

 private:
  void begin();
  void tellChange(const FilterEntry& entry);
  void show(std::optional<std::string> view);

  std::shared_ptr<FilterDialogObject> dialog_;
  DialogRunner& runner_;
  std::vector<std::string>& messages_;
  std::optional<std::string> view_;
  std::optional<bool> accepted_;
  const FilterEntry* changed_ = nullptr;
};

}  // namespace quillon::workbench

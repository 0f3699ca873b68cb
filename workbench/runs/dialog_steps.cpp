#include "workbench/runs/dialog_steps.h"

#include <array>
#include <utility>

#include "workbench/messages/filter.h"
#include "workbench/platform/filter_input.h"
#include "workbench/platform/user_error.h"
#include "workbench/runs/run_monitor.h"

namespace quillon::workbench {

namespace {

constexpr std::array<std::pair<std::string_view, DialogStep::Kind>, 3> plainSteps = {{
    {"init", DialogStep::Kind::init},
    {"view", DialogStep::Kind::view},
    {"click", DialogStep::Kind::click},
}};
constexpr std::string_view changeMark = "change:";

}  // namespace

DialogStep dialogStep(const std::string& text) {
  for (const auto& [word, kind] : plainSteps) {
    if (text == word) return {kind, text, {}};
  }
  const bool change = text.starts_with(changeMark);
  const auto equals = text.find('=');
  if (!change || equals == std::string::npos || equals == changeMark.size()) {
    throw UserError(messages::noSuchStep(text));
  }
  return {DialogStep::Kind::change, text, text.substr(changeMark.size())};
}

void DialogPlay::take(const DialogStep& step) {
  begin();
  try {
    switch (step.kind) {
      case DialogStep::Kind::init:
        runner_.init();
        break;
      case DialogStep::Kind::view:
        show(runner_.view());
        break;
      case DialogStep::Kind::click:
        accepted_ = runner_.click();
        break;
      case DialogStep::Kind::change:
        tellChange(changeItem(*dialog_->filter(), step.setting, dialog_->connection(),
                              languageOfRegion(dialog_->login()->languageRegion())));
        break;
    }
  } catch (const std::exception& error) {
    throw UserError(messages::inStep(step.text, errorText(error)));
  }
}

void DialogPlay::take(const ItemValue& value) {
  begin();
  tellChange(changeItem(*dialog_->filter(), value, dialog_->connection(),
                        languageOfRegion(dialog_->login()->languageRegion())));
}

void DialogPlay::begin() {
  accepted_.reset();
  changed_ = nullptr;
  messages_.clear();
}

void DialogPlay::tellChange(const FilterEntry& entry) {
  const std::string key = entry.item.key;
  changed_ = &entry;
  runner_.changed(key);
  show(runner_.viewAfterChange(key));
}

void DialogPlay::show(std::optional<std::string> view) {
  if (view) view_ = std::move(view);
}

}  // namespace quillon::workbench

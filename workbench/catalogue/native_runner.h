// The library's classes called directly, as a native build does. The target quillon_native_runner makes these what
// makeReportRunner and makeDialogRunner give.
#pragma once

#include "frame/module.h"
#include "workbench/catalogue/library_runner.h"

namespace quillon::workbench {

class NativeReportRunner final : public ReportRunner {
 public:
  // `platform` outlives the runner.
  explicit NativeReportRunner(EmbeddedPlatform& platform) : module_(platform) {}

  void run(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override;
  void execute(const Report& report, const std::shared_ptr<WorkbenchArgument>& argument) override;

 private:
  Module module_;
};

class NativeDialogRunner final : public DialogRunner {
 public:
  // `platform` outlives the runner.
  NativeDialogRunner(EmbeddedPlatform& platform, const Report& report, std::shared_ptr<FilterDialogObject> dialog)
      : module_(platform), control_(report.dialog->make(module_)), dialog_(std::move(dialog)) {}

  void init() override { control_->init(*dialog_); }
  void changed(const std::string& key) override { control_->changed(key, *dialog_); }
  bool click() override { return control_->click(*dialog_).accepted(); }
  std::optional<std::string> view() override { return control_->view(*dialog_); }
  std::optional<std::string> viewAfterChange(const std::string&) override { return view(); }

 private:
  Module module_;
  std::unique_ptr<CoreDialog> control_;
  std::shared_ptr<FilterDialogObject> dialog_;
};

}  // namespace quillon::workbench

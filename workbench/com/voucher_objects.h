// The voucher components as automation objects that Quillon.dll calls, and what a platform tells its user as objects for
// scripts. The objects take the calls, the ports of workbench/platform look the documents up.
#pragma once

#include <memory>
#include <string>

#include "automation/class_factory.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/voucher_components.h"

namespace quillon::workbench {

// Makes PellUniVch.clsUniVch, ZzPub.clsPub and ZzPz.clsPZ mean what `platform` makes, in this thread's apartment and
// for as long as it lives. `platform` outlives it, but what was made may live longer. Throws AutomationError.
class VoucherStandIn {
 public:
  explicit VoucherStandIn(EmbeddedPlatform& platform);

 private:
  automation::InProcessClass sourceVoucher_;
  automation::InProcessClass ledgerModule_;
  automation::InProcessClass ledgerVoucher_;
};

// PellUniVch.clsUniVch over a component. It takes the lists of arguments that the library passes.
automation::ComPtr<IDispatch> sourceVoucherObject(std::unique_ptr<SourceVoucherComponent> component);

// An opened document for scripts: Member (of the component that was called), Title, Heading(name) and Line(number,
// name), the values of its fields as texts, LineCount, and Text, all of it as it may be shown.
automation::ComPtr<IDispatch> openedVoucherObject(OpenedVoucher voucher, Language language);

// A message for scripts: Text (its default member) and Flags.
automation::ComPtr<IDispatch> messageObject(std::string text, int flags);

}  // namespace quillon::workbench

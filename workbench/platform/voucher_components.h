// Stand-ins for the platform's voucher components: they look up in the account what was asked for and hand it on as a
// document that can be shown.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/voucher_components.h"
#include "workbench/platform/account_lookup.h"
#include "workbench/platform/language.h"

namespace quillon::workbench {

// What a field or a column of a document is.
struct VoucherField {
  enum class Kind { text, quantity, money };

  std::string_view name;  // "cVouCode"
  Caption caption;
  Kind kind = Kind::text;
};

// A document as it was opened: heading and lines, values as Recordset::text gives them, empty for null.
struct OpenedVoucher {
  std::string member;  // of the component, by the name that the library calls: "ShowVoucher", "StartUpPz"
  Caption title;
  std::vector<std::pair<VoucherField, std::string>> heading;
  std::vector<VoucherField> columns;
  std::vector<std::vector<std::string>> lines;
};

using VoucherSink = std::function<void(const OpenedVoucher&)>;

// PellUniVch.clsUniVch. A document is the lines of ia_subsidiary that have the type and code of the line that was asked
// for, each by its cost items.
class WorkbenchSourceVouchers final : public SourceVoucherComponent {
 public:
  // Names of enumerations come in `language`. `sink` may be empty.
  WorkbenchSourceVouchers(Language language, VoucherSink sink) : language_(language), sink_(std::move(sink)) {}

  // The members below throw AutomationError (unexpected) before this one was called, and (fail) for a document that the
  // ledger does not have.
  void initialise(Login& login, Session& session, std::string_view systemVersion) override;
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) override;
  void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) override;
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session& session) override;
  // Reads through the session that it was initialised with, which must still be open.
  void showPriceAdjustment(const SourceVoucher& voucher) override;

 private:
  void show(std::string_view member, Session& session, const std::string& lineCondition, const SourceVoucher& voucher);

  Language language_;
  VoucherSink sink_;
  Session* session_ = nullptr;
};

// ZzPub.clsPub.
class WorkbenchLedgerModule final : public LedgerModule {
 public:
  explicit WorkbenchLedgerModule(SessionMaker makeSession) : makeSession_(std::move(makeSession)) {}

  void setBusiness(BusinessObject&) override {}
  void setLogin(Login&) override {}
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) override;

  // The ledger that was opened. Throws AutomationError (unexpected) before the module is initialised.
  Session& ledger() const;
  int year() const { return year_; }

 private:
  SessionMaker makeSession_;
  std::shared_ptr<Session> ledger_;
  int year_ = 0;
};

// ZzPz.clsPZ. A voucher is the entries of gl_AccVouch that belong together.
class WorkbenchLedgerVouchers final : public LedgerVoucherComponent {
 public:
  // `sink` may be empty.
  explicit WorkbenchLedgerVouchers(VoucherSink sink) : sink_(std::move(sink)) {}

  void setLogin(Login&) override {}
  // Throws AutomationError (invalid argument) when `module` is no WorkbenchLedgerModule; it must outlive this.
  void setModule(LedgerModule& module) override;
  // Throws AutomationError: unexpected without a module, fail for a voucher that the ledger does not have in its year.
  void open(const LedgerVoucher& voucher) override;

 private:
  VoucherSink sink_;
  WorkbenchLedgerModule* module_ = nullptr;
};

}  // namespace quillon::workbench

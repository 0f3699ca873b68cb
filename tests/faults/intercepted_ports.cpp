#include "tests/faults/intercepted_ports.h"

#include <utility>

namespace quillon::faults {

namespace {

// A port that passes each call on to the port that it owns, through the fault injector.
template <class Port, ObjectKind kind, class Owner = std::unique_ptr<Port>>
class Intercepted : public Port {
 public:
  Intercepted(FaultInjector& injector, Owner inner) : live_(injector, kind), inner_(std::move(inner)) {}

  Port& inner() const { return *inner_; }

 protected:
  FaultInjector& injector() const { return live_.injector(); }
  template <typename Action>
  decltype(auto) call(std::string_view member, Action action) const {
    return injector().call(member, std::move(action));
  }
  template <typename Action>
  decltype(auto) call(std::string_view member, std::string_view text, Action action) const {
    return injector().call(member, text, std::move(action));
  }

 private:
  LiveObject live_;
  Owner inner_;
};

// The port that an intercepted port owns.
template <class InterceptedPort, class Port>
Port& behind(Port& port) {
  return static_cast<InterceptedPort&>(port).inner();
}

class InterceptedRecordset final : public Intercepted<Recordset, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  bool eof() override {
    return call("Recordset.eof", [&] { return inner().eof(); });
  }
  void moveNext() override {
    call("Recordset.moveNext", [&] { inner().moveNext(); });
  }
  std::optional<std::string> text(int position) override {
    return call("Recordset.text", [&] { return inner().text(position); });
  }
  void close() override {
    call("Recordset.close", [&] { inner().close(); });
  }
};

class InterceptedSession final : public Intercepted<Session, ObjectKind::session, std::shared_ptr<Session>> {
 public:
  using Intercepted::Intercepted;

  void setCursorLocation(CursorLocation location) override {
    call("Session.setCursorLocation", [&] { inner().setCursorLocation(location); });
  }
  void setConnectionString(std::string_view text) override {
    call("Session.setConnectionString", [&] { inner().setConnectionString(text); });
  }
  void setConnectionTimeout(int seconds) override {
    call("Session.setConnectionTimeout", [&] { inner().setConnectionTimeout(seconds); });
  }
  void setCommandTimeout(int seconds) override {
    call("Session.setCommandTimeout", [&] { inner().setCommandTimeout(seconds); });
  }
  void open(std::string_view user, std::string_view password, int options) override {
    call("Session.open", [&] { inner().open(user, password, options); });
  }
  std::int64_t execute(std::string_view sql) override {
    return call("Session.execute", sql, [&] { return inner().execute(sql); });
  }
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override {
    return call("Session.query", sql, [&]() -> std::unique_ptr<Recordset> {
      return std::make_unique<InterceptedRecordset>(injector(), inner().query(sql, options));
    });
  }
  int state() override {
    return call("Session.state", [&] { return inner().state(); });
  }
  void close() override {
    call("Session.close", [&] { inner().close(); });
  }
};

class InterceptedLogin final : public Intercepted<Login, ObjectKind::login, std::shared_ptr<Login>> {
 public:
  using Intercepted::Intercepted;

  std::string accountConnection() override {
    return call("Login.accountConnection", [&] { return inner().accountConnection(); });
  }
  std::string password() override {
    return call("Login.password", [&] { return inner().password(); });
  }
  std::string accountCode() override {
    return call("Login.accountCode", [&] { return inner().accountCode(); });
  }
  std::string accountingYear() override {
    return call("Login.accountingYear", [&] { return inner().accountingYear(); });
  }
  std::string accountingYearText() override {
    return call("Login.accountingYearText", [&] { return inner().accountingYearText(); });
  }
  std::string languageRegion() override {
    return call("Login.languageRegion", [&] { return inner().languageRegion(); });
  }
  std::string languageId() override {
    return call("Login.languageId", [&] { return inner().languageId(); });
  }
  int currentPeriodYear() override {
    return call("Login.currentPeriodYear", [&] { return inner().currentPeriodYear(); });
  }
  std::string businessDate() override {
    return call("Login.businessDate", [&] { return inner().businessDate(); });
  }
  std::string moduleCode() override {
    return call("Login.moduleCode", [&] { return inner().moduleCode(); });
  }
  void setAuthString(std::string_view rights) override {
    call("Login.setAuthString", [&] { inner().setAuthString(rights); });
  }
};

class InterceptedFilterItem final : public Intercepted<FilterItem, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void setGroupToken(int token) override {
    call("FilterItem.setGroupToken", [&] { inner().setGroupToken(token); });
  }
  std::string name() override {
    return call("FilterItem.name", [&] { return inner().name(); });
  }
  std::string value() override {
    return call("FilterItem.value", [&] { return inner().value(); });
  }
  std::string value2() override {
    return call("FilterItem.value2", [&] { return inner().value2(); });
  }
  bool rangeInput() override {
    return call("FilterItem.rangeInput", [&] { return inner().rangeInput(); });
  }
  bool multipleSelection() override {
    return call("FilterItem.multipleSelection", [&] { return inner().multipleSelection(); });
  }
  std::string sqlText() override {
    return call("FilterItem.sqlText", [&] { return inner().sqlText(); });
  }
};

class InterceptedFilter final : public Intercepted<Filter, ObjectKind::filter, std::shared_ptr<Filter>> {
 public:
  using Intercepted::Intercepted;

  int count() override {
    return call("Filter.count", [&] { return inner().count(); });
  }
  std::unique_ptr<FilterItem> item(int position) override {
    return call("Filter.item", [&]() -> std::unique_ptr<FilterItem> {
      return std::make_unique<InterceptedFilterItem>(injector(), inner().item(position));
    });
  }
  std::unique_ptr<FilterItem> item(std::string_view key) override {
    return call("Filter.item", key, [&]() -> std::unique_ptr<FilterItem> {
      return std::make_unique<InterceptedFilterItem>(injector(), inner().item(key));
    });
  }
  std::string whereWithToken(int token) override {
    return call("Filter.whereWithToken", [&] { return inner().whereWithToken(token); });
  }
};

class InterceptedDataSource final : public Intercepted<DataSource, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void setType(int type) override {
    call("DataSource.setType", [&] { inner().setType(type); });
  }
  std::string resultTable() override {
    return call("DataSource.resultTable", [&] { return inner().resultTable(); });
  }
  void setResultTable(std::string_view name) override {
    call("DataSource.setResultTable", [&] { inner().setResultTable(name); });
  }
};

class InterceptedRow final : public Intercepted<ReportRow, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  std::string value(std::string_view column) override {
    return call("ReportRow.value", column, [&] { return inner().value(column); });
  }
};

class InterceptedArgument final : public ReportArgument {
 public:
  InterceptedArgument(FaultInjector& injector, ReportArgument& inner) : injector_(injector), inner_(inner) {}

  std::shared_ptr<Filter> rawFilter() override {
    return injector_.call("ReportArgument.rawFilter", [&]() -> std::shared_ptr<Filter> {
      return std::make_shared<InterceptedFilter>(injector_, inner_.rawFilter());
    });
  }
  std::shared_ptr<Login> login() override {
    return injector_.call("ReportArgument.login", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<InterceptedLogin>(injector_, inner_.login());
    });
  }
  std::shared_ptr<Login> filterLogin() override {
    return injector_.call("ReportArgument.filterLogin", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<InterceptedLogin>(injector_, inner_.filterLogin());
    });
  }
  std::unique_ptr<DataSource> dataSource() override {
    return injector_.call("ReportArgument.dataSource", [&]() -> std::unique_ptr<DataSource> {
      return std::make_unique<InterceptedDataSource>(injector_, inner_.dataSource());
    });
  }
  std::string action() override {
    return injector_.call("ReportArgument.action", [&] { return inner_.action(); });
  }
  std::unique_ptr<ReportRow> row() override {
    return injector_.call("ReportArgument.row", [&]() -> std::unique_ptr<ReportRow> {
      return std::make_unique<InterceptedRow>(injector_, inner_.row());
    });
  }
  std::string languageId() override {
    return injector_.call("ReportArgument.languageId", [&] { return inner_.languageId(); });
  }

 private:
  FaultInjector& injector_;
  ReportArgument& inner_;
};

class InterceptedPublicComponent final
    : public Intercepted<PublicComponent, ObjectKind::sharedComponent, std::shared_ptr<PublicComponent>> {
 public:
  using Intercepted::Intercepted;

  std::string accountInformation(std::string_view system, std::string_view name, Session& session) override {
    return call("PublicComponent.accountInformation", name,
                [&] { return inner().accountInformation(system, name, own(session)); });
  }
  int currentPeriodYear(Session& session) override {
    return call("PublicComponent.currentPeriodYear", [&] { return inner().currentPeriodYear(own(session)); });
  }
  int costItemStartMonth(std::string_view year, Session& session) override {
    return call("PublicComponent.costItemStartMonth", [&] { return inner().costItemStartMonth(year, own(session)); });
  }
  std::vector<std::string> usedYears(std::string_view accountCode, Session& session) override {
    return call("PublicComponent.usedYears", [&] { return inner().usedYears(accountCode, own(session)); });
  }
  bool costItemOpeningsFinished(int year, Session& session) override {
    return call("PublicComponent.costItemOpeningsFinished",
                [&] { return inner().costItemOpeningsFinished(year, own(session)); });
  }
  AccountingPeriod moduleStart(std::string_view system, Session& session) override {
    return call("PublicComponent.moduleStart", [&] { return inner().moduleStart(system, own(session)); });
  }
  PeriodDates datesOfPeriod(std::string_view accountCode, AccountingPeriod period, Session& session) override {
    return call("PublicComponent.datesOfPeriod",
                [&] { return inner().datesOfPeriod(accountCode, period, own(session)); });
  }
  AccountingPeriod periodOfDate(std::string_view date, Session& session) override {
    return call("PublicComponent.periodOfDate", [&] { return inner().periodOfDate(date, own(session)); });
  }
  bool periodSettled(AccountingPeriod period, Session& session) override {
    return call("PublicComponent.periodSettled", [&] { return inner().periodSettled(period, own(session)); });
  }
  std::string workstationName() override {
    return call("PublicComponent.workstationName", [&] { return inner().workstationName(); });
  }

 private:
  static Session& own(Session& session) { return behind<InterceptedSession>(session); }
};

class InterceptedResources final
    : public Intercepted<ResourceService, ObjectKind::sharedComponent, std::shared_ptr<ResourceService>> {
 public:
  using Intercepted::Intercepted;

  void takeLogin(Login& login) override {
    call("ResourceService.takeLogin", [&] { inner().takeLogin(behind<InterceptedLogin>(login)); });
  }
  std::string enumName(std::string_view type, std::string_view code) override {
    return call("ResourceService.enumName", [&] { return inner().enumName(type, code); });
  }
  std::string text(std::string_view key) override {
    return call("ResourceService.text", key, [&] { return inner().text(key); });
  }
  std::string formattedText(std::string_view key, const std::vector<std::string>& arguments) override {
    return call("ResourceService.formattedText", key, [&] { return inner().formattedText(key, arguments); });
  }
  void showMessage(std::string_view text, int flags) override {
    call("ResourceService.showMessage", text, [&] { inner().showMessage(text, flags); });
  }
};

class InterceptedUniqueNames final
    : public Intercepted<UniqueNameSource, ObjectKind::sharedComponent, std::shared_ptr<UniqueNameSource>> {
 public:
  using Intercepted::Intercepted;

  std::string next() override {
    return call("UniqueNameSource.next", [&] { return inner().next(); });
  }
};

class InterceptedDrillThroughHelper final
    : public Intercepted<DrillThroughHelper, ObjectKind::other, std::shared_ptr<DrillThroughHelper>> {
 public:
  using Intercepted::Intercepted;

  std::shared_ptr<Filter> filterFor(Login* login, bool drillThrough) override {
    return call("DrillThroughHelper.filterFor", [&]() -> std::shared_ptr<Filter> {
      return std::make_shared<InterceptedFilter>(
          injector(), inner().filterFor(login ? &behind<InterceptedLogin>(*login) : nullptr, drillThrough));
    });
  }
};

class InterceptedAccountLogin final : public Intercepted<AccountLogin, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void initialise(std::string_view connection, std::string_view passwordText) override {
    call("AccountLogin.initialise", [&] { inner().initialise(connection, passwordText); });
  }
};

class InterceptedOptions final : public Intercepted<AccountOptions, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  std::string costingBasis() override {
    return call("AccountOptions.costingBasis", [&] { return inner().costingBasis(); });
  }
  std::string inventoryTable() override {
    return call("AccountOptions.inventoryTable", [&] { return inner().inventoryTable(); });
  }
  std::string warehouseTable() override {
    return call("AccountOptions.warehouseTable", [&] { return inner().warehouseTable(); });
  }
};

class InterceptedEnvironment final : public Intercepted<InventoryEnvironment, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void setLogin(AccountLogin& login) override {
    call("InventoryEnvironment.setLogin", [&] { inner().setLogin(behind<InterceptedAccountLogin>(login)); });
  }
  std::string resultTable() override {
    return call("InventoryEnvironment.resultTable", [&] { return inner().resultTable(); });
  }
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) override {
    return call("InventoryEnvironment.accountOptions", [&]() -> std::unique_ptr<AccountOptions> {
      return std::make_unique<InterceptedOptions>(
          injector(), inner().accountOptions(behind<InterceptedAccountLogin>(login), resultTable));
    });
  }
};

class InterceptedSourceVouchers final : public Intercepted<SourceVoucherComponent, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void initialise(Login& login, Session& session, std::string_view systemVersion) override {
    call("SourceVoucherComponent.initialise", [&] {
      inner().initialise(behind<InterceptedLogin>(login), behind<InterceptedSession>(session), systemVersion);
    });
  }
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) override {
    call("SourceVoucherComponent.showVoucher",
         [&] { inner().showVoucher(group, voucher, behind<InterceptedSession>(session)); });
  }
  void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) override {
    call("SourceVoucherComponent.showCostItemAdjustment",
         [&] { inner().showCostItemAdjustment(voucher, behind<InterceptedSession>(session)); });
  }
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session& session) override {
    call("SourceVoucherComponent.showDifferences",
         [&] { inner().showDifferences(voucher, commercial, valuationMethod, behind<InterceptedSession>(session)); });
  }
  void showPriceAdjustment(const SourceVoucher& voucher) override {
    call("SourceVoucherComponent.showPriceAdjustment", [&] { inner().showPriceAdjustment(voucher); });
  }
};

class InterceptedLedgerModule final : public Intercepted<LedgerModule, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void setBusiness(BusinessObject& business) override {
    call("LedgerModule.setBusiness", [&] { inner().setBusiness(business); });
  }
  void setLogin(Login& login) override {
    call("LedgerModule.setLogin", [&] { inner().setLogin(behind<InterceptedLogin>(login)); });
  }
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) override {
    call("LedgerModule.initialise",
         [&] { inner().initialise(connection, passwordText, year, behind<InterceptedLogin>(login)); });
  }
};

class InterceptedLedgerVouchers final : public Intercepted<LedgerVoucherComponent, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  void setLogin(Login& login) override {
    call("LedgerVoucherComponent.setLogin", [&] { inner().setLogin(behind<InterceptedLogin>(login)); });
  }
  void setModule(LedgerModule& module) override {
    call("LedgerVoucherComponent.setModule", [&] { inner().setModule(behind<InterceptedLedgerModule>(module)); });
  }
  void open(const LedgerVoucher& voucher) override {
    call("LedgerVoucherComponent.open", [&] { inner().open(voucher); });
  }
};

class InterceptedDialogItem final : public Intercepted<DialogItem, ObjectKind::other> {
 public:
  using Intercepted::Intercepted;

  std::string name() override {
    return call("DialogItem.name", [&] { return inner().name(); });
  }
  std::string caption() override {
    return call("DialogItem.caption", [&] { return inner().caption(); });
  }
  std::string value() override {
    return call("DialogItem.value", [&] { return inner().value(); });
  }
  void setValue(std::string_view value) override {
    call("DialogItem.setValue", value, [&] { inner().setValue(value); });
  }
  void setBounds(std::string_view lower, std::string_view upper) override {
    call("DialogItem.setBounds", [&] { inner().setBounds(lower, upper); });
  }
  void setListText(std::string_view choices) override {
    call("DialogItem.setListText", [&] { inner().setListText(choices); });
  }
  void setListSource(std::string_view choicesOrStatement) override {
    call("DialogItem.setListSource", [&] { inner().setListSource(choicesOrStatement); });
  }
};

// The dialog's own connection, which is the dialog's to hold and not the library's.
class BorrowedSession final : public Session {
 public:
  explicit BorrowedSession(Session& inner) : inner_(inner) {}

  void setCursorLocation(CursorLocation location) override { inner_.setCursorLocation(location); }
  void setConnectionString(std::string_view text) override { inner_.setConnectionString(text); }
  void setConnectionTimeout(int seconds) override { inner_.setConnectionTimeout(seconds); }
  void setCommandTimeout(int seconds) override { inner_.setCommandTimeout(seconds); }
  void open(std::string_view user, std::string_view password, int options) override {
    inner_.open(user, password, options);
  }
  std::int64_t execute(std::string_view sql) override { return inner_.execute(sql); }
  std::unique_ptr<Recordset> query(std::string_view sql, const QueryOptions& options) override {
    return inner_.query(sql, options);
  }
  int state() override { return inner_.state(); }
  void close() override { inner_.close(); }

 private:
  Session& inner_;
};

class InterceptedDialog final : public FilterDialog {
 public:
  InterceptedDialog(FaultInjector& injector, FilterDialog& inner)
      : injector_(injector),
        inner_(inner),
        connection_(injector, std::make_shared<BorrowedSession>(inner.connection())) {}

  std::shared_ptr<Login> login() override {
    return injector_.call("FilterDialog.login", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<InterceptedLogin>(injector_, inner_.login());
    });
  }
  std::string identifier() override {
    return injector_.call("FilterDialog.identifier", [&] { return inner_.identifier(); });
  }
  Session& connection() override {
    return injector_.call("FilterDialog.connection", [&]() -> Session& { return connection_; });
  }
  int count() override {
    return injector_.call("FilterDialog.count", [&] { return inner_.count(); });
  }
  std::unique_ptr<DialogItem> item(int position) override {
    return injector_.call("FilterDialog.item", [&]() -> std::unique_ptr<DialogItem> {
      return std::make_unique<InterceptedDialogItem>(injector_, inner_.item(position));
    });
  }
  std::unique_ptr<DialogItem> item(std::string_view key) override {
    return injector_.call("FilterDialog.item", key, [&]() -> std::unique_ptr<DialogItem> {
      return std::make_unique<InterceptedDialogItem>(injector_, inner_.item(key));
    });
  }
  void setUnavailable(std::string_view key, bool flag) override {
    injector_.call("FilterDialog.setUnavailable", key, [&] { inner_.setUnavailable(key, flag); });
  }
  void setEnumeration(std::string_view key, std::string_view text) override {
    injector_.call("FilterDialog.setEnumeration", key, [&] { inner_.setEnumeration(key, text); });
  }
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override {
    injector_.call("FilterDialog.setLookupCondition", key,
                   [&] { inner_.setLookupCondition(key, secondArgument, condition); });
  }
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override {
    injector_.call("FilterDialog.setLookupConditionOfValue", key,
                   [&] { inner_.setLookupConditionOfValue(key, condition, valueIsEmpty); });
  }

 private:
  FaultInjector& injector_;
  FilterDialog& inner_;
  InterceptedSession connection_;
};

}  // namespace

std::shared_ptr<Session> InterceptedPlatform::createSession() {
  return injector_.call("Platform.createSession", [&]() -> std::shared_ptr<Session> {
    return std::make_shared<InterceptedSession>(injector_, inner_.createSession());
  });
}

std::shared_ptr<PublicComponent> InterceptedPlatform::createPublicComponent() {
  return injector_.call("Platform.createPublicComponent", [&]() -> std::shared_ptr<PublicComponent> {
    return std::make_shared<InterceptedPublicComponent>(injector_, inner_.createPublicComponent());
  });
}

std::shared_ptr<ResourceService> InterceptedPlatform::createResourceService() {
  return injector_.call("Platform.createResourceService", [&]() -> std::shared_ptr<ResourceService> {
    return std::make_shared<InterceptedResources>(injector_, inner_.createResourceService());
  });
}

std::shared_ptr<UniqueNameSource> InterceptedPlatform::createUniqueNameSource() {
  return injector_.call("Platform.createUniqueNameSource", [&]() -> std::shared_ptr<UniqueNameSource> {
    return std::make_shared<InterceptedUniqueNames>(injector_, inner_.createUniqueNameSource());
  });
}

std::shared_ptr<DrillThroughHelper> InterceptedPlatform::createDrillThroughHelper() {
  return injector_.call("Platform.createDrillThroughHelper", [&]() -> std::shared_ptr<DrillThroughHelper> {
    return std::make_shared<InterceptedDrillThroughHelper>(injector_, inner_.createDrillThroughHelper());
  });
}

std::string InterceptedPlatform::namingNumber() {
  return injector_.call("Platform.namingNumber",
                        [&] { return namingNumber_.empty() ? inner_.namingNumber() : namingNumber_; });
}

std::int32_t InterceptedPlatform::workTableNumber() {
  return injector_.call("Platform.workTableNumber", [&] { return inner_.workTableNumber(); });
}

std::unique_ptr<AccountLogin> InterceptedPlatform::createAccountLogin() {
  return injector_.call("Platform.createAccountLogin", [&]() -> std::unique_ptr<AccountLogin> {
    return std::make_unique<InterceptedAccountLogin>(injector_, inner_.createAccountLogin());
  });
}

std::unique_ptr<InventoryEnvironment> InterceptedPlatform::createInventoryEnvironment() {
  return injector_.call("Platform.createInventoryEnvironment", [&]() -> std::unique_ptr<InventoryEnvironment> {
    return std::make_unique<InterceptedEnvironment>(injector_, inner_.createInventoryEnvironment());
  });
}

std::unique_ptr<SourceVoucherComponent> InterceptedPlatform::createSourceVoucherComponent() {
  return injector_.call("Platform.createSourceVoucherComponent", [&]() -> std::unique_ptr<SourceVoucherComponent> {
    return std::make_unique<InterceptedSourceVouchers>(injector_, inner_.createSourceVoucherComponent());
  });
}

std::unique_ptr<LedgerModule> InterceptedPlatform::createLedgerModule() {
  return injector_.call("Platform.createLedgerModule", [&]() -> std::unique_ptr<LedgerModule> {
    return std::make_unique<InterceptedLedgerModule>(injector_, inner_.createLedgerModule());
  });
}

std::unique_ptr<LedgerVoucherComponent> InterceptedPlatform::createLedgerVoucherComponent() {
  return injector_.call("Platform.createLedgerVoucherComponent", [&]() -> std::unique_ptr<LedgerVoucherComponent> {
    return std::make_unique<InterceptedLedgerVouchers>(injector_, inner_.createLedgerVoucherComponent());
  });
}

std::unique_ptr<ReportArgument> intercepted(FaultInjector& injector, ReportArgument& inner) {
  return std::make_unique<InterceptedArgument>(injector, inner);
}

std::unique_ptr<FilterDialog> intercepted(FaultInjector& injector, FilterDialog& inner) {
  return std::make_unique<InterceptedDialog>(injector, inner);
}

}  // namespace quillon::faults

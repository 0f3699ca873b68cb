#include "tests/faults/watched_ports.h"

#include <utility>

namespace quillon::faults {

namespace {

// A port in front of the one that it owns.
template <class Port, Thing thing, class Owner = std::unique_ptr<Port>>
class Watched : public Port {
 public:
  Watched(Outside& outside, Owner inner) : held_(outside, thing), inner_(std::move(inner)) {}

  Port& inner() const { return *inner_; }

 protected:
  Outside& outside() const { return held_.outside(); }
  template <typename Action>
  decltype(auto) call(std::string_view member, Action action) const {
    return outside().call(member, std::move(action));
  }
  template <typename Action>
  decltype(auto) call(std::string_view member, std::string_view text, Action action) const {
    return outside().call(member, text, std::move(action));
  }

 private:
  Held held_;
  Owner inner_;
};

// The port behind one of these.
template <class WatchedPort, class Port>
Port& behind(Port& port) {
  return static_cast<WatchedPort&>(port).inner();
}

class WatchedRecordset final : public Watched<Recordset, Thing::other> {
 public:
  using Watched::Watched;

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

class WatchedSession final : public Watched<Session, Thing::session, std::shared_ptr<Session>> {
 public:
  using Watched::Watched;

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
      return std::make_unique<WatchedRecordset>(outside(), inner().query(sql, options));
    });
  }
  int state() override {
    return call("Session.state", [&] { return inner().state(); });
  }
  void close() override {
    call("Session.close", [&] { inner().close(); });
  }
};

class WatchedLogin final : public Watched<Login, Thing::login, std::shared_ptr<Login>> {
 public:
  using Watched::Watched;

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

class WatchedFilterItem final : public Watched<FilterItem, Thing::other> {
 public:
  using Watched::Watched;

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

class WatchedFilter final : public Watched<Filter, Thing::filter, std::shared_ptr<Filter>> {
 public:
  using Watched::Watched;

  int count() override {
    return call("Filter.count", [&] { return inner().count(); });
  }
  std::unique_ptr<FilterItem> item(int position) override {
    return call("Filter.item", [&]() -> std::unique_ptr<FilterItem> {
      return std::make_unique<WatchedFilterItem>(outside(), inner().item(position));
    });
  }
  std::unique_ptr<FilterItem> item(std::string_view key) override {
    return call("Filter.item", key, [&]() -> std::unique_ptr<FilterItem> {
      return std::make_unique<WatchedFilterItem>(outside(), inner().item(key));
    });
  }
  std::string whereWithToken(int token) override {
    return call("Filter.whereWithToken", [&] { return inner().whereWithToken(token); });
  }
};

class WatchedDataSource final : public Watched<DataSource, Thing::other> {
 public:
  using Watched::Watched;

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

class WatchedRow final : public Watched<ReportRow, Thing::other> {
 public:
  using Watched::Watched;

  std::string value(std::string_view column) override {
    return call("ReportRow.value", column, [&] { return inner().value(column); });
  }
};

class WatchedArgument final : public ReportArgument {
 public:
  WatchedArgument(Outside& outside, ReportArgument& inner) : outside_(outside), inner_(inner) {}

  std::shared_ptr<Filter> rawFilter() override {
    return outside_.call("ReportArgument.rawFilter", [&]() -> std::shared_ptr<Filter> {
      return std::make_shared<WatchedFilter>(outside_, inner_.rawFilter());
    });
  }
  std::shared_ptr<Login> login() override {
    return outside_.call("ReportArgument.login", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<WatchedLogin>(outside_, inner_.login());
    });
  }
  std::shared_ptr<Login> filterLogin() override {
    return outside_.call("ReportArgument.filterLogin", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<WatchedLogin>(outside_, inner_.filterLogin());
    });
  }
  std::unique_ptr<DataSource> dataSource() override {
    return outside_.call("ReportArgument.dataSource", [&]() -> std::unique_ptr<DataSource> {
      return std::make_unique<WatchedDataSource>(outside_, inner_.dataSource());
    });
  }
  std::string action() override {
    return outside_.call("ReportArgument.action", [&] { return inner_.action(); });
  }
  std::unique_ptr<ReportRow> row() override {
    return outside_.call("ReportArgument.row", [&]() -> std::unique_ptr<ReportRow> {
      return std::make_unique<WatchedRow>(outside_, inner_.row());
    });
  }
  std::string languageId() override {
    return outside_.call("ReportArgument.languageId", [&] { return inner_.languageId(); });
  }

 private:
  Outside& outside_;
  ReportArgument& inner_;
};

class WatchedPublicComponent final
    : public Watched<PublicComponent, Thing::sharedComponent, std::shared_ptr<PublicComponent>> {
 public:
  using Watched::Watched;

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
  static Session& own(Session& session) { return behind<WatchedSession>(session); }
};

class WatchedResources final
    : public Watched<ResourceService, Thing::sharedComponent, std::shared_ptr<ResourceService>> {
 public:
  using Watched::Watched;

  void takeLogin(Login& login) override {
    call("ResourceService.takeLogin", [&] { inner().takeLogin(behind<WatchedLogin>(login)); });
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

class WatchedUniqueNames final
    : public Watched<UniqueNameSource, Thing::sharedComponent, std::shared_ptr<UniqueNameSource>> {
 public:
  using Watched::Watched;

  std::string next() override {
    return call("UniqueNameSource.next", [&] { return inner().next(); });
  }
};

class WatchedDrillThroughHelper final
    : public Watched<DrillThroughHelper, Thing::other, std::shared_ptr<DrillThroughHelper>> {
 public:
  using Watched::Watched;

  std::shared_ptr<Filter> filterFor(Login& login, bool drillThrough) override {
    return call("DrillThroughHelper.filterFor", [&]() -> std::shared_ptr<Filter> {
      return std::make_shared<WatchedFilter>(outside(), inner().filterFor(behind<WatchedLogin>(login), drillThrough));
    });
  }
};

class WatchedAccountLogin final : public Watched<AccountLogin, Thing::other> {
 public:
  using Watched::Watched;

  void initialise(std::string_view connection, std::string_view passwordText) override {
    call("AccountLogin.initialise", [&] { inner().initialise(connection, passwordText); });
  }
};

class WatchedOptions final : public Watched<AccountOptions, Thing::other> {
 public:
  using Watched::Watched;

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

class WatchedEnvironment final : public Watched<InventoryEnvironment, Thing::other> {
 public:
  using Watched::Watched;

  void setLogin(AccountLogin& login) override {
    call("InventoryEnvironment.setLogin", [&] { inner().setLogin(behind<WatchedAccountLogin>(login)); });
  }
  std::string resultTable() override {
    return call("InventoryEnvironment.resultTable", [&] { return inner().resultTable(); });
  }
  std::unique_ptr<AccountOptions> accountOptions(AccountLogin& login, std::string_view resultTable) override {
    return call("InventoryEnvironment.accountOptions", [&]() -> std::unique_ptr<AccountOptions> {
      return std::make_unique<WatchedOptions>(outside(),
                                              inner().accountOptions(behind<WatchedAccountLogin>(login), resultTable));
    });
  }
};

class WatchedSourceVouchers final : public Watched<SourceVoucherComponent, Thing::other> {
 public:
  using Watched::Watched;

  void initialise(Login& login, Session& session, std::string_view systemVersion) override {
    call("SourceVoucherComponent.initialise",
         [&] { inner().initialise(behind<WatchedLogin>(login), behind<WatchedSession>(session), systemVersion); });
  }
  void showVoucher(VoucherGroup group, const SourceVoucher& voucher, Session& session) override {
    call("SourceVoucherComponent.showVoucher",
         [&] { inner().showVoucher(group, voucher, behind<WatchedSession>(session)); });
  }
  void showCostItemAdjustment(const SourceVoucher& voucher, Session& session) override {
    call("SourceVoucherComponent.showCostItemAdjustment",
         [&] { inner().showCostItemAdjustment(voucher, behind<WatchedSession>(session)); });
  }
  void showDifferences(const SourceVoucher& voucher, bool commercial, std::string_view valuationMethod,
                       Session& session) override {
    call("SourceVoucherComponent.showDifferences",
         [&] { inner().showDifferences(voucher, commercial, valuationMethod, behind<WatchedSession>(session)); });
  }
  void showPriceAdjustment(const SourceVoucher& voucher) override {
    call("SourceVoucherComponent.showPriceAdjustment", [&] { inner().showPriceAdjustment(voucher); });
  }
};

class WatchedLedgerModule final : public Watched<LedgerModule, Thing::other> {
 public:
  using Watched::Watched;

  void setBusiness(BusinessObject& business) override {
    call("LedgerModule.setBusiness", [&] { inner().setBusiness(business); });
  }
  void setLogin(Login& login) override {
    call("LedgerModule.setLogin", [&] { inner().setLogin(behind<WatchedLogin>(login)); });
  }
  void initialise(std::string_view connection, std::string_view passwordText, int year, Login& login) override {
    call("LedgerModule.initialise",
         [&] { inner().initialise(connection, passwordText, year, behind<WatchedLogin>(login)); });
  }
};

class WatchedLedgerVouchers final : public Watched<LedgerVoucherComponent, Thing::other> {
 public:
  using Watched::Watched;

  void setLogin(Login& login) override {
    call("LedgerVoucherComponent.setLogin", [&] { inner().setLogin(behind<WatchedLogin>(login)); });
  }
  void setModule(LedgerModule& module) override {
    call("LedgerVoucherComponent.setModule", [&] { inner().setModule(behind<WatchedLedgerModule>(module)); });
  }
  void open(const LedgerVoucher& voucher) override {
    call("LedgerVoucherComponent.open", [&] { inner().open(voucher); });
  }
};

class WatchedDialogItem final : public Watched<DialogItem, Thing::other> {
 public:
  using Watched::Watched;

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

class WatchedDialog final : public FilterDialog {
 public:
  WatchedDialog(Outside& outside, FilterDialog& inner)
      : outside_(outside), inner_(inner), connection_(outside, std::make_shared<BorrowedSession>(inner.connection())) {}

  std::shared_ptr<Login> login() override {
    return outside_.call("FilterDialog.login", [&]() -> std::shared_ptr<Login> {
      return std::make_shared<WatchedLogin>(outside_, inner_.login());
    });
  }
  std::string identifier() override {
    return outside_.call("FilterDialog.identifier", [&] { return inner_.identifier(); });
  }
  Session& connection() override {
    return outside_.call("FilterDialog.connection", [&]() -> Session& { return connection_; });
  }
  int count() override {
    return outside_.call("FilterDialog.count", [&] { return inner_.count(); });
  }
  std::unique_ptr<DialogItem> item(int position) override {
    return outside_.call("FilterDialog.item", [&]() -> std::unique_ptr<DialogItem> {
      return std::make_unique<WatchedDialogItem>(outside_, inner_.item(position));
    });
  }
  std::unique_ptr<DialogItem> item(std::string_view key) override {
    return outside_.call("FilterDialog.item", key, [&]() -> std::unique_ptr<DialogItem> {
      return std::make_unique<WatchedDialogItem>(outside_, inner_.item(key));
    });
  }
  void setUnavailable(std::string_view key, bool flag) override {
    outside_.call("FilterDialog.setUnavailable", key, [&] { inner_.setUnavailable(key, flag); });
  }
  void setEnumeration(std::string_view key, std::string_view text) override {
    outside_.call("FilterDialog.setEnumeration", key, [&] { inner_.setEnumeration(key, text); });
  }
  void setLookupCondition(std::string_view key, std::string_view secondArgument, std::string_view condition) override {
    outside_.call("FilterDialog.setLookupCondition", key,
                  [&] { inner_.setLookupCondition(key, secondArgument, condition); });
  }
  void setLookupConditionOfValue(std::string_view key, std::string_view condition, bool valueIsEmpty) override {
    outside_.call("FilterDialog.setLookupConditionOfValue", key,
                  [&] { inner_.setLookupConditionOfValue(key, condition, valueIsEmpty); });
  }

 private:
  Outside& outside_;
  FilterDialog& inner_;
  WatchedSession connection_;
};

}  // namespace

std::shared_ptr<Session> WatchedPlatform::createSession() {
  return outside_.call("Platform.createSession", [&]() -> std::shared_ptr<Session> {
    return std::make_shared<WatchedSession>(outside_, inner_.createSession());
  });
}

std::shared_ptr<PublicComponent> WatchedPlatform::createPublicComponent() {
  return outside_.call("Platform.createPublicComponent", [&]() -> std::shared_ptr<PublicComponent> {
    return std::make_shared<WatchedPublicComponent>(outside_, inner_.createPublicComponent());
  });
}

std::shared_ptr<ResourceService> WatchedPlatform::createResourceService() {
  return outside_.call("Platform.createResourceService", [&]() -> std::shared_ptr<ResourceService> {
    return std::make_shared<WatchedResources>(outside_, inner_.createResourceService());
  });
}

std::shared_ptr<UniqueNameSource> WatchedPlatform::createUniqueNameSource() {
  return outside_.call("Platform.createUniqueNameSource", [&]() -> std::shared_ptr<UniqueNameSource> {
    return std::make_shared<WatchedUniqueNames>(outside_, inner_.createUniqueNameSource());
  });
}

std::shared_ptr<DrillThroughHelper> WatchedPlatform::createDrillThroughHelper() {
  return outside_.call("Platform.createDrillThroughHelper", [&]() -> std::shared_ptr<DrillThroughHelper> {
    return std::make_shared<WatchedDrillThroughHelper>(outside_, inner_.createDrillThroughHelper());
  });
}

std::string WatchedPlatform::namingNumber() {
  return outside_.call("Platform.namingNumber",
                       [&] { return namingNumber_.empty() ? inner_.namingNumber() : namingNumber_; });
}

std::int32_t WatchedPlatform::workTableNumber() {
  return outside_.call("Platform.workTableNumber", [&] { return inner_.workTableNumber(); });
}

std::unique_ptr<AccountLogin> WatchedPlatform::createAccountLogin() {
  return outside_.call("Platform.createAccountLogin", [&]() -> std::unique_ptr<AccountLogin> {
    return std::make_unique<WatchedAccountLogin>(outside_, inner_.createAccountLogin());
  });
}

std::unique_ptr<InventoryEnvironment> WatchedPlatform::createInventoryEnvironment() {
  return outside_.call("Platform.createInventoryEnvironment", [&]() -> std::unique_ptr<InventoryEnvironment> {
    return std::make_unique<WatchedEnvironment>(outside_, inner_.createInventoryEnvironment());
  });
}

std::unique_ptr<SourceVoucherComponent> WatchedPlatform::createSourceVoucherComponent() {
  return outside_.call("Platform.createSourceVoucherComponent", [&]() -> std::unique_ptr<SourceVoucherComponent> {
    return std::make_unique<WatchedSourceVouchers>(outside_, inner_.createSourceVoucherComponent());
  });
}

std::unique_ptr<LedgerModule> WatchedPlatform::createLedgerModule() {
  return outside_.call("Platform.createLedgerModule", [&]() -> std::unique_ptr<LedgerModule> {
    return std::make_unique<WatchedLedgerModule>(outside_, inner_.createLedgerModule());
  });
}

std::unique_ptr<LedgerVoucherComponent> WatchedPlatform::createLedgerVoucherComponent() {
  return outside_.call("Platform.createLedgerVoucherComponent", [&]() -> std::unique_ptr<LedgerVoucherComponent> {
    return std::make_unique<WatchedLedgerVouchers>(outside_, inner_.createLedgerVoucherComponent());
  });
}

std::unique_ptr<ReportArgument> watched(Outside& outside, ReportArgument& inner) {
  return std::make_unique<WatchedArgument>(outside, inner);
}

std::unique_ptr<FilterDialog> watched(Outside& outside, FilterDialog& inner) {
  return std::make_unique<WatchedDialog>(outside, inner);
}

}  // namespace quillon::faults

// The workbench's platform as automation objects: what the host platform hands to Quillon.dll (argument, login, data
// source, filter) and what the library creates by ProgID. Thin wrappers; the objects of workbench/platform do the work.
// Member names are those of component/platform_bindings.h.
#pragma once

#include <memory>
#include <optional>

#include "automation/class_factory.h"
#include "automation/dispatch_object.h"
#include "workbench/com/ado.h"
#include "workbench/com/environment_objects.h"
#include "workbench/com/voucher_objects.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/embedded_platform.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::workbench {

// The argument object e: rawFilter, Login, LoginObj, DataSource (Type, SQL), Action (read and written), RelateData,
// LangID. With `dialog`, which is on the argument's own filter, rawFilter is the dialog's filter object as well; an
// argument without a filter has none. RelateData gives the argument's row by GetData(column), or the one that it was
// told by TakeRow(recordset): the recordset's current row.
automation::ComPtr<IDispatch> argumentObject(std::shared_ptr<WorkbenchArgument> argument,
                                             std::shared_ptr<FilterDialogObject> dialog = nullptr);

// The filter object: FilterList, GetWhereWithToken(token). FilterList(position or key) is an item: Name, varValue,
// varValue2, strSqlString and LngGrouptoken read and written, RangeInput and IsMultSel read. An item stands for its
// varValue, so FilterList(key) = value sets it.
automation::ComPtr<IDispatch> filterDispatch(std::shared_ptr<FilterObject> filter);

// The filter object with its dialog side: Login, FilterId, DialogConnection, SetItemUnavailable(key, flag),
// SetItemEnumeration(key, text), SetItemLookupCondition(key, "", condition), SetItemLookupConditionOfValue(key,
// condition, flag); its items also have Caption, ListText and ListSource. What the dialog made of an item is read from
// it: Available, Choices (as SetItemEnumeration takes them), LookupCondition.
automation::ComPtr<IDispatch> dialogDispatch(std::shared_ptr<FilterDialogObject> dialog);

// The login object.
automation::ComPtr<IDispatch> loginObject(std::shared_ptr<Login> login);

// Makes, in this thread's apartment and for as long as it lives, ADO's ProgIDs mean the embedded account and the
// platform's ProgIDs (IA_Pub.ClsIAPub, resource and message service, naming, unique names, drill-through helper,
// environment, voucher components) mean the components that `platform` makes. Neither the registry nor another process sees any of it, and a platform that is
// installed on the machine is left alone.
class PlatformStandIn {
 public:
  // `platform` outlives the stand-in. What was made may live longer, for Quillon.dll keeps components while it is
  // loaded; it does not refer to `platform`. `monitor` watches every session that is opened; it may be null. Throws
  // AutomationError.
  PlatformStandIn(EmbeddedPlatform& platform, const std::shared_ptr<SessionMonitor>& monitor);
  // For an account on a server: ADO's ProgIDs keep meaning the ADO that the machine has.
  explicit PlatformStandIn(EmbeddedPlatform& platform);

 private:
  std::optional<EmbeddedAdo> ado_;
  automation::InProcessClass publicComponent_;
  automation::InProcessClass resourceService_;
  automation::InProcessClass naming_;
  automation::InProcessClass uniqueNames_;
  automation::InProcessClass drillThrough_;
  EnvironmentStandIn environment_;
  VoucherStandIn vouchers_;
};

}  // namespace quillon::workbench

// The filter and its dialog (workbench/platform) as the automation objects that Quillon.dll calls: the objects take the
// calls, the ports do the work. Member names are those of component/platform_bindings.h.
#pragma once

#include <memory>

#include "automation/com_ptr.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::workbench {

// The filter object: FilterList, GetWhereWithToken(token). FilterList(position or key) is an item: Name, varValue,
// varValue2, strSqlString and LngGrouptoken read and written, RangeInput and IsMultSel read. An item stands for its
// varValue, so FilterList(key) = value sets it.
automation::ComPtr<IDispatch> filterObject(std::shared_ptr<FilterObject> filter);

// The filter object with its dialog side: Login, FilterId, DialogConnection, SetItemUnavailable(key, flag),
// SetItemEnumeration(key, text), SetItemLookupCondition(key, "", condition), SetItemLookupConditionOfValue(key,
// condition, flag); its items also have Caption, ListText and ListSource. What the dialog made of an item is read from
// it: Available, Choices (as SetItemEnumeration takes them), LookupCondition.
automation::ComPtr<IDispatch> dialogObject(std::shared_ptr<FilterDialogObject> dialog);

// The filter object of an argument: as filterObject, or as dialogObject when `dialog` is not null; Login is `login` then.
automation::ComPtr<IDispatch> argumentFilterObject(std::shared_ptr<FilterObject> filter,
                                                   std::shared_ptr<FilterDialogObject> dialog,
                                                   automation::ComPtr<IDispatch> login);

// The drill-through helper. Gives an empty filter: nothing in the workbench is drilled through to from a summary report.
automation::ComPtr<IUnknown> drillThroughObject();

}  // namespace quillon::workbench

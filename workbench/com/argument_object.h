// The argument object e (workbench/platform) as the automation object that Quillon.dll calls: the object takes the calls,
// the port does the work. Member names are those of component/platform_bindings.h.
#pragma once

#include <memory>

#include "automation/com_ptr.h"
#include "workbench/platform/argument.h"
#include "workbench/platform/filter_dialog_object.h"

namespace quillon::workbench {

// The argument object e: rawFilter, Login, LoginObj, DataSource (Type, SQL), Action (read and written), RelateData,
// LangID. With `dialog`, which is on the argument's own filter, rawFilter is the dialog's filter object as well; an
// argument without a filter has none. RelateData gives the argument's row by GetData(column), or the
// current row of a recordset that TakeRow(recordset) has read.
automation::ComPtr<IDispatch> argumentObject(std::shared_ptr<WorkbenchArgument> argument,
                                             std::shared_ptr<FilterDialogObject> dialog = nullptr);

}  // namespace quillon::workbench

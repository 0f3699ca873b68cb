#include "component/platform_adapter.h"

#include <utility>

#include "automation/class_lookup.h"
#include "component/ado_session.h"
#include "component/environment_adapters.h"
#include "component/filter_adapters.h"
#include "component/platform_bindings.h"
#include "component/public_component_adapter.h"
#include "component/resource_service_adapter.h"
#include "component/voucher_adapters.h"
#include "component/work_table_names.h"

namespace quillon::component {

using automation::createObject;
using automation::LateBound;
using automation::toInteger;
using automation::toText;
using automation::tryCreateObject;

std::shared_ptr<Session> LateBoundPlatform::createSession() {
  return std::make_shared<AdoSession>(createObject(bindings::connection));
}

std::shared_ptr<PublicComponent> LateBoundPlatform::createPublicComponent() {
  return std::make_shared<LateBoundPublicComponent>(createObject(bindings::publicComponent));
}

std::shared_ptr<ResourceService> LateBoundPlatform::createResourceService() {
  if (const LateBound service = tryCreateObject(bindings::resourceService))
    return std::make_shared<EarlyBoundResourceService>(service);
  return std::make_shared<KeysAsTexts>();
}

std::shared_ptr<UniqueNameSource> LateBoundPlatform::createUniqueNameSource() {
  if (LateBound source = tryCreateObject(bindings::uniqueNames))
    return std::make_shared<LateBoundUniqueNameSource>(std::move(source));
  return std::make_shared<BuiltInUniqueNames>();
}

std::shared_ptr<DrillThroughHelper> LateBoundPlatform::createDrillThroughHelper() {
  return std::make_shared<LateBoundDrillThroughHelper>(createObject(bindings::drillThrough));
}

std::string LateBoundPlatform::namingNumber() {
  if (const LateBound naming = tryCreateObject(bindings::naming))
    return toText(naming.getById(bindings::namingNumber, L"the naming number"));
  return builtInNamingNumber();
}

std::int32_t LateBoundPlatform::workTableNumber() {
  if (const LateBound number = tryCreateObject(bindings::workTableNumber))
    return toInteger(number.getById(DISPID_VALUE, L"the work table's number"));
  return builtInWorkTableNumber();
}

std::unique_ptr<AccountLogin> LateBoundPlatform::createAccountLogin() {
  return std::make_unique<LateBoundAccountLogin>(createObject(bindings::accountLogin));
}

std::unique_ptr<InventoryEnvironment> LateBoundPlatform::createInventoryEnvironment() {
  return std::make_unique<LateBoundInventoryEnvironment>(createObject(bindings::environment));
}

std::unique_ptr<SourceVoucherComponent> LateBoundPlatform::createSourceVoucherComponent() {
  return std::make_unique<LateBoundSourceVoucherComponent>(createObject(bindings::sourceVoucher));
}

std::unique_ptr<LedgerModule> LateBoundPlatform::createLedgerModule() {
  return std::make_unique<LateBoundLedgerModule>(createObject(bindings::ledgerModule));
}

std::unique_ptr<LedgerVoucherComponent> LateBoundPlatform::createLedgerVoucherComponent() {
  return std::make_unique<LateBoundLedgerVoucherComponent>(createObject(bindings::ledgerVoucher));
}

}  // namespace quillon::component

#include "component/work_table_names.h"

#include <array>
#include <cstdio>

#include "automation/errors.h"
#include "component/platform_bindings.h"
#include "frame/automation_error.h"

namespace quillon::component {

using automation::systemMessage;

namespace {

GUID newGuid() {
  GUID id{};
  const HRESULT code = CoCreateGuid(&id);
  if (FAILED(code)) throw AutomationError(code, "Quillon", "No unique name can be made: " + systemMessage(code));
  return id;
}

}  // namespace

std::string LateBoundUniqueNameSource::next() {
  return source_.text(bindings::uniqueName);
}

std::string BuiltInUniqueNames::next() {
  const GUID id = newGuid();
  std::array<char, 40> text{};
  const int length = std::snprintf(text.data(), text.size(), "%08lx%04x%04x%02x%02x%02x%02x%02x%02x%02x%02x",
                                   static_cast<unsigned long>(id.Data1), id.Data2, id.Data3, id.Data4[0], id.Data4[1],
                                   id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string builtInNamingNumber() {
  return std::to_string(newGuid().Data1);
}

std::int32_t builtInWorkTableNumber() {
  return static_cast<std::int32_t>(newGuid().Data1 >> 1U);
}

}  // namespace quillon::component

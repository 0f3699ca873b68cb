// What the tests of reports and dialogs through COM say of the calls that a fake platform records.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "tests/component/fake_platform.h"

namespace quillon::component::test {

using Calls = std::vector<std::string>;

constexpr HRESULT objectNotSet = static_cast<HRESULT>(0x800A005BU);  // Basic's error 91

inline Calls joined(Calls first, const Calls& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// What every dialog with a connection of its own starts with.
inline Calls connectionAndRights() {
  return {"new ADODB.Connection",
          "Filter.Login",
          "Connection.CursorLocation = 3",
          "Login.OrvDbName",
          "Connection.ConnectionString = \"Provider=Fake;Data Source=account\"",
          "Connection.ConnectionTimeout = 0",
          "Connection.CommandTimeout = 0",
          "Connection.Open(\"\", \"\", \"\", -1)",
          "new OrvPlatform.ResourceService",
          "ResourceService.FormatText(<Login>, missing)",
          "new IA_Pub.ClsIAPub",
          "Login.AuthString = \"department=False,inventory=False,warehouse=False\""};
}

// The calls that begin with one of `names`: those on these objects, or of these members.
inline Calls callsOn(const Recorder& recorder, const std::vector<std::string>& names) {
  Calls found;
  std::ranges::copy_if(recorder.calls, std::back_inserter(found), [&names](const std::string& call) {
    return std::ranges::any_of(names, [&call](const std::string& name) { return call.starts_with(name); });
  });
  return found;
}

// The calls on the dialog that change it.
inline Calls changes(const Recorder& recorder) {
  Calls told;
  std::ranges::copy_if(recorder.calls, std::back_inserter(told), [](const std::string& call) {
    return call.starts_with("Filter.Set") || (call.starts_with("Item.") && call.find(" = ") != std::string::npos);
  });
  return told;
}

}  // namespace quillon::component::test

// The border between Quillon.dll and the automation objects that it calls. A proxy stands in front of every object that
// goes into the library and of every one that comes out of a call; a class object stands in front of every class that
// the library creates. Each call through them is counted, and the one that a test names fails in its stead.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "automation/class_factory.h"
#include "automation/com_ptr.h"
#include "automation/win32.h"
#include "workbench/platform/embedded_platform.h"

namespace quillon::faults {

// How the library reached an object.
enum class Kind {
  create,  // CoCreateInstance: its failure is a code
  find,    // GetIDsOfNames: its failure is a code
  invoke,  // Invoke, or a slot of the resource service: its failure has source and description
};

struct BorderCall {
  Kind kind = Kind::invoke;
  std::string object;  // a ProgID, or the member that gave the object: "DataSource"
  std::string member;  // "SQL"; empty for a creation

  friend bool operator==(const BorderCall&, const BorderCall&) = default;
  // For failing tests.
  std::string shown() const {
    return (kind == Kind::create ? "new " : kind == Kind::find ? "look up " : "") + object + "." + member;
  }
};

class Border {
 public:
  // What a failing call says; no code and no source that anything else here uses.
  static constexpr HRESULT failure = static_cast<HRESULT>(0x80043A07U);
  static constexpr const char* source = "Outside";
  static std::string description(std::size_t call) { return "call " + std::to_string(call) + " was refused"; }

  // Counts from 1 from here on, and fails call `failAt`; 0 fails none.
  void count(std::size_t failAt);
  void rest() { counting_ = false; }
  const std::vector<BorderCall>& calls() const { return calls_; }

  // Counts a call; true when it is the one to fail. What the outside itself calls meanwhile is not the library's.
  bool fails(BorderCall call);
  bool inside() const { return depth_ > 0; }

  // How many proxies the library holds.
  int held = 0;

  // While one lives, the outside works.
  class Inside {
   public:
    explicit Inside(Border& border) : depth_(border.depth_) { ++depth_; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
    ~Inside() { --depth_; }

   private:
    int& depth_;
  };

 private:
  std::vector<BorderCall> calls_;
  std::size_t failAt_ = 0;
  bool counting_ = false;
  int depth_ = 0;
};

// A proxy in front of `inner`, called `name`. `border` outlives it.
automation::ComPtr<IDispatch> watched(Border& border, std::string name, automation::ComPtr<IDispatch> inner);

// Makes, in this thread's apartment and for as long as it lives, the ProgIDs of ADO and of the platform mean the
// workbench's components behind proxies.
class WatchedClasses {
 public:
  // `border` and `platform` outlive it and what it made; `monitor` watches the sessions.
  WatchedClasses(Border& border, workbench::EmbeddedPlatform& platform,
                 const std::shared_ptr<workbench::SessionMonitor>& monitor);

 private:
  std::vector<std::unique_ptr<automation::InProcessClass>> classes_;
};

}  // namespace quillon::faults

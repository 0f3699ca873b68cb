// Names and numbers that tell work tables apart: UniqueNameSource (a port of the core) over the platform's source, called
// late-bound, and what takes the place of its sources where they are not registered.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "automation/late_bound.h"
#include "frame/platform.h"

namespace quillon::component {

class LateBoundUniqueNameSource : public UniqueNameSource {
 public:
  explicit LateBoundUniqueNameSource(automation::LateBound source) : source_(std::move(source)) {}
  std::string next() override;

 private:
  automation::LateBound source_;
};

// Stands in when no unique-name source is registered: 32 hexadecimal digits that no other call gives, on whatever
// machine.
class BuiltInUniqueNames : public UniqueNameSource {
 public:
  std::string next() override;
};

// Stands in when no naming class is registered: a whole number that differs between calls, sessions and machines.
std::string builtInNamingNumber();
// The same for a class that numbers work tables; never negative.
std::int32_t builtInWorkTableNumber();

}  // namespace quillon::component

#include "frame/automation_error.h"

#include <utility>

namespace quillon {

AutomationError::AutomationError(HResult code, std::string source, std::string description)
    : code_(code), source_(std::move(source)), description_(std::move(description)) {}

}  // namespace quillon

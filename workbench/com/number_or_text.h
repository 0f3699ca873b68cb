// What the platform gives as a number although it keeps it as a text.
#pragma once

#include <string>

#include "automation/variant.h"

namespace quillon::workbench {

// `text` as a number when it is one, as the platform gives years; otherwise the text.
automation::Variant numberOrText(const std::string& text);

}  // namespace quillon::workbench

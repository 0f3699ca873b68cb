// Fingerprints read back from the pages and workbooks that carry them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "workbench/presentation/run_fingerprint.h"

namespace quillon::workbench {

// All fingerprints in the file, in its order; a page has one, a workbook of several reports one for each. A workbook may have
// been saved by a spreadsheet meanwhile. Throws UserError when the file cannot be read, holds none, or one that is not
// what its digest says.
std::vector<RunFingerprint> readFingerprints(const std::filesystem::path& file);

}  // namespace quillon::workbench

// Scripts of the detail ledger: the statements and queries of a run, in order, as they are written down in scripts/.
//
// A line `execute` or `query` begins a statement. Behind it, one a line, come its pieces: a text in double quotes, the
// word `break` for a line break (CR LF), or the name of a text of fragments.txt, where every line adds a piece to the
// fragment that it names. A piece with `dept` or `wh` before it stands only when the account is costed by department or
// by warehouse. Nothing stands between the pieces. A line that begins with # is a remark.
#pragma once

#include <string>
#include <vector>

namespace quillon::fx_detail {

enum class Basis { inventory, warehouse, department };

// As fakes::Record has the calls: "Session.execute ..." and "Session.query ...".
std::vector<std::string> expectedScript(const std::string& name, Basis basis);

}  // namespace quillon::fx_detail

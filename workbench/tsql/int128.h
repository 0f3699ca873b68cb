// A signed 128-bit integer for exact numerics: the compiler's own where it has one, two 64-bit halves elsewhere
// (32-bit Windows).
#pragma once

namespace quillon::tsql {

class Int128 {};

}  // namespace quillon::tsql

// Cuts a T-SQL batch into tokens. Comments and blanks vanish; an operator may hold blanks (`> =`), a number may touch
// the word after it (`1And`).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::tsql {

enum class TokenKind {
  end,
  word,        // an identifier or keyword as written; `#temp` and `@name` included
  quotedName,  // [name] or "name"
  integer,     // 12
  decimal,     // 1.50
  real,        // 1e3
  money,       // $1.5
  text,        // 'abc'
  nationalText,
  binary,  // 0x1f
  symbol,  // an operator or a bracket
};

struct Token {
  TokenKind kind = TokenKind::end;
  std::string text;       // as written; operators without their inner blanks
  std::string value;      // quotedName and texts: without quotes, doubled quotes undone
  int line = 1;           // counts from 1
  std::size_t begin = 0;  // place in the batch, in bytes
  std::size_t end = 0;
};

// The tokens of a batch, the last one of kind `end`. Throws SqlError 105 (unclosed quotation mark), 113 (unclosed
// comment), 102 (a character that begins nothing, a name that holds a zero character).
std::vector<Token> tokenize(std::string_view batch);

// Whether an unquoted word is reserved, so that it cannot be a name.
bool isReserved(std::string_view word);

}  // namespace quillon::tsql

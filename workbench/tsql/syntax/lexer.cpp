#include "workbench/tsql/syntax/lexer.h"

#include <algorithm>
#include <array>

#include "frame/text.h"
#include "workbench/tsql/values/sql_error.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tsql {
namespace {

// The words that T-SQL reserves, sorted.
constexpr auto reservedWords = std::to_array<std::string_view>({
    "add",
    "all",
    "alter",
    "and",
    "any",
    "as",
    "asc",
    "authorization",
    "backup",
    "begin",
    "between",
    "break",
    "browse",
    "bulk",
    "by",
    "cascade",
    "case",
    "check",
    "checkpoint",
    "close",
    "clustered",
    "coalesce",
    "collate",
    "column",
    "commit",
    "compute",
    "constraint",
    "contains",
    "containstable",
    "continue",
    "convert",
    "create",
    "cross",
    "current",
    "current_date",
    "current_time",
    "current_timestamp",
    "current_user",
    "cursor",
    "database",
    "dbcc",
    "deallocate",
    "declare",
    "default",
    "delete",
    "deny",
    "desc",
    "disk",
    "distinct",
    "distributed",
    "double",
    "drop",
    "dump",
    "else",
    "end",
    "errlvl",
    "escape",
    "except",
    "exec",
    "execute",
    "exists",
    "exit",
    "external",
    "fetch",
    "file",
    "fillfactor",
    "for",
    "foreign",
    "freetext",
    "freetexttable",
    "from",
    "full",
    "function",
    "goto",
    "grant",
    "group",
    "having",
    "holdlock",
    "identity",
    "identity_insert",
    "identitycol",
    "if",
    "in",
    "index",
    "inner",
    "insert",
    "intersect",
    "into",
    "is",
    "join",
    "key",
    "kill",
    "left",
    "like",
    "lineno",
    "load",
    "merge",
    "national",
    "nocheck",
    "nonclustered",
    "not",
    "null",
    "nullif",
    "of",
    "off",
    "offsets",
    "on",
    "open",
    "opendatasource",
    "openquery",
    "openrowset",
    "openxml",
    "option",
    "or",
    "order",
    "outer",
    "over",
    "percent",
    "pivot",
    "plan",
    "precision",
    "primary",
    "print",
    "proc",
    "procedure",
    "public",
    "raiserror",
    "read",
    "readtext",
    "reconfigure",
    "references",
    "replication",
    "restore",
    "restrict",
    "return",
    "revert",
    "revoke",
    "right",
    "rollback",
    "rowcount",
    "rowguidcol",
    "rule",
    "save",
    "schema",
    "securityaudit",
    "select",
    "session_user",
    "set",
    "setuser",
    "shutdown",
    "some",
    "statistics",
    "system_user",
    "table",
    "tablesample",
    "textsize",
    "then",
    "to",
    "top",
    "tran",
    "transaction",
    "trigger",
    "truncate",
    "try_convert",
    "tsequal",
    "union",
    "unique",
    "unpivot",
    "update",
    "updatetext",
    "use",
    "user",
    "values",
    "varying",
    "view",
    "waitfor",
    "when",
    "where",
    "while",
    "with",
    "within",
    "writetext",
});
static_assert(std::is_sorted(reservedWords.begin(), reservedWords.end()));

constexpr std::size_t longestReserved = 20;

bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}
bool isHexDigit(char c) noexcept {
  return isDigit(c) || (lowerAscii(c) >= 'a' && lowerAscii(c) <= 'f');
}
bool startsWord(char c) noexcept {
  return (lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z') || c == '_' || c == '#' || c == '@' ||
         (static_cast<unsigned char>(c) & 0x80U);
}
bool continuesWord(char c) noexcept {
  return startsWord(c) || isDigit(c) || c == '$';
}

class Lexer {
 public:
  explicit Lexer(std::string_view batch) : batch_(batch) {
    if (batch_.starts_with("\xEF\xBB\xBF")) position_ = 3;  // a byte order mark, as editors leave it
  }

  std::vector<Token> run() {
    std::vector<Token> tokens;
    do {
      skipBlanksAndComments();
      tokens.push_back(next());
    } while (tokens.back().kind != TokenKind::end);
    return tokens;
  }

 private:
  char at(std::size_t offset) const noexcept {
    return position_ + offset < batch_.size() ? batch_[position_ + offset] : '\0';
  }
  bool startsWith(std::string_view text) const noexcept { return batch_.substr(position_).starts_with(text); }
  void advance(std::size_t count) {
    for (; count > 0 && position_ < batch_.size(); --count) {
      if (batch_[position_++] == '\n') ++line_;
    }
  }

  void skipBlanksAndComments() {
    for (;;) {
      if (position_ < batch_.size() && isBlank(at(0))) {
        advance(1);
      } else if (startsWith("\xE3\x80\x80")) {
        advance(3);  // the ideographic blank
      } else if (startsWith("--")) {
        while (position_ < batch_.size() && at(0) != '\n')
          advance(1);
      } else if (startsWith("/*")) {
        skipComment();
      } else {
        return;
      }
    }
  }

  void skipComment() {
    const int begin = line_;
    int depth = 0;
    do {
      if (position_ >= batch_.size()) throw SqlError(113, "Missing end comment mark '*/'.", begin, "/*");
      if (startsWith("/*")) {
        ++depth;
        advance(2);
      } else if (startsWith("*/")) {
        --depth;
        advance(2);
      } else {
        advance(1);
      }
    } while (depth > 0);
  }

  Token next() {
    Token token;
    token.line = line_;
    token.begin = position_;
    if (position_ >= batch_.size()) {
      token.end = position_;
      return token;
    }
    const char c = at(0);
    if (c == '\'') {
      token.kind = TokenKind::text;
      token.value = quoted('\'');
    } else if (lowerAscii(c) == 'n' && at(1) == '\'') {
      token.kind = TokenKind::nationalText;
      advance(1);
      token.value = quoted('\'');
    } else if (c == '[' || c == '"') {
      token.kind = TokenKind::quotedName;
      token.value = quoted(c == '[' ? ']' : '"');
      // SQLite takes a zero character for the end of the statement.
      if (token.value.find('\0') != std::string::npos)
        throw SqlError(102, "Incorrect syntax: a name cannot hold a zero character.", token.line);
    } else if (isDigit(c) || (c == '.' && isDigit(at(1)))) {
      token.kind = number();
    } else if (c == '$' && (isDigit(at(1)) || at(1) == '.')) {
      token.kind = TokenKind::money;
      advance(1);
      number();
    } else if (startsWord(c)) {
      token.kind = TokenKind::word;
      while (position_ < batch_.size() && continuesWord(at(0)))
        advance(1);
    } else {
      token.kind = TokenKind::symbol;
      token.text = symbol();
      token.end = position_;
      return token;
    }
    token.end = position_;
    token.text = std::string(batch_.substr(token.begin, token.end - token.begin));
    return token;
  }

  // The text from an opening quote up to `close`; a doubled `close` stands for itself.
  std::string quoted(char close) {
    const int begin = line_;
    std::string value;
    advance(1);
    for (;;) {
      if (position_ >= batch_.size()) {
        throw SqlError(105, "Unclosed quotation mark after the character string '" + value + "'.", begin, value);
      }
      if (at(0) == close) {
        if (at(1) != close) break;
        advance(1);
      }
      value += at(0);
      advance(1);
    }
    advance(1);
    return value;
  }

  TokenKind number() {
    if (at(0) == '0' && lowerAscii(at(1)) == 'x') {
      advance(2);
      while (isHexDigit(at(0)))
        advance(1);
      return TokenKind::binary;
    }
    TokenKind kind = TokenKind::integer;
    while (isDigit(at(0)))
      advance(1);
    if (at(0) == '.') {
      kind = TokenKind::decimal;
      advance(1);
      while (isDigit(at(0)))
        advance(1);
    }
    const std::size_t sign = at(1) == '+' || at(1) == '-' ? 1 : 0;
    if (lowerAscii(at(0)) == 'e' && isDigit(at(1 + sign))) {
      kind = TokenKind::real;
      advance(1 + sign);
      while (isDigit(at(0)))
        advance(1);
    }
    return kind;
  }

  std::string symbol() {
    const char c = at(0);
    if (c == '<' || c == '>' || c == '!') return comparison(c);
    constexpr std::string_view single = "()+-*/%&|^~=,.;:";
    if (single.find(c) == std::string_view::npos) {
      throw SqlError(102, "Incorrect syntax near '" + std::string(1, c) + "'.", line_, std::string(1, c));
    }
    advance(1);
    return {c};
  }

  // `<`, `>` or `!` and the second character of the operator; blanks may stand between the two.
  std::string comparison(char first) {
    const std::string_view partners = first == '<' ? "=>" : first == '>' ? "=" : "=<>";
    advance(1);
    const std::size_t position = position_;
    const int line = line_;
    skipBlanksAndComments();
    if (position_ < batch_.size() && partners.find(at(0)) != std::string_view::npos) {
      const std::string combined{first, at(0)};
      advance(1);
      return combined == "!=" ? "<>" : combined == "!<" ? ">=" : combined == "!>" ? "<=" : combined;
    }
    if (first == '!') throw SqlError(102, "Incorrect syntax near '!'.", line, "!");
    position_ = position;
    line_ = line;
    return {first};
  }

  std::string_view batch_;
  std::size_t position_ = 0;
  int line_ = 1;
};

}  // namespace

std::vector<Token> tokenize(std::string_view batch) {
  return Lexer(batch).run();
}

bool isReserved(std::string_view word) {
  if (word.size() > longestReserved) return false;
  return std::binary_search(reservedWords.begin(), reservedWords.end(), std::string_view(text::foldCase(word)));
}

}  // namespace quillon::tsql

// The parts of the parser that the statements share: reading tokens, names and types, expressions, queries.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/tsql/syntax/ast.h"
#include "workbench/tsql/syntax/lexer.h"

namespace quillon::tsql {

// Reads tokens one by one.
class TokenReader {
 public:
  explicit TokenReader(std::string_view batch) : batch_(batch), tokens_(tokenize(batch)) {}

 protected:
  const Token& peek(std::size_t ahead = 0) const;
  const Token& next();
  bool atEnd() const { return peek().kind == TokenKind::end; }
  std::size_t previousEnd() const { return position_ == 0 ? 0 : tokens_[position_ - 1].end; }
  Place place() const { return {peek().line, peek().text}; }
  std::string textFrom(std::size_t begin, std::size_t end) const {
    return std::string(batch_.substr(begin, end - begin));
  }

  bool isWordAt(std::size_t ahead, std::string_view word) const;
  bool isWord(std::string_view word) const { return isWordAt(0, word); }
  bool isSymbolAt(std::size_t ahead, std::string_view symbol) const;
  bool isSymbol(std::string_view symbol) const { return isSymbolAt(0, symbol); }
  bool acceptWord(std::string_view word);
  bool acceptSymbol(std::string_view symbol);
  void expectWord(std::string_view word);
  void expectSymbol(std::string_view symbol);
  void expectEnd() const;

  // Whether the token can be a name: a word that is not reserved, or a quoted name.
  bool isNameAt(std::size_t ahead) const;
  std::string name();
  std::vector<std::string> nameList();    // (a, b, ..)
  std::vector<std::string> dottedName();  // a.b, a..b: an empty part stands for what two dots leave out
  ObjectName objectName();
  Type typeName(bool isColumn);  // isColumn: a missing width counts 1, in a cast 30
  std::int64_t signedInteger();

  // Error 102, or 156 when the token is a reserved word.
  [[noreturn]] void syntaxError() const;
  // Error 40510: a construct of T-SQL that the dialect leaves out.
  [[noreturn]] void refuse(const std::string& construct) const;
  static std::string upper(std::string_view text);

  // A statement becomes a tree, and the functions that walk it recurse as deep as the tree is. The depth is limited here,
  // so that no text can exhaust the stack. A Level lives while the inside of a bracket, a sub-query, a sign, a NOT or a
  // block is read; countLink() is called for each operator, join or set operation of a chain. Both throw SqlError 191
  // when there are too many.
  class Level {
   public:
    explicit Level(TokenReader& reader) : reader_(reader) {
      if (reader_.levels_ == mostLevels) reader_.refuseDepth();
      ++reader_.levels_;
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --reader_.levels_; }

   private:
    TokenReader& reader_;
  };
  void countLink();
  void beginStatement() { links_ = 0; }

 private:
  static constexpr int mostLevels = 250;  // at once
  static constexpr int mostLinks = 2500;  // of a statement

  [[noreturn]] void refuseDepth() const;

  std::string_view batch_;
  std::vector<Token> tokens_;
  std::size_t position_ = 0;
  int levels_ = 0;
  int links_ = 0;
};

class ExpressionParser : public TokenReader {
 public:
  using TokenReader::TokenReader;
  virtual ~ExpressionParser() = default;

 protected:
  ExpressionPtr value();      // refuses a condition
  ExpressionPtr condition();  // refuses a value (error 4145)
  virtual QueryPtr query() = 0;

 private:
  ExpressionPtr make(ExpressionKind kind) const;
  ExpressionPtr binary(ExpressionKind kind, const Token& op, ExpressionPtr left, ExpressionPtr right);
  ExpressionPtr disjunction();
  ExpressionPtr conjunction();
  ExpressionPtr negation();
  ExpressionPtr predicate();
  ExpressionPtr predicateAfter(ExpressionPtr left);
  ExpressionPtr membership(ExpressionPtr left, bool negated);
  ExpressionPtr sum();
  ExpressionPtr product();
  ExpressionPtr unary();
  ExpressionPtr primary();
  ExpressionPtr literal();
  ExpressionPtr parenthesized();
  ExpressionPtr caseExpression();
  ExpressionPtr cast();
  ExpressionPtr convert();
  ExpressionPtr identity();
  ExpressionPtr columnOrFunction();
  ExpressionPtr functionCall(ExpressionPtr call);
  bool isQueryInParentheses() const;
  void requireValue(const Expression& expression) const;
  void requireCondition(const Expression& expression) const;
};

class QueryParser : public ExpressionParser {
 public:
  using ExpressionParser::ExpressionParser;

 protected:
  QueryPtr query() override;
  void queryOption();  // OPTION (...): accepted and dropped
  std::optional<std::int64_t> topClause();
  std::vector<TableSourcePtr> fromList();
  // With(NoLock), (nolock, index(1)): accepted and dropped.
  void tableHints();

 private:
  QueryPtr unionTree();
  QueryPtr intersection();
  QueryPtr queryPrimary();
  std::unique_ptr<SelectCore> selectCore();
  SelectItem selectItem();
  bool starItem(SelectItem& item);
  std::string aliasAfter();
  TableSourcePtr joinedTables();
  TableSourcePtr continueJoin(TableSourcePtr left);
  TableSourcePtr tablePrimary();
  bool beginsQuery() const;
  bool startsJoin() const;
  JoinKind joinKind();
  std::vector<OrderItem> orderItems();
};

}  // namespace quillon::tsql

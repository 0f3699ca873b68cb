#include "workbench/account/script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/text.h"
#include "workbench/account/table_rows.h"
#include "workbench/messages/account.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {

namespace {

constexpr std::string_view sending =
    R"(--   sqlcmd -S SERVER -d DATABASE -U USER -b -f 65001 -i FILE
--   tsql -S SERVER -D DATABASE -U USER -J UTF-8 < FILE
--   bsqldb -S SERVER -D DATABASE -U USER -i FILE
)";

constexpr std::string_view settings =
    R"(Set NoCount On
Set Quoted_Identifier On
Set Ansi_Nulls On
Set Ansi_Padding On
Set Ansi_Warnings On
Set Concat_Null_Yields_Null On
Set Xact_Abort On
go
If Db_Id(N'orvsystem') Is Null Create Database orvsystem Collate Chinese_PRC_CI_AS
go
)";

constexpr std::string_view checkBegin =
    R"(-- What is there now.
If Object_Id(N'tempdb..#counted') Is Not Null Drop Table #counted
go
Create Table #counted ([table] nvarchar(300) null, [expected] bigint null, [found] bigint null)
go
)";

constexpr std::string_view checkEnd =
    R"(If Exists (Select * From #counted Where [expected] <> [found])
Begin
  Select [table], [expected], [found] From #counted Where [expected] <> [found]
  Raiserror(N'The account is not complete: the tables above hold more or fewer rows than they have to.', 16, 1)
End
Else Select Count(*) As [tables], Sum([found]) As [rows] From #counted
go
Drop Table #counted
go
)";

// The column by which the system database tells accounts apart.
constexpr std::string_view accountColumn = "cAcc_Id";

// Where a line is broken, in bytes; a value is at most one piece longer.
constexpr std::size_t lineLength = 1000;
constexpr std::size_t pieceLength = 500;

// A text as an expression of pieces that hold nothing but printable characters.
class TextExpression {
 public:
  explicit TextExpression(std::string_view text) {
    for (std::size_t position = 0; position < text.size();) {
      const std::size_t begin = position;
      const char32_t character = tsql::text::next(text, position);
      if (needsCode(character)) {
        endPiece();
        pieces_.push_back("NChar(" + std::to_string(static_cast<std::uint32_t>(character)) + ")");
      } else {
        add(text.substr(begin, position - begin));
      }
    }
    endPiece();
    if (pieces_.empty()) pieces_.emplace_back("N''");
    // Without a part of that type the sum of the pieces would be cut at 4000 characters.
    constexpr std::int64_t longestShortText = 4000;
    if (pieces_.size() > 1 && tsql::text::widerThan(text, longestShortText))
      pieces_.insert(pieces_.begin(), "Cast(N'' As nvarchar(max))");
  }

  const std::vector<std::string>& pieces() const { return pieces_; }

 private:
  static bool needsCode(char32_t character) {
    constexpr char32_t firstPrintable = 0x20, deleteCharacter = 0x7f;
    constexpr char32_t firstSurrogate = 0xd800, lastSurrogate = 0xdfff;
    return character < firstPrintable || character == deleteCharacter ||
           (character >= firstSurrogate && character <= lastSurrogate);
  }

  void add(std::string_view character) {
    if (piece_.size() >= pieceLength || (piece_.ends_with('$') && character == "(")) endPiece();
    piece_ += character == "'" ? "''" : character;
  }

  void endPiece() {
    if (!piece_.empty()) pieces_.push_back("N'" + piece_ + "'");
    piece_.clear();
  }

  std::vector<std::string> pieces_;
  std::string piece_;
};

// With an exponent, so that a server reads it as a float and not as a decimal.
std::string realLiteral(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific).ptr;
  return {text.data(), end};
}

std::string dateLiteral(tsql::DateTime time) {
  constexpr int compactDay = 112, isoTime = 126;
  const bool midnight = time.ticks % tsql::DateTime::ticksPerDay == 0;
  return "N'" + tsql::formatDateTime(time, midnight ? compactDay : isoTime).value() + "'";
}

// Whether the text is one piece as it stands. 0xED begins halves of surrogate pairs, and a few whole characters.
bool isPlainPiece(std::string_view text) {
  constexpr unsigned char firstPrintable = 0x20, deleteCharacter = 0x7f, surrogateLead = 0xed;
  return !text.empty() && text.size() <= pieceLength && std::ranges::none_of(text, [](char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < firstPrintable || byte == deleteCharacter || byte == surrogateLead || byte == '\'' || byte == '$';
  });
}

// Lists in brackets, with line breaks where a line becomes long. What is written stays here until flush().
class ListWriter {
 public:
  explicit ListWriter(std::ostream& out) : out_(out) {}

  void begin() {
    text_ += '(';
    separator_ = "";
  }
  void addName(std::string_view name) {
    append(tsql::bracketed(name));
    separator_ = ", ";
  }
  void addValue(const tsql::Value& value) {
    if (const auto* const text = std::get_if<std::string>(&value)) {
      addText(*text);
    } else if (const auto* const real = std::get_if<double>(&value)) {
      append(realLiteral(*real));
    } else if (const auto* const time = std::get_if<tsql::DateTime>(&value)) {
      // Of a column, it is often that of the row before.
      if (day_ != *time) dayLiteral_ = dateLiteral(*time);
      day_ = *time;
      append(dayLiteral_);
    } else if (tsql::isNull(value)) {
      append("Null");
    } else {
      separate();
      tsql::appendText(text_, value);
    }
    separator_ = ", ";
  }
  void end(std::string_view mark) {
    text_ += ')';
    text_ += mark;
    lineBegin_ = text_.size();
    constexpr std::size_t blockSize = 65'536;
    if (text_.size() >= blockSize) flush();
  }
  // A value outside of lists.
  void addAlone(const tsql::Value& value) {
    separator_ = "";
    addValue(value);
  }
  // How many pieces of texts there were since restartJoins().
  int joins() const { return joins_; }
  void restartJoins() { joins_ = 0; }
  // Between lists.
  void add(std::string_view text) {
    text_ += text;
    const std::size_t end = text_.rfind('\n');
    lineBegin_ = end == std::string::npos ? 0 : end + 1;
  }
  void flush() {
    out_ << text_;
    text_.clear();
    lineBegin_ = 0;
  }

 private:
  void addText(std::string_view text) {
    if (isPlainPiece(text)) {
      separate();
      text_ += "N'";
      text_ += text;
      text_ += '\'';
      return;
    }
    const TextExpression expression(text);
    joins_ += static_cast<int>(expression.pieces().size());
    for (const std::string& piece : expression.pieces()) {
      append(piece);
      separator_ = " + ";
    }
  }
  void append(std::string_view part) {
    separate();
    text_ += part;
  }
  void separate() {
    text_ += separator_;
    if (text_.size() - lineBegin_ <= lineLength) return;
    text_ += '\n';
    lineBegin_ = text_.size();
    text_ += "  ";
  }

  std::ostream& out_;
  std::string text_;
  std::size_t lineBegin_ = 0;  // in text_
  std::string_view separator_;
  int joins_ = 0;
  std::optional<tsql::DateTime> day_;
  std::string dayLiteral_;
};

std::string textLiteral(std::string_view text) {
  std::string literal = "N'";
  for (const char character : text)
    literal.append(character == '\'' ? 2 : 1, character);
  return literal + "'";
}

std::string introduction(const ScriptOptions& options) {
  std::string text =
      "-- An account, for SQL Server 2012 or later. Make an empty database with the collation Chinese_PRC_CI_AS";
  if (options.accountId.empty()) {
    text += " on a server\n-- that has no database orvsystem yet, and send this file (UTF-8) to it, one of:\n";
  } else {
    text += " and send\n-- this file (UTF-8) to it, one of:\n";
  }
  text += sending;
  text += "-- Rows come in batches of at most " + std::to_string(options.batchRows) +
          ". When it breaks off, send the same file again: what is there already\n"
          "-- is passed over. The last batches count every table; a table with more or fewer rows is an error.\n";
  if (!options.accountId.empty()) {
    text +=
        "-- In the database orvsystem, which may be there and hold other accounts, it replaces the rows of account " +
        options.accountId + "\n-- and adds users that are missing.\n";
  }
  return text.append(settings);
}

class ScriptWriter {
 public:
  ScriptWriter(tsql::Connection& connection, std::ostream& out, const ScriptOptions& options, RowCounter& counter)
      : connection_(connection), out_(out), options_(options), counter_(counter), list_(out) {}

  void begin(const tsql::StoredSchema& schema) {
    list_.add(introduction(options_));
    if (options_.accountId.empty()) return;
    const auto isPeriods = [](const tsql::StoredTable& table) {
      return table.database == "orvsystem" && equalIgnoringCase(table.name, "UA_Period");
    };
    if (std::ranges::none_of(schema.tables, isPeriods)) return;
    const auto rows = connection_.query("Select Min(cAcc_Id) From orvsystem..UA_Period");
    if (rows->next()) ownId_ = tsql::toText(rows->value(0)).value_or("");
  }

  void writeTable(const tsql::StoredTable& table) {
    const Target target = targetOf(table);
    batch("If Object_Id(" + textLiteral(target.name) + ") Is Null\n" + createStatement(table));
    if (target.kind == Target::Kind::ofTheAccount) {
      batch("Delete From " + target.name + " Where " + tsql::bracketed(accountColumn) + " = " +
            textLiteral(options_.accountId));
    }
    writeRows(target);
  }

  void writeIndex(const tsql::StoredTable& table, const tsql::StoredIndex& index) {
    const std::string system = table.database.empty() ? "" : table.database + "..";
    batch("If Not Exists (Select * From " + system + "sysindexes Where id = Object_Id(" +
          textLiteral(tsql::writtenName(table.database, table.name)) + ") And name = " + textLiteral(index.name) +
          ")\n" + createStatement(table, index));
  }

  // A server takes the statement that creates code in a batch of its own only.
  void writeCode(const tsql::StoredCode& code) {
    const std::string name = "dbo." + tsql::bracketed(code.name);
    batch("If Object_Id(" + textLiteral(name) + ") Is Not Null Drop " + (code.isView ? "View " : "Function ") + name);
    batch(createStatement(code));
  }

  void writeCheck() {
    list_.add(checkBegin);
    for (const Count& count : counts_) {
      list_.add("Insert Into #counted Select " + textLiteral(count.table) + ", " + std::to_string(count.rows) + ", " +
                count.found + " From " + count.table);
      writeCondition(count);
      list_.add("\ngo\n");
    }
    list_.add(checkEnd);
    list_.flush();
  }

 private:
  // A table and how its rows are brought into it.
  struct Target {
    enum class Kind {
      own,           // of the new account alone
      ofTheAccount,  // of all accounts: the rows of this one are replaced
      shared,        // of all accounts, with rows that belong to no one: those that are missing are added
    };

    Kind kind = Kind::own;
    const tsql::StoredTable& table;
    std::string name;
    std::vector<std::size_t> key;  // places of its columns; empty: none
    std::size_t account = 0;       // ofTheAccount: the place of the column
    int batchRows = 0;
  };

  // How many rows a table has to have, and how those are counted.
  struct Count {
    std::string table;
    std::int64_t rows = 0;
    std::string found = "Count_Big(*)";
    std::string condition;            // empty: all rows
    std::vector<tsql::Value> values;  // behind the condition, a list
  };

  void batch(const std::string& statement) {
    list_.add(statement);
    list_.add("\ngo\n");
  }

  Target targetOf(const tsql::StoredTable& table) const {
    Target target{.table = table, .name = tsql::writtenName(table.database, table.name), .key = {}};
    for (const std::string& column : table.primaryKey())
      target.key.push_back(static_cast<std::size_t>(table.find(column)));
    target.batchRows = options_.batchRows;
    if (options_.accountId.empty() || table.database.empty()) return target;
    const int account = table.find(accountColumn);
    if (account >= 0) {
      target.kind = Target::Kind::ofTheAccount;
      target.account = static_cast<std::size_t>(account);
      return target;
    }
    target.kind = Target::Kind::shared;
    target.batchRows = 1;
    if (!target.key.empty()) return target;
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      target.key.push_back(i);
    return target;
  }

  void writeRows(const Target& target) {
    const tsql::StoredTable& table = target.table;
    const bool ofTheAccount = target.kind == Target::Kind::ofTheAccount;
    Count& count = counts_.emplace_back();
    count.table = target.name;
    const std::string where =
        ofTheAccount ? tsql::bracketed(table.columns[target.account].name) + " = " + textLiteral(ownId_) : "";
    const std::unique_ptr<tsql::Cursor> rows = connection_.query(selectAllRows(table, where));
    const bool hasIdentity = std::ranges::any_of(table.columns, &tsql::TableColumn::identity);
    const std::string insert = "Insert Into " + target.name + ' ';
    const tsql::Value id = options_.accountId;
    int room = 0;  // in the batch
    for (bool more = rows->next(); more; ++count.rows) {
      if (count.rows == 0 && hasIdentity) batch("Set Identity_Insert " + target.name + " On");
      if (room == 0) {
        writeGuard(target, *rows, count.rows);
        list_.add(insert);
        list_.begin();
        for (const tsql::TableColumn& column : table.columns)
          list_.addName(column.name);
        list_.end(" Values\n");
        list_.restartJoins();
        room = target.batchRows;
      }
      list_.begin();
      for (std::size_t i = 0; i < table.columns.size(); ++i)
        list_.addValue(ofTheAccount && i == target.account ? id : rows->value(i));
      noteShared(target, *rows, count);
      counter_.row();
      room = list_.joins() < mostJoins ? room - 1 : 0;
      more = out_ && rows->next();
      if (!more) room = 0;
      list_.end(room > 0 ? ",\n" : "\ngo\n");
    }
    if (count.rows > 0 && hasIdentity) batch("Set Identity_Insert " + target.name + " Off");
    finishCount(target, count);
  }

  // Passes a batch over that is there already. Its rows came together, so the first stands for all; without a key the rows
  // before it are counted, which takes a pass over the table for each batch.
  void writeGuard(const Target& target, const tsql::Cursor& rows, std::int64_t before) {
    if (target.kind == Target::Kind::ofTheAccount) return;
    if (target.key.empty()) {
      list_.add("If (Select Count_Big(*) From " + target.name + ") = " + std::to_string(before) + '\n');
      return;
    }
    list_.add("If Not Exists (Select * From " + target.name + " Where ");
    std::string_view separator;
    for (const std::size_t place : target.key) {
      list_.add(separator);
      list_.add(tsql::bracketed(target.table.columns[place].name));
      const bool null = tsql::isNull(rows.value(place));
      list_.add(null ? " Is Null" : " = ");
      if (!null) list_.addAlone(rows.value(place));
      separator = "\n  And ";
    }
    list_.add(")\n");
  }

  // Which rows of a table belong to the account when it shares them.
  static void noteShared(const Target& target, const tsql::Cursor& row, Count& count) {
    if (target.kind != Target::Kind::shared || target.key.size() != 1) return;
    if (count.values.size() <= mostListed) count.values.push_back(row.value(target.key.front()));
  }

  void finishCount(const Target& target, Count& count) const {
    if (target.kind == Target::Kind::ofTheAccount) {
      count.condition = " Where " + tsql::bracketed(accountColumn) + " = " + textLiteral(options_.accountId);
    } else if (target.kind == Target::Kind::shared) {
      const std::string rows = std::to_string(count.rows);
      if (count.values.empty() || count.values.size() > mostListed) {
        count.values.clear();
        count.found = "Case When Count_Big(*) < " + rows + " Then Count_Big(*) Else " + rows + " End";
      } else {
        count.condition = " Where " + tsql::bracketed(target.table.columns[target.key.front()].name) + " In ";
      }
    }
  }

  void writeCondition(const Count& count) {
    list_.add(count.condition);
    if (count.values.empty()) return;
    list_.begin();
    for (const tsql::Value& value : count.values)
      list_.addValue(value);
    list_.end("");
  }

  // Texts of many pieces make a statement of many operators, and the embedded engine takes no more than 2500.
  static constexpr int mostJoins = 1000;
  static constexpr std::size_t mostListed = 1000;

  tsql::Connection& connection_;
  std::ostream& out_;
  const ScriptOptions& options_;
  RowCounter& counter_;
  ListWriter list_;
  std::string ownId_;  // the account's in the file
  std::vector<Count> counts_;
};

void checkOptions(const ScriptOptions& options) {
  constexpr std::int64_t longestId = 10;
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; };
  if (tsql::text::widerThan(options.accountId, longestId) || std::ranges::any_of(options.accountId, isControl)) {
    throw AccountError(messages::scriptAccountId(longestId));
  }
}

}  // namespace

TransferCounts writeScript(tsql::Connection& connection, std::ostream& out, const ScriptOptions& options,
                           const TransferProgress& progress) {
  checkOptions(options);
  // One transaction: what is read is the account of one moment.
  connection.begin();
  const tsql::StoredSchema schema = storedSchema(connection);
  for (const tsql::StoredCode& code : schema.code) {
    if (!code.database.empty()) {
      throw AccountError(messages::scriptCannotMake(tsql::writtenName(code.database, code.name)));
    }
  }
  TransferCounts counts;
  RowCounter counter(progress);
  ScriptWriter script(connection, out, options, counter);
  script.begin(schema);
  for (const tsql::StoredTable& table : schema.tables) {
    script.writeTable(table);
    ++counts.tables;
  }
  for (const tsql::StoredTable& table : schema.tables) {
    for (const tsql::StoredIndex& index : table.indexes)
      script.writeIndex(table, index);
  }
  for (const tsql::StoredCode& code : schema.code)
    script.writeCode(code);
  script.writeCheck();
  connection.commit();
  counts.rows = counter.rows();
  return counts;
}

}  // namespace quillon::account

#include "workbench/account/script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/account/table_rows.h"
#include "workbench/messages/account.h"
#include "workbench/tsql/values/datetime.h"
#include "workbench/tsql/values/text.h"

namespace quillon::account {

namespace {

constexpr std::string_view introduction =
    R"(-- An account, for SQL Server 2012 or later. Make an empty database with the collation Chinese_PRC_CI_AS on a server
-- that has no database orvsystem yet, and send this file (UTF-8) to it, one of:
--   sqlcmd -S SERVER -d DATABASE -U USER -b -f 65001 -i FILE
--   tsql -S SERVER -D DATABASE -U USER -J UTF-8 < FILE
--   bsqldb -S SERVER -D DATABASE -U USER -i FILE
Set NoCount On
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

// A server takes 1000 rows in one list of values, but needs ever longer to plan it.
constexpr int rowsInBatch = 100;
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
  // Between lists.
  void add(std::string_view text) {
    text_ += text;
    lineBegin_ = text_.size();
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
  std::optional<tsql::DateTime> day_;
  std::string dayLiteral_;
};

void endBatch(std::ostream& out, std::string_view statement) {
  out << statement << "\ngo\n";
}

void writeRows(std::ostream& out, tsql::Connection& connection, const tsql::StoredTable& table, RowCounter& counter) {
  const std::string name = tsql::writtenName(table.database, table.name);
  const bool hasIdentity = std::ranges::any_of(table.columns, &tsql::TableColumn::identity);
  const std::unique_ptr<tsql::Cursor> rows = connection.query(selectAllRows(table));
  if (!rows->next()) return;
  if (hasIdentity) endBatch(out, "Set Identity_Insert " + name + " On");
  const std::string insert = "Insert Into " + name + ' ';
  ListWriter list(out);
  std::int64_t count = 0;
  for (bool more = true; more; ++count) {
    if (count % rowsInBatch == 0) {
      list.add(insert);
      list.begin();
      for (const tsql::TableColumn& column : table.columns)
        list.addName(column.name);
      list.end(" Values\n");
    }
    list.begin();
    for (std::size_t i = 0; i < table.columns.size(); ++i)
      list.addValue(rows->value(i));
    counter.row();
    more = out && rows->next();
    list.end(more && (count + 1) % rowsInBatch != 0 ? ",\n" : "\ngo\n");
  }
  list.flush();
  if (hasIdentity) endBatch(out, "Set Identity_Insert " + name + " Off");
}

}  // namespace

TransferCounts writeScript(tsql::Connection& connection, std::ostream& out, const TransferProgress& progress) {
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
  out << introduction;
  for (const tsql::StoredTable& table : schema.tables) {
    endBatch(out, createStatement(table));
    writeRows(out, connection, table, counter);
    ++counts.tables;
  }
  for (const tsql::StoredTable& table : schema.tables) {
    for (const tsql::StoredIndex& index : table.indexes)
      endBatch(out, createStatement(table, index));
  }
  for (const tsql::StoredCode& code : schema.code)
    endBatch(out, createStatement(code));
  connection.commit();
  counts.rows = counter.rows();
  return counts;
}

}  // namespace quillon::account

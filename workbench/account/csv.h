// CSV as RFC 4180 has it: values between commas, records between line ends (CR LF or LF alone), quotes around a value
// that holds a comma, a quote or a line break, a quote within quotes doubled. What stands in quotes is a text even when
// it is empty, so that an empty text differs from no value at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/messages/told_error.h"

namespace quillon::account {

// What is wrong in a CSV file, and where: `line` counts from 1, `field` counts the values of the record from 0.
class CsvError : public workbench::Told<std::runtime_error> {
 public:
  CsvError(std::int64_t line, std::size_t field, const workbench::Message& message)
      : Told(message), line_(line), field_(field) {}
  std::int64_t line() const noexcept { return line_; }
  std::size_t field() const noexcept { return field_; }

 private:
  std::int64_t line_;
  std::size_t field_;
};

struct CsvField {
  std::string text;  // without its quotes; any bytes
  bool quoted = false;
  std::int64_t line = 0;  // where the value begins
};

// Reads records one by one; keeps one of them.
class CsvReader {
 public:
  // A byte order mark at the beginning is passed over. `in` outlives the reader.
  explicit CsvReader(std::istream& in);

  // False at the end of the file. Throws CsvError for a stray quote, for text behind a closing quote, for a quote that is
  // never closed and for a carriage return without a line feed outside quotes.
  bool next();
  std::span<const CsvField> fields() const { return {fields_.data(), count_}; }
  // The line in which the record begins.
  std::int64_t line() const { return recordLine_; }

 private:
  // The next byte; nullopt at the end.
  std::optional<char> take();
  std::optional<char> peek() {
    if (position_ == buffer_.size() && !readBlock()) return std::nullopt;
    return buffer_[position_];
  }
  bool readBlock();
  CsvField& beginField();
  // Both read up to the end of the value; give false when it is the record's last.
  bool plainField();
  bool quotedField();
  bool endOfField(std::optional<char> mark);
  [[noreturn]] void refuse(std::int64_t line, const workbench::Message& message) const;

  std::istream& in_;
  std::string buffer_;
  std::size_t position_ = 0;
  std::int64_t line_ = 1;
  std::int64_t recordLine_ = 1;
  std::vector<CsvField> fields_;  // grows only, so that the texts keep their memory
  std::size_t count_ = 0;
};

// How an empty text is written.
enum class EmptyText {
  quoted,  // as two quotes: a text, and not no value
  bare,    // as nothing
};

// Appends a text; quotes are set where they must be.
void appendCsvText(std::string& line, std::string_view text, EmptyText empty);

// Appends a value; nullopt is no value, from which an empty text differs by its quotes.
void appendCsv(std::string& line, const std::optional<std::string>& value);

}  // namespace quillon::account

#include "workbench/account/csv.h"

#include <algorithm>

#include "workbench/messages/account.h"

namespace quillon::account {

namespace {

namespace messages = workbench::messages;

constexpr std::size_t blockSize = 65'536;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool endsPlainText(char c) {
  return c == ',' || c == '\n' || c == '\r' || c == '"';
}

}  // namespace

CsvReader::CsvReader(std::istream& in) : in_(in) {
  peek();
  if (std::string_view(buffer_).starts_with(byteOrderMark)) position_ = byteOrderMark.size();
}

bool CsvReader::readBlock() {
  buffer_.resize(blockSize);
  in_.read(buffer_.data(), static_cast<std::streamsize>(blockSize));
  buffer_.resize(static_cast<std::size_t>(in_.gcount()));
  position_ = 0;
  return !buffer_.empty();
}

std::optional<char> CsvReader::take() {
  const std::optional<char> character = peek();
  if (!character) return std::nullopt;
  ++position_;
  if (*character == '\n') ++line_;
  return character;
}

CsvField& CsvReader::beginField() {
  if (count_ == fields_.size()) fields_.emplace_back();
  CsvField& field = fields_[count_++];
  field.text.clear();
  field.quoted = false;
  field.line = line_;
  return field;
}

void CsvReader::refuse(std::int64_t line, const workbench::Message& message) const {
  throw CsvError(line, count_ - 1, message);
}

bool CsvReader::next() {
  count_ = 0;
  recordLine_ = line_;
  if (!peek()) return false;
  bool more = true;
  while (more) {
    beginField();
    more = peek() == '"' ? quotedField() : plainField();
  }
  return true;
}

bool CsvReader::plainField() {
  CsvField& field = fields_[count_ - 1];
  while (peek()) {
    const std::size_t begin = position_;
    while (position_ < buffer_.size() && !endsPlainText(buffer_[position_]))
      ++position_;
    if (position_ > begin) field.text.append(buffer_, begin, position_ - begin);
    if (position_ == buffer_.size()) continue;
    const std::optional<char> mark = take();
    if (mark == '"') refuse(field.line, messages::csvQuoteWithin());
    return endOfField(mark);
  }
  return endOfField(std::nullopt);
}

bool CsvReader::quotedField() {
  CsvField& field = fields_[count_ - 1];
  field.quoted = true;
  take();
  while (peek()) {
    const std::string_view rest = std::string_view(buffer_).substr(position_);
    const std::string_view text = rest.substr(0, rest.find('"'));
    field.text += text;
    line_ += std::ranges::count(text, '\n');
    position_ += text.size();
    if (text.size() == rest.size()) continue;
    take();
    if (peek() != '"') return endOfField(take());
    field.text += '"';
    take();
  }
  refuse(field.line, messages::csvQuoteOpen());
}

bool CsvReader::endOfField(std::optional<char> mark) {
  if (mark == ',') return true;
  if (!mark || mark == '\n') return false;
  const CsvField& field = fields_[count_ - 1];
  if (mark == '\r') {
    if (peek() == '\n') {
      take();
      return false;
    }
    refuse(field.line, messages::csvCarriageReturn());
  }
  refuse(field.line, messages::csvTextBehindQuote());
}

void appendCsvText(std::string& line, std::string_view text, EmptyText empty) {
  // One look at each character: texts are short, and there are many.
  const auto needsQuotes = [](char c) { return c == ',' || c == '"' || c == '\r' || c == '\n'; };
  const bool quotes = text.empty() ? empty == EmptyText::quoted : std::ranges::any_of(text, needsQuotes);
  if (!quotes) {
    line += text;
    return;
  }
  line += '"';
  for (const char character : text)
    line.append(character == '"' ? 2 : 1, character);
  line += '"';
}

void appendCsv(std::string& line, const std::optional<std::string>& value) {
  if (value) appendCsvText(line, *value, EmptyText::quoted);
}

}  // namespace quillon::account

#include "workbench/tsql/syntax/statement_form.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "frame/text.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tsql {
namespace {

constexpr std::size_t longestBatch = std::size_t{64} * 1024;
constexpr std::size_t mostConstants = 500;
constexpr std::size_t mostDigits = 9;

// What the forms mark constants with. A batch that holds one of these has no form.
constexpr char numberMark = '\x01';
constexpr char textMark = '\x02';

// Words, numbers and what the lexer may take together with them.
bool continuesRun(char c) noexcept {
  return isDigit(c) || (lowerAscii(c) >= 'a' && lowerAscii(c) <= 'z') || c == '_' || c == '#' || c == '@' || c == '$' ||
         c == '.' || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

class FormReader {
 public:
  explicit FormReader(std::string_view batch) : batch_(batch) { form_.text.reserve(batch.size()); }

  std::optional<StatementForm> read() {
    while (position_ < batch_.size()) {
      if (!readOne() || form_.constants.size() > mostConstants) return std::nullopt;
    }
    form_.text.append(batch_.substr(copied_));
    return std::move(form_);
  }

 private:
  char at(std::size_t offset) const noexcept {
    return position_ + offset < batch_.size() ? batch_[position_ + offset] : '\0';
  }

  // False: the batch has no form.
  bool readOne() {
    const char c = at(0);
    switch (c) {
      case '\0':
      case numberMark:
      case textMark:
        return false;
      case '-':
        return at(1) != '-' && copy(1);
      case '/':
        return at(1) != '*' && copy(1);
      case '\'':
      case '"':
        return copyQuoted(c);
      case '[':
        return copyQuoted(']');
      default:
        return continuesRun(c) ? readRun() : copy(1);
    }
  }

  // What is not replaced is copied in long pieces.
  bool copy(std::size_t count) {
    position_ += count;
    return true;
  }
  void replace(std::size_t count, std::string_view mark, Value value) {
    form_.text.append(batch_.substr(copied_, position_ - copied_)).append(mark);
    form_.constants.push_back({.begin = position_, .end = position_ + count, .value = std::move(value)});
    position_ += count;
    copied_ = position_;
  }

  // The length of what stands in quotes from `offset` on, the quotes included; a doubled quote stands for itself. Nothing
  // when the last quote is missing.
  std::optional<std::size_t> quotedLength(std::size_t offset, char close) const {
    for (std::size_t i = position_ + offset + 1; i < batch_.size(); ++i) {
      if (batch_[i] == '\0') return std::nullopt;
      if (batch_[i] != close) continue;
      if (i + 1 < batch_.size() && batch_[i + 1] == close) {
        ++i;
      } else {
        return i + 1 - position_ - offset;
      }
    }
    return std::nullopt;
  }

  bool copyQuoted(char close) {
    const std::optional<std::size_t> length = quotedLength(0, close);
    if (!length) return false;
    const std::string_view quoted = batch_.substr(position_, *length);
    if (quoted.find_first_of(std::string_view("\x01\x02")) != std::string_view::npos) return false;
    return copy(*length);
  }

  bool readRun() {
    if (lowerAscii(at(0)) == 'n' && at(1) == '\'') return readText();
    std::size_t length = 1;
    while (continuesRun(at(length)))
      ++length;
    const std::string_view run = batch_.substr(position_, length);
    const bool isNumber = run.size() <= mostDigits && std::ranges::all_of(run, isDigit) && run != "1" && run[0] != '0';
    if (!isNumber) return copy(length);
    std::int64_t value = 0;
    std::from_chars(run.data(), run.data() + run.size(), value);
    replace(length, std::string_view(&numberMark, 1), value);
    return true;
  }

  bool readText() {
    const std::optional<std::size_t> quoted = quotedLength(1, '\'');
    if (!quoted) return false;
    std::string value;
    const std::string_view inner = batch_.substr(position_ + 2, *quoted - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
      value += inner[i];
      if (inner[i] == '\'') ++i;
    }
    std::string mark(1, textMark);
    mark.append(std::to_string(text::width(value))).append(1, textMark);
    replace(1 + *quoted, mark, std::move(value));
    return true;
  }

  std::string_view batch_;
  std::size_t position_ = 0;
  std::size_t copied_ = 0;  // up to here the form has it
  StatementForm form_;
};

}  // namespace

std::optional<StatementForm> formOf(std::string_view batch) {
  if (batch.size() > longestBatch) return std::nullopt;
  return FormReader(batch).read();
}

}  // namespace quillon::tsql

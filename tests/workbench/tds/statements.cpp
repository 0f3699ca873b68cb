#include "tests/workbench/tds/statements.h"

#include <algorithm>
#include <vector>

#include "frame/text.h"
#include "workbench/tsql/values/text.h"

namespace quillon::tds {

namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The words of the batch, a name in brackets as one, without its brackets. Without the last semicolon.
std::vector<std::string> wordsOf(std::string_view batch) {
  std::vector<std::string> words;
  while (!batch.empty() && isBlank(batch.back()))
    batch.remove_suffix(1);
  while (true) {
    batch.remove_prefix(static_cast<std::size_t>(std::ranges::find_if_not(batch, isBlank) - batch.begin()));
    if (batch.empty() || batch == ";") return words;
    std::string word;
    if (batch.front() == '[') {
      const std::size_t end = std::min(batch.find(']'), batch.size() - 1);
      word = batch.substr(1, end - 1);
      batch.remove_prefix(end + 1);
    } else {
      const auto isEnd = [](char c) { return isBlank(c) || c == ';'; };
      word = batch.substr(0, static_cast<std::size_t>(std::ranges::find_if(batch, isEnd) - batch.begin()));
      batch.remove_prefix(std::max<std::size_t>(word.size(), 1));
    }
    words.push_back(std::move(word));
  }
}

}  // namespace

std::optional<std::string> databaseUsedBy(std::string_view batch) {
  constexpr std::size_t longest = 300;  // a longer text is no such statement
  if (batch.size() > longest) return std::nullopt;
  const std::vector<std::string> words = wordsOf(batch);
  if (words.size() != 2 || !equalIgnoringCase(words[0], "use") || words[1].empty()) return std::nullopt;
  return words[1];
}

bool setsSizeOfTexts(std::string_view batch) {
  constexpr std::size_t longest = 100;
  if (batch.size() > longest) return false;
  const std::vector<std::string> words = wordsOf(batch);
  return words.size() == 3 && equalIgnoringCase(words[0], "set") && equalIgnoringCase(words[1], "textsize") &&
         tsql::text::wholeNumber<std::int64_t>(words[2]).has_value();
}

bool asksForVersion(std::string_view batch) {
  return equalIgnoringCase(batch, "Select @@Version As version");
}

}  // namespace quillon::tds

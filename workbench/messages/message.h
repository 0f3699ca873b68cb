// What the workbench says to its user, in Chinese and English. The catalogue is the other headers of this folder: each
// entry is a Text, and nothing that is said is put together elsewhere.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/messages/language.h"

namespace quillon::workbench {

// The entries of the catalogue.
namespace messages {}

// A text that can be said in either language; UTF-8.
class Message {
 public:
  Message() = default;
  // Words that are not the workbench's own, such as a server's: they are the same in both languages.
  static Message verbatim(std::string words) { return {words, words}; }

  const std::string& in(Language language) const { return language == Language::chinese ? chinese_ : english_; }
  const std::string& english() const { return english_; }
  bool empty() const { return english_.empty(); }
  // The message with what `change` makes of the text of each language.
  template <typename Change>
  Message changed(const Change& change) const {
    return {change(chinese_), change(english_)};
  }

 private:
  template <std::size_t>
  friend class Text;
  friend Message joined(std::span<const Message> parts, const Caption& separator);

  Message(std::string chinese, std::string english) : chinese_(std::move(chinese)), english_(std::move(english)) {}

  std::string chinese_;
  std::string english_;
};

// What stands in a place of a Text: a text or a number, which are the same in both languages, or something that is said
// in each.
class Filling {
 public:
  // A call such as notFound(name, line) names the values themselves.
  // NOLINTBEGIN(google-explicit-constructor,hicpp-explicit-conversions)
  Filling(std::string_view text) : chinese_(text), english_(text) {}
  Filling(const std::string& text) : chinese_(text), english_(text) {}
  Filling(const char* text) : chinese_(text), english_(text) {}
  Filling(std::integral auto number) : chinese_(std::to_string(number)), english_(chinese_) {}
  Filling(const Message& message) : chinese_(message.in(Language::chinese)), english_(message.english()) {}
  Filling(const Caption& caption) : chinese_(caption.chinese), english_(caption.english) {}
  // NOLINTEND(google-explicit-constructor,hicpp-explicit-conversions)

  const std::string& in(Language language) const { return language == Language::chinese ? chinese_ : english_; }

 private:
  std::string chinese_;
  std::string english_;
};

// Whether `text` says something and has the places {1} to {count}, each at least once, and no other. A brace before
// anything but a digit is an ordinary character.
constexpr bool hasPlaces(std::string_view text, std::size_t count) {
  constexpr std::size_t most = 10;
  std::array<bool, most> seen{};
  std::size_t different = 0;
  for (std::size_t at = 0; at + 2 < text.size(); ++at) {
    if (text[at] != '{' || text[at + 1] < '0' || text[at + 1] > '9') continue;
    const auto place = static_cast<std::size_t>(text[at + 1] - '0');
    if (text[at + 2] != '}' || place < 1 || place > count) return false;
    different += seen[place] ? 0 : 1;
    seen[place] = true;
  }
  return !text.empty() && count < most && different == count;
}

// `text` with `fillings` in its places.
std::string filled(std::string_view text, std::span<const Filling> fillings, Language language);

// An entry of the catalogue: a text with `places` places, {1} and up, in both languages. Which of them stand in it is
// checked when it is compiled, as is how many are filled.
template <std::size_t places>
class Text {
 public:
  consteval Text(std::string_view chinese, std::string_view english) : caption_{chinese, english} {
    if (!hasPlaces(chinese, places) || !hasPlaces(english, places)) throw "a text lacks a place or has one too many";
  }

  template <typename... Values>
  requires(sizeof...(Values) == places) Message operator()(const Values&... values) const {
    const std::array<Filling, places> fillings{Filling(values)...};
    return {filled(caption_.chinese, fillings, Language::chinese),
            filled(caption_.english, fillings, Language::english)};
  }

  // A text without places as it stands.
  constexpr std::string_view in(Language language) const requires(places == 0) { return caption_.in(language); }
  constexpr const Caption& caption() const requires(places == 0) { return caption_; }

 private:
  Caption caption_;
};

// `parts` one behind the other.
Message joined(std::span<const Message> parts, const Caption& separator);
// "a, b, c".
Message listOf(std::span<const std::string> names);
// "a, b or c".
Message alternativesOf(std::span<const Message> names);

}  // namespace quillon::workbench

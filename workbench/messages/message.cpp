#include "workbench/messages/message.h"

#include "workbench/messages/common.h"

namespace quillon::workbench {

std::string filled(std::string_view text, std::span<const Filling> fillings, Language language) {
  std::string result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool place = text[at] == '{' && at + 2 < text.size() && text[at + 1] >= '1' && text[at + 1] <= '9';
    if (!place) {
      result += text[at];
      continue;
    }
    result += fillings[static_cast<std::size_t>(text[at + 1] - '1')].in(language);
    at += 2;
  }
  return result;
}

Message joined(std::span<const Message> parts, const Caption& separator) {
  Message all;
  for (const Message& part : parts) {
    if (!all.empty()) {
      all.chinese_ += separator.chinese;
      all.english_ += separator.english;
    }
    all.chinese_ += part.chinese_;
    all.english_ += part.english_;
  }
  return all;
}

Message listOf(std::span<const std::string> names) {
  std::vector<Message> parts;
  for (const std::string& name : names)
    parts.push_back(Message::verbatim(name));
  return joined(parts, messages::listSeparator.caption());
}

Message alternativesOf(std::span<const Message> names) {
  if (names.size() < 2) return joined(names, messages::listSeparator.caption());
  return joined(std::vector{joined(names.first(names.size() - 1), messages::listSeparator.caption()), names.back()},
                messages::alternative.caption());
}

}  // namespace quillon::workbench

// Errors whose message is the catalogue's, in both languages.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "workbench/messages/message.h"

namespace quillon::workbench {

// What errors of the workbench have besides what().
class InBothLanguages {
 public:
  const Message& message() const noexcept { return message_; }
  const std::string& text(Language language) const { return message_.in(language); }

 protected:
  explicit InBothLanguages(Message message) : message_(std::move(message)) {}
  InBothLanguages(const InBothLanguages&) = default;
  InBothLanguages(InBothLanguages&&) = default;
  InBothLanguages& operator=(const InBothLanguages&) = default;
  InBothLanguages& operator=(InBothLanguages&&) = default;
  virtual ~InBothLanguages() = default;

 private:
  Message message_;
};

// An exception of the kind `Base` with a message in both languages; what() is the English one.
template <typename Base>
class Told : public Base, public InBothLanguages {
 public:
  explicit Told(const Message& message) : Base(message.english()), InBothLanguages(message) {}
};

}  // namespace quillon::workbench

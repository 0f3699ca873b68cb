// Takes requests out of the bytes of a connection, however these come in.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "workbench/desk/request_head.h"

namespace quillon::workbench::desk {

// Reads one request. It allocates no more than the two limits and what came in.
class RequestReader {
 public:
  static constexpr std::size_t headLimit = std::size_t{16} * 1024;

  enum class State {
    needsMore,  // of the bytes that follow
    headRead,   // said once: head() is there, and take() goes on with the body
    complete,   // body() is there, too; what is left in the buffer is the next request's
    malformed,  // this is no request, its framing is not clear, or its body comes in chunks: nothing behind it can be read
    tooLarge,  // the head goes over the limit
  };

  RequestReader();
  RequestReader(const RequestReader&) = delete;
  RequestReader& operator=(const RequestReader&) = delete;
  ~RequestReader();

  // Removes from the front of `buffer` what it has read. Until it has said headRead, it reads nothing of the body; whoever
  // goes on then has made sure that the head's length is bearable.
  State take(std::string& buffer);

  const RequestHead& head() const { return head_; }
  std::string& body();

 private:
  class Parser;

  std::unique_ptr<Parser> parser_;
  RequestHead head_;
  bool headSaid_ = false;
};

}  // namespace quillon::workbench::desk

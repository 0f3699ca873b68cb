// The seam between the desk's HTTP half and what answers its JSON interface.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/messages/language.h"

namespace quillon::workbench::desk {

// A request below `/api/` that passed every check: it came from the desk's own page, in its own session, with a body that
// is within the limits and, if there is one, declared as JSON. Whether it is JSON is the handler's to find out.
struct DeskRequest {
  std::string method;  // GET, POST, PUT or DELETE
  // Behind "/api/", decoded, without the query, never empty: "runs/3/views". Parts are split by the caller: a decoded part
  // holds no slash, because an encoded one is refused.
  std::string path;
  std::map<std::string, std::string> query;  // decoded; of a name that occurs twice the last value
  std::string body;
  Language language = Language::chinese;  // of what the answer says
};

// Where a stream goes.
class Sink {
 public:
  virtual ~Sink() = default;
  // Sends the bytes, and waits while the reader is slow. False when there is nobody to read any more: the reader has gone,
  // takes nothing for too long, or the program ends. The stream then returns as soon as it can.
  virtual bool write(std::string_view bytes) = 0;
  // Whether write() would still be of use: what waits for something else asks this every now and then.
  virtual bool open() const = 0;
};

struct DeskResponse {
  int status = 200;
  std::string contentType = "application/json";  // of text in UTF-8
  std::string body;
  // What this answer has beside what every answer has: Content-Disposition, say.
  std::vector<std::pair<std::string, std::string>> headers;
  // For downloads and events, in the place of a body. It runs on a thread of its own, once, after handle() has returned;
  // the answer ends when it does. If it throws, the answer is cut off, so that the reader does not take it for whole.
  std::function<void(Sink&)> stream;
  // Whether the head goes with the stream's first bytes. Until then the stream may throw StreamRefused, or fail with an
  // error that the reader is told of.
  bool headWaits = false;
};

// Thrown by a stream that has written nothing: its reader gets this answer.
class StreamRefused final : public std::exception {
 public:
  explicit StreamRefused(DeskResponse answer) : answer_(std::move(answer)) {}
  const DeskResponse& answer() const noexcept { return answer_; }
  const char* what() const noexcept override { return "the stream has not begun"; }

 private:
  DeskResponse answer_;
};

class DeskHandler {
 public:
  virtual ~DeskHandler() = default;
  // Called on any of several threads at once. What it throws becomes status 500, without a word of what it was.
  virtual DeskResponse handle(const DeskRequest& request) = 0;
};

}  // namespace quillon::workbench::desk

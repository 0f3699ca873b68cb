// HTTP/1.1 over loopback: carries requests to the gate, the pages and the handler, and their answers back.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

#include "workbench/desk/gate.h"
#include "workbench/desk/handler.h"

namespace quillon::workbench::desk {

// What one person's browser never reaches, and what keeps everything else from taking the desk away from him. The limits
// on head and body are the reader's and the gate's.
struct ServerLimits {
  std::size_t connections = 64;  // one more is told so and ended
  std::size_t streams = 32;
  std::size_t workers = 8;                    // requests that are answered at the same time
  std::chrono::milliseconds idle{60'000};     // a connection between two requests
  std::chrono::milliseconds head{10'000};     // from a head's first byte to its last
  std::chrono::milliseconds body{30'000};     // the same of a body
  std::chrono::milliseconds answer{30'000};   // for taking an answer
  std::chrono::milliseconds stream{120'000};  // for taking the next piece of a stream
  // Without a request and without a stream for so long, the desk ends by itself; 0: never.
  std::chrono::milliseconds unused{0};
};

class HttpServer {
 public:
  enum class End { asked, unused };

  // Listens on 127.0.0.1, and on ::1 where there is such an address, from now on; port 0 lets the system choose. Nothing is
  // answered before run(). Throws UserError when the port cannot be had.
  explicit HttpServer(unsigned short port, ServerLimits limits = {});
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;
  ~HttpServer();

  unsigned short port() const;

  // Serves on this thread and on those that it starts, until `ended` gives true, which it asks about ten times a second.
  // Then every connection is closed, streams learn that their readers are gone, and it returns as soon as the handler and
  // the streams have: from then on nothing of them runs. Once only.
  End run(Gate& gate, DeskHandler& handler, const std::function<bool()>& ended);

 private:
  class Serving;

  std::unique_ptr<Serving> serving_;
};

}  // namespace quillon::workbench::desk

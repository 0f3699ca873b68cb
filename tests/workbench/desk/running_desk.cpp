#include "tests/workbench/desk/running_desk.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <cstddef>
#include <stdexcept>

#include "frame/text.h"

namespace quillon::workbench::desk::testing {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {
constexpr std::chrono::seconds longest{10};
}

class Client::Socket {
 public:
  explicit Socket(unsigned short port) : socket(io) { socket.connect({asio::ip::address_v4::loopback(), port}); }

  // Does what was begun; throws when it takes too long.
  void finish() {
    io.restart();
    io.run_for(longest);
    if (!io.stopped()) throw std::runtime_error("the desk neither answers nor ends the connection");
  }

  asio::io_context io;
  tcp::socket socket;
};

Client::Client(unsigned short port) : socket_(std::make_unique<Socket>(port)) {}

Client::~Client() = default;

bool Client::send(std::string_view bytes) {
  boost::system::error_code result;
  asio::async_write(socket_->socket, asio::buffer(bytes.data(), bytes.size()),
                    [&result](boost::system::error_code error, std::size_t) { result = error; });
  socket_->finish();
  return !result;
}

void Client::sendNothingMore() {
  boost::system::error_code ignored;
  socket_->socket.shutdown(tcp::socket::shutdown_send, ignored);
}

bool Client::more() {
  if (ended_) return false;
  char bytes[4096];
  std::size_t count = 0;
  socket_->socket.async_read_some(asio::buffer(bytes),
                                  [&count](boost::system::error_code, std::size_t read) { count = read; });
  socket_->finish();
  buffer_.append(bytes, count);
  ended_ = count == 0;
  return !ended_;
}

std::string Client::some() {
  if (buffer_.empty()) more();
  return std::exchange(buffer_, {});
}

bool Client::ends() {
  while (more()) {
  }
  return true;
}

Answer Client::answer() {
  Answer answer;
  std::size_t end = 0;
  while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
    if (!more()) return answer;
  }
  std::string head = buffer_.substr(0, end + 2);
  buffer_.erase(0, end + 4);
  answer.status = leadingNumber(head.substr(head.find(' ')));
  for (std::size_t at = head.find("\r\n") + 2; at < head.size();) {
    const std::size_t lineEnd = head.find("\r\n", at), colon = head.find(": ", at);
    std::string name = head.substr(at, colon - at);
    for (char& c : name)
      c = lowerAscii(c);
    answer.fields[name] = head.substr(colon + 2, lineEnd - colon - 2);
    at = lineEnd + 2;
  }
  if (answer.status == 100) return answer;
  if (answer.field("transfer-encoding") != "chunked") {
    const auto length = static_cast<std::size_t>(leadingNumber(answer.field("content-length")));
    while (buffer_.size() < length && more()) {
    }
    answer.whole = buffer_.size() >= length;
    answer.body = buffer_.substr(0, length);
    buffer_.erase(0, length);
    return answer;
  }
  while (true) {
    std::size_t lineEnd = 0;
    while ((lineEnd = buffer_.find("\r\n")) == std::string::npos) {
      if (!more()) return answer;
    }
    const std::size_t size = std::stoul(buffer_.substr(0, lineEnd), nullptr, 16);
    while (buffer_.size() < lineEnd + 2 + size + 2) {
      if (!more()) return answer;
    }
    answer.body += buffer_.substr(lineEnd + 2, size);
    buffer_.erase(0, lineEnd + 2 + size + 2);
    if (size == 0) {
      answer.whole = true;
      return answer;
    }
  }
}

DeskResponse TestHandler::handle(const DeskRequest& request) {
  {
    const std::lock_guard lock(mutex_);
    seen_.push_back(request);
  }
  DeskResponse response;
  if (request.path == "echo") {
    const auto said = request.query.find("say");
    response.body = said == request.query.end() ? request.body : said->second;
  } else if (request.path == "lines") {  // without an end
    response.contentType = "text/event-stream";
    response.stream = [this](Sink& sink) { streamLines(sink); };
  } else if (request.path == "download") {  // ten megabytes
    response.contentType = "text/csv";
    response.headers.emplace_back("Content-Disposition", "attachment; filename=\"rows.csv\"");
    response.stream = [](Sink& sink) {
      const std::string megabyte(std::size_t{1024} * 1024, 'x');
      for (int i = 0; i < 10; ++i) {
        if (!sink.write(megabyte)) return;
      }
    };
  } else if (request.path == "broken") {  // fails in the middle
    response.stream = [](Sink& sink) {
      sink.write("half");
      throw std::runtime_error("Password=secret");
    };
  } else if (request.path == "refused") {  // says before its first bytes why there will be none
    response.headWaits = true;
    response.headers.emplace_back("Content-Disposition", "attachment");
    response.stream = [](Sink&) {
      DeskResponse refusal;
      refusal.status = 409;
      refusal.body = R"({"error":{"code":"stopped"}})";
      throw StreamRefused(refusal);
    };
  } else if (request.path == "unbegun") {  // fails before its first bytes
    response.headWaits = true;
    response.stream = [](Sink&) { throw std::runtime_error("Password=secret"); };
  } else if (request.path == "late") {  // takes a while until its first bytes
    response.headWaits = true;
    response.headers.emplace_back("Content-Disposition", "attachment");
    response.stream = [](Sink& sink) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      sink.write("whole");
    };
  } else if (request.path == "empty") {
    response.headWaits = true;
    response.stream = [](Sink&) {};
  } else if (request.path == "throw") {
    throw std::runtime_error("Password=secret");
  } else if (request.path == "headers") {  // what is not a handler's to set
    response.headers = {{"Set-Cookie", "a=b"},
                        {"Access-Control-Allow-Origin", "*"},
                        {"Content-Security-Policy", "x"},
                        {"Cache-Control", "public"},
                        {"X-Own", "kept"}};
  } else if (request.path == "split") {
    response.headers = {{"Content-Disposition", "attachment\r\nSet-Cookie: a=b"}};
  } else if (request.path == "wait") {
    waits = true;
    while (!letGo)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
  } else {
    response.status = 404;
  }
  return response;
}

void TestHandler::streamLines(Sink& sink) {
  const auto count = [this](int change) {
    const std::lock_guard lock(mutex_);
    streams_ += change;
    changed_.notify_all();
  };
  count(+1);
  sink.write(": begun\n");
  // As events do that wait for something to happen.
  while (sink.open())
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  count(-1);
}

std::vector<DeskRequest> TestHandler::seen() {
  const std::lock_guard lock(mutex_);
  return seen_;
}

bool TestHandler::waitForStreams(int running) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, longest, [this, running] { return streams_ == running; });
}

RunningDesk::RunningDesk(ServerLimits limits)
    : server_(0, limits),
      gate_(server_.port(), token, session),
      thread_([this] { end_ = server_.run(gate_, handler_, [this] { return asked_.load(); }); }) {}

RunningDesk::~RunningDesk() {
  handler_.letGo = true;
  asked_ = true;
  if (thread_.joinable()) thread_.join();
}

HttpServer::End RunningDesk::join() {
  thread_.join();
  return end_;
}

std::string RunningDesk::filled(std::string request) const {
  replaceAll(request, "{OWN}", "Host: {HOST}\r\nCookie: {COOKIE}\r\nSec-Fetch-Site: same-origin\r\n");
  replaceAll(request, "{HOST}", host());
  replaceAll(request, "{PORT}", std::to_string(port()));
  replaceAll(request, "{COOKIE}", cookie());
  replaceAll(request, "{TOKEN}", token);
  return request;
}

Answer RunningDesk::ask(const std::string& request) const {
  Client client(port());
  client.send(filled(request));
  return client.answer();
}

}  // namespace quillon::workbench::desk::testing

#include "workbench/desk/http_server.h"

#include <algorithm>
#include <atomic>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <charconv>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "workbench/desk/answer.h"
#include "workbench/desk/pages.h"
#include "workbench/desk/request_reader.h"
#include "workbench/desk/stream_pipe.h"
#include "workbench/desk/workers.h"
#include "workbench/messages/desk.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

namespace {

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

}  // namespace

class HttpServer::Serving {
 public:
  Serving(unsigned short port, ServerLimits limits);

  unsigned short port() const { return acceptors_.front().local_endpoint().port(); }
  End run(Gate& gate, DeskHandler& handler, const std::function<bool()>& ended);

 private:
  class Connection;

  struct StreamThread {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> done;
  };

  void accept(tcp::acceptor& acceptor);
  void accepted(tcp::socket socket);
  void watch(const std::function<bool()>& ended);
  void endEverything();
  void joinStreams(bool all);
  // False when there are as many as there may be.
  bool startStream(std::function<void(Sink&)> stream, const std::shared_ptr<StreamPipe>& pipe);

  const ServerLimits limits_;
  asio::io_context io_{1};
  std::list<tcp::acceptor> acceptors_;
  asio::steady_timer watch_{io_};
  Gate* gate_ = nullptr;
  DeskHandler* handler_ = nullptr;
  std::optional<Workers> workers_;
  std::set<std::shared_ptr<Connection>> connections_;
  std::list<StreamThread> streams_;
  steady_clock::time_point used_ = steady_clock::now();
  End end_ = End::asked;
  bool ending_ = false;
};

// Everything here happens on the thread of input and output.
class HttpServer::Serving::Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(Serving& serving, tcp::socket socket)
      : serving_(serving), socket_(std::move(socket)), timer_(socket_.get_executor()) {}

  void start() {
    error_code ignored;
    socket_.set_option(tcp::no_delay(true), ignored);
    nextRequest();
  }

  void refuse(int status, std::string_view code, const Text<0>& message) {
    respond(
        errorAnswer(
            status, code,
            language_ ? std::string(message.in(*language_))
                      : std::string(message.in(Language::chinese)).append(" / ").append(message.in(Language::english))),
        true);
  }

  // A request is answered, or a stream is open.
  bool busy() const { return step_ == Step::waiting || pipe_ != nullptr; }

  void close() {
    if (closed_) return;
    closed_ = true;
    endLimit();
    error_code ignored;
    socket_.close(ignored);
    if (pipe_) pipe_->abandon();
    serving_.connections_.erase(shared_from_this());
  }

 private:
  static constexpr std::size_t readSize = std::size_t{16} * 1024;

  enum class Step {
    idle,     // between two requests
    head,     // of a request that has begun
    body,     // of one that was let in
    waiting,  // for the handler
    answer,   // is sent, or what comes after it is dropped
  };

  // --- The time that a step may take --------------------------------------------------------------------------------

  void limit(std::chrono::milliseconds time) {
    const unsigned number = ++limitNumber_;
    timer_.expires_after(time);
    timer_.async_wait([self = shared_from_this(), number](error_code error) {
      // A timer that has just run out cannot be taken back any more.
      if (!error && self->limitNumber_ == number && !self->closed_) self->outOfTime();
    });
  }

  void endLimit() {
    ++limitNumber_;
    timer_.cancel();
  }

  void outOfTime() {
    if (!reading_ || step_ == Step::idle) return close();
    late_ = true;
    error_code ignored;
    socket_.cancel(ignored);
  }

  // --- Reading ------------------------------------------------------------------------------------------------------

  void nextRequest() {
    reader_.emplace();
    if (buffer_.empty()) {
      step_ = Step::idle;
      limit(serving_.limits_.idle);
      return read();
    }
    beginHead();
    take();
  }

  void beginHead() {
    step_ = Step::head;
    limit(serving_.limits_.head);
  }

  void read() {
    reading_ = true;
    const std::size_t before = buffer_.size();
    buffer_.resize(before + readSize);
    socket_.async_read_some(asio::buffer(buffer_.data() + before, readSize),
                            [self = shared_from_this(), before](error_code error, std::size_t count) {
                              self->reading_ = false;
                              self->buffer_.resize(before + count);
                              if (self->closed_) return;
                              if (self->late_) return self->tooSlow();
                              if (error) return self->close();
                              if (self->step_ == Step::idle) self->beginHead();
                              self->take();
                            });
  }

  void tooSlow() { refuse(408, "slow", messages::requestTooSlow); }

  void take() {
    switch (reader_->take(buffer_)) {
      case RequestReader::State::needsMore:
        return read();
      case RequestReader::State::headRead:
        return headRead();
      case RequestReader::State::complete:
        return complete();
      case RequestReader::State::malformed:
        return refuse(400, "form", messages::requestUnreadable);
      case RequestReader::State::tooLarge:
        return refuse(431, "size", messages::headTooLarge);
    }
  }

  // --- Deciding -----------------------------------------------------------------------------------------------------

  void headRead() {
    step_ = Step::body;
    serving_.used_ = steady_clock::now();
    language_ = languageOf(reader_->head());
    std::visit(Overloaded{[this](const Refusal& refusal) { respond(answerTo(refusal, *language_), true); },
                          [this](const Entry& entry) { respond(answerTo(entry), true); },
                          [this](const PageAsked& asked) { answerPage(asked.path); },
                          [this](ApiAsked& asked) { readBody(asked); }},
               decision_ = serving_.gate_->decide(reader_->head()));
  }

  void answerPage(const std::string& path) {
    auto page = findPage(path);
    const bool keeps = reader_->head().keepsConnection && reader_->head().length == 0;
    if (!page) return respond(answerTo(Refusal{404, "path", messages::noSuchPage.caption()}, *language_), true);
    respond(std::move(*page), !keeps);
  }

  void readBody(const ApiAsked& asked) {
    limit(serving_.limits_.body);
    if (!asked.awaitsContinue) return take();
    out_ = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(socket_, asio::buffer(out_), [self = shared_from_this()](error_code error, std::size_t) {
      if (error) return self->close();
      self->take();
    });
  }

  void complete() {
    endLimit();
    step_ = Step::waiting;
    DeskRequest request = std::move(std::get<ApiAsked>(decision_).request);
    request.body = std::move(reader_->body());
    serving_.workers_->add([self = shared_from_this(), request = std::move(request)]() mutable {
      DeskResponse response;
      try {
        response = checkedAnswer(self->serving_.handler_->handle(request), request.language);
      } catch (...) {
        // Its words may be of files, statements or connections.
        response = errorAnswer(500, "internal", messages::answerFailed.in(request.language));
      }
      // The connection belongs to the other thread, and so does its end.
      asio::io_context& io = self->serving_.io_;
      asio::post(io, [self = std::move(self), response = std::move(response)]() mutable {
        if (!self->closed_) self->answered(std::move(response));
      });
    });
  }

  // --- Answering ----------------------------------------------------------------------------------------------------

  void answered(DeskResponse response) {
    serving_.used_ = steady_clock::now();
    if (response.stream) return startStream(std::move(response));
    const bool ends = !reader_->head().keepsConnection;
    respond(std::move(response), ends);
  }

  void respond(DeskResponse response, bool ends) {
    late_ = false;
    step_ = Step::answer;
    out_ = answerHead(response, response.body.size(), ends) + response.body;
    limit(serving_.limits_.answer);
    asio::async_write(socket_, asio::buffer(out_), [self = shared_from_this(), ends](error_code error, std::size_t) {
      if (error || self->closed_) return self->close();
      if (ends) return self->linger();
      self->nextRequest();
    });
  }

  // Closing while bytes come in would end the connection with an error, before the answer has been read. So they are read
  // and dropped, but not for ever.
  void linger() {
    constexpr std::chrono::seconds longest{2};
    error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_send, ignored);
    limit(longest);
    drop(Gate::bodyLimit * 4);
  }

  void drop(std::uint64_t most) {
    buffer_.resize(readSize);
    socket_.async_read_some(asio::buffer(buffer_),
                            [self = shared_from_this(), most](error_code error, std::size_t count) {
                              if (error || self->closed_ || count >= most) return self->close();
                              self->drop(most - count);
                            });
  }

  // --- Streams ------------------------------------------------------------------------------------------------------

  void startStream(DeskResponse response) {
    pipe_ = std::make_shared<StreamPipe>([&io = serving_.io_, connection = weak_from_this()] {
      asio::post(io, [connection] {
        if (const auto self = connection.lock()) self->send();
      });
    });
    if (!serving_.startStream(std::move(response.stream), pipe_)) {
      pipe_.reset();
      return refuse(503, "busy", messages::tooManyStreams);
    }
    step_ = Step::answer;
    head_ = answerHead(response, std::nullopt, true);
    if (!response.headWaits) {
      out_ = std::exchange(head_, {});
      sendOut(false);
    }
    buffer_.resize(readSize);
    watchReader();
  }

  // A reader that goes is noticed even while there is nothing to send.
  void watchReader() {
    socket_.async_read_some(asio::buffer(buffer_), [self = shared_from_this()](error_code error, std::size_t) {
      if (error || self->closed_) return self->close();
      self->serving_.used_ = steady_clock::now();
      self->watchReader();
    });
  }

  void send() {
    if (closed_ || sending_) return;
    StreamPipe::Taken taken = pipe_->take();
    // Cut off in the middle of its chunks, an answer is known to be incomplete.
    if (taken.failed) return head_.empty() ? close() : sendInstead(std::move(taken.instead));
    if (taken.bytes.empty() && !taken.ended) return;
    out_ = std::exchange(head_, {});
    if (!taken.bytes.empty()) {
      constexpr int sixteen = 16;
      char size[sixteen + 1] = {};
      const auto end = std::to_chars(size, size + sixteen, taken.bytes.size(), sixteen).ptr;
      out_.append(size, end).append("\r\n").append(taken.bytes).append("\r\n");
    }
    if (taken.ended) out_ += "0\r\n\r\n";
    sendOut(taken.ended);
  }

  // In the place of a stream that has not begun.
  void sendInstead(std::optional<DeskResponse> answer) {
    const Language language = language_.value_or(Language::chinese);
    const DeskResponse response = answer ? checkedAnswer(std::move(*answer), language)
                                         : errorAnswer(500, "internal", messages::answerFailed.in(language));
    out_ = answerHead(response, response.body.size(), true) + response.body;
    sendOut(true);
  }

  void sendOut(bool last) {
    sending_ = true;
    limit(serving_.limits_.stream);
    asio::async_write(socket_, asio::buffer(out_), [self = shared_from_this(), last](error_code error, std::size_t) {
      self->sending_ = false;
      if (error || self->closed_) return self->close();
      self->serving_.used_ = steady_clock::now();
      self->endLimit();
      if (!last) return self->send();
      // The reader closes when it has everything: watchReader() sees it.
      constexpr std::chrono::seconds longest{2};
      error_code ignored;
      self->socket_.shutdown(tcp::socket::shutdown_send, ignored);
      self->limit(longest);
    });
  }

  Serving& serving_;
  tcp::socket socket_;
  asio::steady_timer timer_;
  unsigned limitNumber_ = 0;
  Step step_ = Step::idle;
  std::string buffer_;  // what came in and has not been read yet
  std::optional<RequestReader> reader_;
  std::optional<Language> language_;  // of the last head
  Decision decision_;
  std::string out_;
  std::shared_ptr<StreamPipe> pipe_;
  std::string head_;  // of a stream, until it is sent
  bool reading_ = false, sending_ = false;
  bool late_ = false;  // what is read took too long
  bool closed_ = false;
};

HttpServer::Serving::Serving(unsigned short port, ServerLimits limits) : limits_(limits) {
  const auto listen = [this](const tcp::endpoint& endpoint, error_code& error) {
    tcp::acceptor acceptor(io_);
    acceptor.open(endpoint.protocol(), error);
    if (error) return;
#ifdef _WIN32
    // No other program may listen beside this one.
    const BOOL alone = TRUE;
    setsockopt(acceptor.native_handle(), SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&alone),
               sizeof alone);
#else
    // The port of a desk that has just ended is free again.
    acceptor.set_option(tcp::acceptor::reuse_address(true), error);
#endif
    if (endpoint.protocol() == tcp::v6()) acceptor.set_option(asio::ip::v6_only(true), error);
    acceptor.bind(endpoint, error);
    if (!error) acceptor.listen(tcp::acceptor::max_listen_connections, error);
    if (!error) acceptors_.push_back(std::move(acceptor));
  };
  error_code error;
  listen({asio::ip::address_v4::loopback(), port}, error);
  if (error) {
    throw UserError(messages::portTaken(port));
  }
  // The link has the other address; a machine without this one lacks nothing.
  listen({asio::ip::address_v6::loopback(), this->port()}, error);
}

void HttpServer::Serving::accept(tcp::acceptor& acceptor) {
  acceptor.async_accept([this, &acceptor](error_code error, tcp::socket socket) {
    if (ending_) return;
    if (!error) accepted(std::move(socket));
    // What fails, for want of descriptors, say, may work when others have ended.
    constexpr std::chrono::milliseconds pause{100};
    if (!error) return accept(acceptor);
    auto timer = std::make_shared<asio::steady_timer>(io_, pause);
    timer->async_wait([this, &acceptor, timer](error_code) {
      if (!ending_) accept(acceptor);
    });
  });
}

void HttpServer::Serving::accepted(tcp::socket socket) {
  constexpr std::size_t told = 16;
  if (connections_.size() >= limits_.connections + told) return;
  const auto connection = std::make_shared<Connection>(*this, std::move(socket));
  connections_.insert(connection);
  if (connections_.size() <= limits_.connections) return connection->start();
  connection->refuse(503, "busy", messages::tooManyConnections);
}

bool HttpServer::Serving::startStream(std::function<void(Sink&)> stream, const std::shared_ptr<StreamPipe>& pipe) {
  joinStreams(false);
  if (streams_.size() >= limits_.streams) return false;
  const auto done = std::make_shared<std::atomic<bool>>(false);
  try {
    std::thread thread([stream = std::move(stream), pipe, done]() mutable {
      bool failed = false;
      std::optional<DeskResponse> instead;
      try {
        stream(*pipe);
      } catch (const StreamRefused& refused) {
        failed = true;
        instead = refused.answer();
      } catch (...) {
        failed = true;
      }
      // What it holds on to goes on this thread, too.
      stream = nullptr;
      pipe->end(failed, std::move(instead));
      *done = true;
    });
    streams_.push_back({.thread = std::move(thread), .done = done});
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void HttpServer::Serving::joinStreams(bool all) {
  std::erase_if(streams_, [all](StreamThread& stream) {
    if (!all && !*stream.done) return false;
    stream.thread.join();
    return true;
  });
}

void HttpServer::Serving::watch(const std::function<bool()>& ended) {
  const bool busy = std::ranges::any_of(connections_, [](const auto& connection) { return connection->busy(); });
  const bool unused = limits_.unused.count() > 0 && !busy && steady_clock::now() - used_ > limits_.unused;
  if (unused) end_ = End::unused;
  if (unused || ended()) return endEverything();
  joinStreams(false);
  constexpr std::chrono::milliseconds pause{100};
  watch_.expires_after(pause);
  watch_.async_wait([this, &ended](error_code) { watch(ended); });
}

void HttpServer::Serving::endEverything() {
  ending_ = true;
  error_code ignored;
  for (tcp::acceptor& acceptor : acceptors_)
    acceptor.close(ignored);
  const auto open = connections_;
  for (const auto& connection : open)
    connection->close();
}

HttpServer::End HttpServer::Serving::run(Gate& gate, DeskHandler& handler, const std::function<bool()>& ended) {
  gate_ = &gate;
  handler_ = &handler;
  workers_.emplace(limits_.workers);
  for (tcp::acceptor& acceptor : acceptors_)
    accept(acceptor);
  const auto finish = [this] {
    workers_.reset();
    joinStreams(true);
    // Answers that nobody waits for any more.
    io_.restart();
    io_.poll();
  };
  try {
    watch(ended);
    io_.run();
  } catch (...) {
    endEverything();
    finish();
    throw;
  }
  finish();
  return end_;
}

HttpServer::HttpServer(unsigned short port, ServerLimits limits) : serving_(std::make_unique<Serving>(port, limits)) {}

HttpServer::~HttpServer() = default;

unsigned short HttpServer::port() const {
  return serving_->port();
}

HttpServer::End HttpServer::run(Gate& gate, DeskHandler& handler, const std::function<bool()>& ended) {
  return serving_->run(gate, handler, ended);
}

}  // namespace quillon::workbench::desk

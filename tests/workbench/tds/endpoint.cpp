#include "tests/workbench/tds/endpoint.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <system_error>

#include "workbench/tsql/values/utf8_path.h"

namespace quillon::tds {

namespace {

constexpr int cutsNothing = std::numeric_limits<int>::max();

void require(bool succeeded, const char* what) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

class Endpoint::SocketWire final : public Wire {
 public:
  SocketWire(Endpoint& endpoint, int socket) : endpoint_(endpoint), socket_(socket) {}
  SocketWire(const SocketWire&) = delete;
  SocketWire& operator=(const SocketWire&) = delete;
  ~SocketWire() override { close(socket_); }

  std::size_t read(std::span<Byte> room) override {
    ssize_t count = -1;
    do {
      count = recv(socket_, room.data(), room.size(), 0);
    } while (count < 0 && errno == EINTR);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
  }

  void send(std::span<const Byte> packet) override {
    if (endpoint_.packetsToCut_ != cutsNothing && endpoint_.packetsToCut_-- == 0) cutInPlaceOf(packet);
    sendAll(packet);
    ++endpoint_.packets_;
  }

  // Ends the connection; whoever reads or sends on it notices. One that is to be reset takes no leave of the other side.
  void hangUp() { shutdown(socket_, isReset_ ? SHUT_RD : SHUT_RDWR); }

 private:
  [[noreturn]] void cutInPlaceOf(std::span<const Byte> packet) {
    const Cut cut = endpoint_.cut_;
    if (cut == Cut::withinPacket) sendAll(packet.first(packet.size() / 2));
    if (cut == Cut::reset) {
      // Closing it with nothing waited for tells the other side a reset.
      const linger atOnce{.l_onoff = 1, .l_linger = 0};
      setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
      isReset_ = true;
    }
    hangUp();
    throw Disconnected("the connection is cut for a test");
  }

  void sendAll(std::span<const Byte> bytes) {
    while (!bytes.empty()) {
      const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) throw Disconnected("the client has gone");
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
  }

  Endpoint& endpoint_;
  int socket_;
  std::atomic<bool> isReset_ = false;
};

struct Endpoint::Client {
  Client(Endpoint& endpoint, int socket, std::uint16_t number)
      : wire(std::make_unique<SocketWire>(endpoint, socket)), session(number) {}

  std::mutex mutex;
  std::unique_ptr<SocketWire> wire;  // null when it has ended
  std::uint16_t session;
  std::atomic<bool> hasEnded = false;
  std::thread thread;
};

Endpoint::Endpoint(EndpointOptions options) : packetsToCut_(cutsNothing) {
  for (const std::filesystem::path& account : options.accounts)
    server_.databases.emplace(utf8FromPath(account.filename()), account);
  server_.firstDatabase = utf8FromPath(options.accounts.front().filename());
  server_.user = std::move(options.user);
  server_.password = std::move(options.password);
  listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  require(listener_ >= 0, "socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  const bool listens = bind(listener_, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       listen(listener_, SOMAXCONN) == 0 &&
                       getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  if (!listens) {
    const int reason = errno;
    close(listener_);
    throw std::system_error(reason, std::generic_category(), "a port of the loopback device");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { acceptClients(); });
}

Endpoint::~Endpoint() {
  shutdown(listener_, SHUT_RDWR);
  acceptor_.join();
  close(listener_);
  for (const auto& client : clients_) {
    const std::unique_lock lock(client->mutex);
    if (client->wire) client->wire->hangUp();
  }
  for (const auto& client : clients_)
    client->thread.join();
}

void Endpoint::cutAfter(int packets, Cut cut) {
  cut_ = cut;
  packetsToCut_ = packets;
}

void Endpoint::cutNothing() {
  packetsToCut_ = cutsNothing;
}

void Endpoint::acceptClients() {
  while (true) {
    const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0 && (errno == EINTR || errno == ECONNABORTED)) continue;
    if (socket < 0) return;
    const int atOnce = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &atOnce, sizeof atOnce);
    std::erase_if(clients_, [](const auto& client) {
      if (client->hasEnded) client->thread.join();
      return client->hasEnded.load();
    });
    ++connections_;
    Client& client = *clients_.emplace_back(std::make_unique<Client>(*this, socket, nextSession_++));
    client.thread = std::thread([this, &client] { serve(client); });
  }
}

void Endpoint::serve(Client& client) {
  Inbox inbox;
  std::thread reader([&] { inbox.fill(*client.wire); });
  Session(server_, *client.wire, client.session).serve(inbox);
  client.wire->hangUp();
  reader.join();
  {
    const std::scoped_lock lock(client.mutex);
    client.wire.reset();
  }
  --connections_;
  client.hasEnded = true;
}

}  // namespace quillon::tds

// A TDS 7.4 server over account files, for tests with real drivers: sockets on the loopback device, a thread a client.
// Nothing is encrypted; a client sends batches of statements and attentions, nothing else.
#pragma once

#include <list>

#include "tests/workbench/tds/session.h"

namespace quillon::tds {

struct EndpointOptions {
  // At least one; the name of its file is the database's name. The first is that of a client that names none.
  std::vector<std::filesystem::path> accounts;
  std::string user = "tester";
  std::string password = "geheim";
};

// How a connection ends for a test.
enum class Cut {
  betweenPackets,  // closed in place of a packet
  withinPacket,    // closed behind the first half of a packet
  reset            // in place of a packet, with whatever the client has sent unread
};

class Endpoint {
 public:
  // Listens on a port of its own. Throws std::system_error.
  explicit Endpoint(EndpointOptions options);
  Endpoint(const Endpoint&) = delete;
  Endpoint& operator=(const Endpoint&) = delete;
  // Hangs up on every client.
  ~Endpoint();

  int port() const { return port_; }

  // Of all clients together, the packet after `packets` further ones is not sent, or not whole: that connection is cut.
  // What connects later is served.
  void cutAfter(int packets, Cut cut);
  void cutNothing();

  int packets() const { return packets_; }  // sent
  int batches() const { return server_.batches; }
  int attentions() const { return server_.attentions; }
  int connections() const { return connections_; }  // at present

 private:
  class SocketWire;
  struct Client;

  void acceptClients();
  void serve(Client& client);

  Server server_;
  int listener_ = -1;
  int port_ = 0;
  std::uint16_t nextSession_ = 51;  // servers keep smaller numbers for themselves
  std::atomic<int> packets_ = 0;
  std::atomic<int> connections_ = 0;
  std::atomic<int> packetsToCut_;
  std::atomic<Cut> cut_ = Cut::betweenPackets;
  std::list<std::unique_ptr<Client>> clients_;  // the acceptor's, while it runs
  std::thread acceptor_;
};

}  // namespace quillon::tds

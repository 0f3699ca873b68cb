// The endpoint on a real socket, with clients that are none.
#include "tests/workbench/tds/endpoint.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <optional>
#include <random>

#include "tests/workbench/platform/temporary_file.h"
#include "tests/workbench/tds/login.h"
#include "tests/workbench/tds/test_bytes.h"

namespace quillon::tds {
namespace {

class RawClient {
 public:
  explicit RawClient(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const timeval patience{.tv_sec = 20, .tv_usec = 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    EXPECT_EQ(connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  }
  RawClient(const RawClient&) = delete;
  RawClient& operator=(const RawClient&) = delete;
  ~RawClient() { close(socket_); }

  void send(const Bytes& bytes) const { ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
  void sendNothingMore() const { shutdown(socket_, SHUT_WR); }
  // All that comes until the connection ends; nullopt when it does not end.
  std::optional<Bytes> untilEnd() const {
    Bytes all;
    Bytes some(4096);
    while (true) {
      const ssize_t count = recv(socket_, some.data(), some.size(), 0);
      if (count < 0 && errno != ECONNRESET) return std::nullopt;
      if (count <= 0) return all;
      putBytes(all, std::span(some).first(static_cast<std::size_t>(count)));
    }
  }

 private:
  int socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

class TdsEndpoint : public testing::Test {
 protected:
  static std::filesystem::path made(const std::filesystem::path& account) {
    tsql::Connection::open(account, tsql::OpenMode::createNew);
    return account;
  }
  // Whether it answers as it should.
  bool serves() const {
    const RawClient client(endpoint_.port());
    client.send(test::packetOf(MessageType::preLogin, test::hex("ff")));
    client.sendNothingMore();
    const auto answer = client.untilEnd();
    return answer && answer->size() == headerSize + preLoginReply().size() &&
           std::equal(answer->begin() + headerSize, answer->end(), preLoginReply().begin());
  }

  workbench::test::TemporaryFile file_{".qacc"};
  Endpoint endpoint_{{.accounts = {made(file_.path())}}};
};

TEST_F(TdsEndpoint, AnswersAPreLogin) {
  EXPECT_TRUE(serves());
}

TEST_F(TdsEndpoint, RandomBytesEndTheirConnectionAndNothingElse) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<int> byte(0, 255), length(0, 300);
  for (int round = 0; round < 300; ++round) {
    Bytes bytes(static_cast<std::size_t>(length(random)));
    for (Byte& one : bytes)
      one = static_cast<Byte>(byte(random));
    // Some as the data of a whole message of a type that is read.
    constexpr MessageType types[] = {MessageType::preLogin, MessageType::login, MessageType::batch,
                                     MessageType::attention};
    if (round % 2 == 0) bytes = test::packetOf(types[static_cast<std::size_t>(round / 2 % 4)], bytes);
    const RawClient client(endpoint_.port());
    client.send(bytes);
    client.sendNothingMore();
    EXPECT_TRUE(client.untilEnd()) << "round " << round << " hangs";
  }
  EXPECT_TRUE(serves());
  EXPECT_EQ(endpoint_.batches(), 0);
}

TEST_F(TdsEndpoint, ClientsThatSayNothingDoNotKeepOthersWaiting) {
  std::list<RawClient> silent;
  for (int i = 0; i < 20; ++i)
    silent.emplace_back(endpoint_.port());
  EXPECT_TRUE(serves());
}

TEST_F(TdsEndpoint, ItsEndIsTheEndOfItsConnections) {
  auto other = std::make_unique<Endpoint>(EndpointOptions{.accounts = {file_.path()}});
  const RawClient client(other->port());
  other.reset();
  EXPECT_TRUE(client.untilEnd());
}

}  // namespace
}  // namespace quillon::tds

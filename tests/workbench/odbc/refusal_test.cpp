// What a person reads who names a server that is not there, or a driver that is not: the driver manager and FreeTDS's
// driver themselves.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

#include "workbench/odbc/odbc_database.h"

namespace quillon::odbc {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string refusalOf(const std::string& connectionString) {
  try {
    connect(ConnectionString(connectionString + ";UID=sa;PWD=geheim"), {});
  } catch (const tsql::SqlError& error) {
    return error.message();
  }
  return "nothing was refused";
}

// A port of this machine that answers in the way that is asked for, or not at all.
class Port {
 public:
  explicit Port(bool listens) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(socket_, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    number_ = ntohs(address.sin_port);
    if (listens) {
      EXPECT_EQ(listen(socket_, 1), 0);
    }
  }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  ~Port() { close(socket_); }

  std::string number() const { return std::to_string(number_); }
  // Takes one caller and hangs up on it.
  void hangUp() const { close(accept(socket_, nullptr, nullptr)); }

 private:
  int socket_ = socket(AF_INET, SOCK_STREAM, 0);
  int number_ = 0;
};

std::string freeTds() {
  return std::string("Driver=") + QUILLON_FREETDS_DRIVER;
}

TEST(Refusal, OfAPortWhereNoServerIs) {
  const Port closed(false);
  EXPECT_THAT(refusalOf(freeTds() + ";Server=127.0.0.1;Port=" + closed.number() + ";Database=account"),
              AllOf(StartsWith("cannot connect to the database server: "), HasSubstr("Unable to connect"),
                    HasSubstr("check Server= and its port, and that the server runs and can be reached"),
                    Not(HasSubstr("geheim")), Not(HasSubstr("\n"))));
}

TEST(Refusal, OfAServerThatHangsUp) {
  const Port port(true);
  std::string refusal;
  {
    const std::jthread server([&port] { port.hangUp(); });
    refusal = refusalOf(freeTds() + ";Server=127.0.0.1;Port=" + port.number() + ";Database=account;TDS_Version=7.4");
  }
  EXPECT_THAT(refusal, AllOf(StartsWith("cannot connect to the database server: "),
                             HasSubstr("check Server= and its port"), Not(HasSubstr("geheim"))));
}

TEST(Refusal, OfAMachineThatIsNotThere) {
  EXPECT_THAT(refusalOf(freeTds() + ";Server=no-such-machine.invalid;Database=account"),
              AllOf(HasSubstr("Unknown host machine name."), HasSubstr("check Server= and its port")));
}

TEST(Refusal, OfADriverThatIsNotThere) {
  const auto namesTheDriver = AllOf(StartsWith("cannot connect to the database server: "),
                                    HasSubstr("check the driver's name (Driver=)"), Not(HasSubstr("geheim")));
  EXPECT_THAT(refusalOf("Driver={No Such Driver};Server=here"), namesTheDriver);
  EXPECT_THAT(refusalOf("Driver=/no/such/driver.so;Server=here"), namesTheDriver);
  EXPECT_THAT(refusalOf("DSN=no-such-source"), namesTheDriver);
}

}  // namespace
}  // namespace quillon::odbc

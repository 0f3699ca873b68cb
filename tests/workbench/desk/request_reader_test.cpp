#include "workbench/desk/request_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillon::workbench::desk {
namespace {

using State = RequestReader::State;
using ::testing::ElementsAre;
using ::testing::Pair;

TEST(RequestReader, ReadsTheBodyOnlyWhenItIsAskedAgain) {
  std::string buffer = "POST /a HTTP/1.1\r\nhOst: x\r\nContent-Length: 3\r\n\r\nabcGET /";
  RequestReader reader;
  EXPECT_EQ(reader.take(buffer), State::headRead);
  EXPECT_EQ(buffer, "abcGET /");
  EXPECT_EQ(reader.head().method, "POST");
  EXPECT_EQ(reader.head().target, "/a");
  EXPECT_EQ(reader.head().version, 11);
  EXPECT_EQ(reader.head().length, 3U);
  EXPECT_TRUE(reader.head().keepsConnection);
  EXPECT_THAT(reader.head().fields, ElementsAre(Pair("hOst", "x"), Pair("Content-Length", "3")));
  EXPECT_EQ(reader.take(buffer), State::complete);
  EXPECT_EQ(reader.body(), "abc");
  EXPECT_EQ(buffer, "GET /");
}

TEST(RequestReader, ReadsARequestWithoutABody) {
  std::string buffer = "GET / HTTP/1.1\r\nConnection: close\r\n\r\n";
  RequestReader reader;
  EXPECT_EQ(reader.take(buffer), State::headRead);
  EXPECT_FALSE(reader.head().keepsConnection);
  EXPECT_EQ(reader.take(buffer), State::complete);
  EXPECT_EQ(reader.body(), "");
}

TEST(RequestReader, ReadsNoBodyInChunks) {
  std::string buffer = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nab\r\n0\r\n\r\n";
  RequestReader reader;
  EXPECT_EQ(reader.take(buffer), State::headRead);
  EXPECT_EQ(reader.take(buffer), State::malformed);
  EXPECT_EQ(reader.body(), "");
}

TEST(RequestReader, WaitsForTheRest) {
  RequestReader reader;
  std::string buffer;
  EXPECT_EQ(reader.take(buffer), State::needsMore);
  buffer = "POST / HTTP/1.1\r\nContent-Length: 2\r\n";
  EXPECT_EQ(reader.take(buffer), State::needsMore);
  buffer += "\r\na";
  EXPECT_EQ(reader.take(buffer), State::headRead);
  EXPECT_EQ(reader.take(buffer), State::needsMore);
  buffer += "b";
  EXPECT_EQ(reader.take(buffer), State::complete);
  EXPECT_EQ(reader.body(), "ab");
}

TEST(RequestReader, BoundsTheHead) {
  RequestReader reader;
  std::string buffer = "GET / HTTP/1.1\r\nX: " + std::string(RequestReader::headLimit, 'x');
  EXPECT_EQ(reader.take(buffer), State::tooLarge);
  std::string bearable = "GET / HTTP/1.1\r\nX: " + std::string(RequestReader::headLimit - 100, 'x') + "\r\n\r\n";
  EXPECT_EQ(RequestReader().take(bearable), State::headRead);
}

TEST(RequestReader, RefusesWhatIsNoRequest) {
  for (const char* const text :
       {"GET /\r\n\r\n", "\r\n\r\n\r\n", "GET / HTTP/1.1\nHost: x\n\n", "GET  / HTTP/1.1\r\n\r\n",
        "GET / HTTP/9.9\r\n\r\n", "GET / HTTP/1.1\r\nContent-Length: x\r\n\r\n",
        "GET / HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n"}) {
    std::string buffer = text;
    EXPECT_EQ(RequestReader().take(buffer), State::malformed) << text;
  }
}

}  // namespace
}  // namespace quillon::workbench::desk

#include "workbench/desk/request_reader.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/none.hpp>
#include <utility>

namespace quillon::workbench::desk {

namespace http = boost::beast::http;

class RequestReader::Parser : public http::request_parser<http::string_body> {};

namespace {

std::string textOf(boost::beast::string_view text) {
  return {text.data(), text.size()};
}

RequestHead headOf(const http::request<http::string_body>& message) {
  RequestHead head;
  head.method = textOf(message.method_string());
  head.target = textOf(message.target());
  head.version = static_cast<int>(message.version());
  for (const auto& field : message)
    head.fields.emplace_back(textOf(field.name_string()), textOf(field.value()));
  head.keepsConnection = message.keep_alive();
  return head;
}

}  // namespace

RequestReader::RequestReader() : parser_(std::make_unique<Parser>()) {
  parser_->header_limit(headLimit);
  // A body's size is judged with the rest of the head: who is let in comes before how much he sends.
  parser_->body_limit(boost::none);
}

RequestReader::~RequestReader() = default;

std::string& RequestReader::body() {
  return parser_->get().body();
}

RequestReader::State RequestReader::take(std::string& buffer) {
  // Nobody lets such a body in, and the parser of chunks does not bear every way in which their bytes can come.
  if (headSaid_ && parser_->chunked()) return State::malformed;
  parser_->eager(headSaid_);
  while (!parser_->is_done() && !buffer.empty()) {
    boost::system::error_code error;
    const std::size_t used = parser_->put(boost::asio::buffer(std::as_const(buffer)), error);
    buffer.erase(0, used);
    if (error == http::error::need_more) break;
    if (error == http::error::header_limit) return State::tooLarge;
    if (error) return State::malformed;
    if (parser_->is_header_done() && !headSaid_) break;
  }
  if (parser_->is_header_done() && !headSaid_) {
    headSaid_ = true;
    head_ = headOf(parser_->get());
    head_.length = parser_->content_length().value_or(0);
    return State::headRead;
  }
  return parser_->is_done() ? State::complete : State::needsMore;
}

}  // namespace quillon::workbench::desk

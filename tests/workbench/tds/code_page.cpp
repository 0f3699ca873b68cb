#include "tests/workbench/tds/code_page.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "workbench/tsql/values/text.h"

namespace quillon::tds {

namespace {

class Converter {
 public:
  Converter() : handle_(iconv_open("CP936", "UTF-8")) {
    // iconv_open() says so by a pointer that is none.
    if (reinterpret_cast<std::intptr_t>(handle_) == -1)
      throw std::system_error(errno, std::generic_category(), "code page 936");
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() { iconv_close(handle_); }

  // Puts one character, in UTF-8, behind `bytes`.
  void put(Bytes& bytes, std::string_view character) {
    std::string in(character);
    std::array<char, 8> out{};
    char* from = in.data();
    char* to = out.data();
    std::size_t left = in.size(), room = out.size();
    if (iconv(handle_, &from, &left, &to, &room) != 0) {
      iconv(handle_, nullptr, nullptr, nullptr, nullptr);
      bytes.push_back('?');
      return;
    }
    bytes.insert(bytes.end(), out.data(), to);
  }

 private:
  iconv_t handle_;
};

}  // namespace

Bytes codePageOf(std::string_view text) {
  Bytes bytes;
  Converter converter;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t begin = position;
    tsql::text::next(text, position);
    converter.put(bytes, text.substr(begin, position - begin));
  }
  return bytes;
}

}  // namespace quillon::tds

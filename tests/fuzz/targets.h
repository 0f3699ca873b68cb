// The entry points of the fuzzers: each takes any bytes and checks what the code under test promises for them. The same
// entry points run over the kept inputs as ordinary tests (replay_test.cpp).
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon::fuzz {

// A promise that an input broke. Whatever else leaves an entry point is a broken promise too.
class BrokenPromise : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

inline void require(bool kept, const std::string& promise) {
  if (!kept) throw BrokenPromise(promise);
}

// A T-SQL batch: it runs on an account with two small tables or gives a SqlError, and ends.
void checkTsql(std::string_view input);
// A report's name in the first line, a filter file in those behind it, and behind a line "--set" one key=value a line:
// they give a filter or one clear error.
void checkFilter(std::string_view input);
// A CSV file: it gives its records or one error with its place, what is written reads back as the same, and the same
// goes for a file that is imported into a table.
void checkCsv(std::string_view input);
// The value of a filter item that becomes a quoted list, and the list a condition on voucher types.
void checkLists(std::string_view input);

// A request to the desk, in pieces: it is read to its end or refused, and who is let in is the desk's own page.
void checkRequest(std::string_view input);
// Requests to the desk's interface, one after the other: each has an answer in its form or a refusal that is the
// requester's, and the account stays as it is.
void checkApi(std::string_view input);

// A call's arguments as automation clients pass them, in every form and in none that makes sense: the member gets them
// in its own types, or the call ends with automation's code; what it changes goes back, and nothing else.
void checkArguments(std::string_view input);

}  // namespace quillon::fuzz

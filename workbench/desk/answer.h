// What goes back over the connection, and the fields that every answer has.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "workbench/desk/gate.h"
#include "workbench/desk/handler.h"

namespace quillon::workbench::desk {

// The interface's form of an error: {"error":{"code":"...","message":"...","item":null}}.
DeskResponse errorAnswer(int status, std::string_view code, std::string_view message);

// A program gets an error in `language`, a person a page that says in both what to do.
DeskResponse answerTo(const Refusal& refusal, Language language);
DeskResponse answerTo(const Entry& entry);

// Takes from a handler's answer every header that is this half's to set; an answer that could not be sent as it is meant,
// because of a control character in a header or a status that is none, becomes status 500.
DeskResponse checkedAnswer(DeskResponse response, Language language);

// The answer's head: status, type, how long it is (nothing: in chunks), whether the connection ends with it, and what keeps
// the answer from being used by others. It is stored nowhere, unless it has a Cache-Control of its own.
std::string answerHead(const DeskResponse& response, std::optional<std::size_t> length, bool endsConnection);

}  // namespace quillon::workbench::desk

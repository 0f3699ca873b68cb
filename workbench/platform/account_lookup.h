// How the platform's objects look something up in an account.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frame/session.h"

namespace quillon::workbench {

// Makes a session that is not open yet.
using SessionMaker = std::function<std::shared_ptr<Session>()>;

// A session on the account that `connection` names. Throws AutomationError when it cannot be opened.
std::shared_ptr<Session> openAccount(const SessionMaker& makeSession, std::string_view connection);

// The first field of the query's first row; nullopt when there is no row or the field is null.
std::optional<std::string> lookUp(Session& session, std::string_view sql);

// `text` as a national-text literal, its quotes doubled.
std::string quotedText(std::string_view text);

// The number at the front of `text`; 0 when there is none.
int leadingNumber(std::string_view text);

// The date of a field that holds one, "yyyy-mm-dd", without its time of day.
std::string dateOnly(std::string_view text);

}  // namespace quillon::workbench

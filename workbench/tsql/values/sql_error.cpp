#include "workbench/tsql/values/sql_error.h"

namespace quillon::tsql {

SqlError::SqlError(int number, std::string message, int line, std::string token)
    : number_(number), message_(std::move(message)), line_(line), token_(std::move(token)) {}

}  // namespace quillon::tsql

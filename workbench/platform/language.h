// The two languages, by the name that the platform's users know them under.
#pragma once

#include "workbench/messages/language.h"

// Texts as a page's markup and style sheet take them, and how wide a page shows them.
#pragma once

#include <string>
#include <string_view>

namespace quillon::workbench {

// Text between tags. Control characters, which a page must not hold, become blanks.
std::string escaped(std::string_view text);

// Text of an attribute that stands between double quotes.
std::string attributeText(std::string_view text);

// A string of a style sheet, with its quotes; nothing in it ends the string, the rule or the sheet.
std::string styleString(std::string_view text);

// About how wide a page shows `text` on one line, in hundredths of the font's size: rather too wide than too narrow,
// since fonts differ.
int shownWidth(std::string_view text);

}  // namespace quillon::workbench

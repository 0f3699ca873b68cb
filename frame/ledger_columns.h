// Lists of the columns that every report carries along without looking into them: the batch and the free items of a
// ledger line and the user-defined fields of its document and of its inventory. They end with a comma, so that further
// columns can follow; line breaks inside them are CR LF. The fields 17 to 21 of a document are not kept in the ledger.
#pragma once

#include <string_view>

namespace quillon {

// As they are selected from the ledger line (alias base).
inline constexpr std::string_view lineBatchAndFreeItems =
    "base.cBatchia,base.cFree1,base.cFree2,base.cFree3,base.cFree4,base.cFree5,base.cFree6,base.cFree7,base.cFree8,base.cFree9,base.cFree10,";
inline constexpr std::string_view lineDocumentFields =
    "base.cDefine1,base.cDefine2,base.cDefine3,base.cDefine4,base.cDefine5,base.cDefine6,base.cDefine7,base.cDefine8,\r\n"
    "base.cDefine9,base.cDefine10,base.cDefine11,base.cDefine12,base.cDefine13,base.cDefine14,base.cDefine15,base.cDefine16,\r\n"
    "base.cDefine22,base.cDefine23,base.cDefine24,base.cDefine25,base.cDefine26,base.cDefine27,base.cDefine28,base.cDefine29,\r\n"
    "base.cDefine30,base.cDefine31,base.cDefine32,base.cDefine33,base.cDefine34,base.cDefine35,base.cDefine36,base.cDefine37,";
// As they are selected from the inventory of the line (alias inv).
inline constexpr std::string_view lineInventoryFields =
    "inv.cInvDefine1,inv.cInvDefine2,inv.cInvDefine3,inv.cInvDefine4,inv.cInvDefine5,inv.cInvDefine6,inv.cInvDefine7,inv.cInvDefine8,\r\n"
    "inv.cInvDefine9,inv.cInvDefine10,inv.cInvDefine11,inv.cInvDefine12,inv.cInvDefine13,inv.cInvDefine14,inv.cInvDefine15,inv.cInvDefine16, ";

// By their bare names, as the tables of the reports have them.
inline constexpr std::string_view batchAndFreeItems =
    "cBatchia,cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,";
// The same, with an empty text for no batch.
inline constexpr std::string_view groupedBatchAndFreeItems =
    "isnull(cBatchia,''),cFree1, cFree2, cFree3, cFree4, cFree5, cFree6, cFree7, cFree8, cFree9, cFree10,";
inline constexpr std::string_view inventoryFields =
    "cInvDefine1,cInvDefine2,cInvDefine3,cInvDefine4,cInvDefine5,cInvDefine6,cInvDefine7,cInvDefine8,\r\n"
    "cInvDefine9,cInvDefine10,cInvDefine11,cInvDefine12,cInvDefine13,cInvDefine14,cInvDefine15,cInvDefine16, ";
inline constexpr std::string_view documentFields =
    "cDefine1, cDefine2, cDefine3, cDefine4, cDefine5, cDefine6, cDefine7, cDefine8,\r\n"
    "cDefine9, cDefine10, cDefine11, cDefine12, cDefine13, cDefine14, cDefine15, cDefine16,\r\n"
    "cDefine22, cDefine23, cDefine24, cDefine25, cDefine26, cDefine27, cDefine28, cDefine29,\r\n"
    "cDefine30, cDefine31, cDefine32, cDefine33, cDefine34, cDefine35, cDefine36, cDefine37,";

}  // namespace quillon

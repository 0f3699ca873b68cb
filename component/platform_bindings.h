// Every name by which the library finds the host platform and ADO: ProgIDs, class ids of stand-ins, interface ids and
// member names. What a name stands for is said here and nowhere else; docs/platform-bindings.md tells an integrator the
// whole story. To bind the library to a platform that uses other names, change this header only.
#pragma once

#include <array>

#include "automation/class_lookup.h"

namespace quillon::component::bindings {

// --- ADO. The class ids are ADO's own, so that a stand-in made an InProcessClass under them takes ADO's place inside a
// process even where ADO is installed.

// The connection to the account database.
inline constexpr automation::NamedClass connection = {
    L"ADODB.Connection", {0x00000514, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}}};
// The rows of a lookup.
inline constexpr automation::NamedClass recordset = {
    L"ADODB.Recordset", {0x00000535, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}}};

namespace ado {
inline constexpr const wchar_t* cursorLocation = L"CursorLocation";        // of both: where a recordset's rows are kept
inline constexpr const wchar_t* connectionString = L"ConnectionString";    // written before Open
inline constexpr const wchar_t* connectionTimeout = L"ConnectionTimeout";  // seconds; 0 waits without limit
inline constexpr const wchar_t* commandTimeout = L"CommandTimeout";        // seconds; 0 waits without limit
// Connection: ("", user, password, options). Recordset: (statement, connection, cursor type, lock type, options).
inline constexpr const wchar_t* open = L"Open";
inline constexpr const wchar_t* execute = L"Execute";    // (statement, records affected by reference, options)
inline constexpr const wchar_t* state = L"State";        // 0 is closed
inline constexpr const wchar_t* close = L"Close";        // of both
inline constexpr const wchar_t* eof = L"EOF";            // whether there is no current row
inline constexpr const wchar_t* moveNext = L"MoveNext";  // to the next row
inline constexpr const wchar_t* fields = L"Fields";      // the current row's fields, by position from 0
inline constexpr const wchar_t* value = L"Value";        // a field's value
}  // namespace ado

// --- What the platform hands in.

namespace argument {                                       // the argument object e of GETSQL and Execute
inline constexpr const wchar_t* rawFilter = L"rawFilter";  // the filter object
inline constexpr const wchar_t* login = L"Login";          // the session's login object
// The same kind of login object, for the detail ledger; may be a member of the filter object instead.
inline constexpr const wchar_t* loginObj = L"LoginObj";
inline constexpr const wchar_t* dataSource = L"DataSource";  // the data-source descriptor
inline constexpr const wchar_t* action = L"Action";          // what Execute is asked for ("Link", "Vouch")
inline constexpr const wchar_t* row = L"RelateData";         // the row of the report that Execute is called for
inline constexpr const wchar_t* languageId = L"LangID";      // the language of the call, for the voucher report
}  // namespace argument

namespace report_row {
inline constexpr const wchar_t* value = L"GetData";  // (column): the value of that column of the result table
}  // namespace report_row

namespace data_source {
inline constexpr const wchar_t* type = L"Type";  // written: 2, rows lie in a table
inline constexpr const wchar_t* sql = L"SQL";    // the table's name; read, but written by the detail ledger
}  // namespace data_source

namespace login {
inline constexpr const wchar_t* accountConnection = L"OrvDbName";      // ADO connection string of the account database
inline constexpr const wchar_t* password = L"SysPassword";             // the database password
inline constexpr const wchar_t* accountCode = L"cAcc_Id";              // account code, such as 001
inline constexpr const wchar_t* accountingYear = L"iYear";             // accounting year, a number
inline constexpr const wchar_t* accountingYearText = L"cIYear";        // accounting year, a text
inline constexpr const wchar_t* languageRegion = L"LanguageRegion";    // language code of texts, such as zh-CN
inline constexpr const wchar_t* languageId = L"LangID";                // language number
inline constexpr const wchar_t* currentPeriodYear = L"CurPeriodYear";  // year of the current period
// The date of the user's work. A date value is used as yyyy-mm-dd text, a text as it stands.
inline constexpr const wchar_t* businessDate = L"CurDate";
inline constexpr const wchar_t* authString = L"AuthString";  // written: data rights of a dialog's lookups
inline constexpr const wchar_t* moduleCode = L"ModuleCode";  // module that the user is in, such as IA; may be lacking
}  // namespace login

namespace filter {                                           // the filter object OrvGeneralFilter and its items
inline constexpr const wchar_t* filterList = L"FilterList";  // its items; default member by position or key
inline constexpr const wchar_t* count = L"Count";            // of FilterList
inline constexpr const wchar_t* whereWithToken = L"GetWhereWithToken";  // (token): the condition it builds itself
inline constexpr const wchar_t* name = L"Name";                         // an item's key
inline constexpr const wchar_t* value = L"varValue";                    // an item's value or lower bound
inline constexpr const wchar_t* value2 = L"varValue2";                  // an item's upper bound
inline constexpr const wchar_t* rangeInput = L"RangeInput";             // whether an item is a range
inline constexpr const wchar_t* multipleSelection = L"IsMultSel";       // whether an item takes several values
inline constexpr const wchar_t* groupToken = L"LngGrouptoken";          // written: who makes SQL of the item
inline constexpr const wchar_t* sqlText = L"strSqlString";              // the condition the filter made of the item
}  // namespace filter

namespace dialog {                                         // the same objects while the user fills in the filter
inline constexpr const wchar_t* login = L"Login";          // the session's login object
inline constexpr const wchar_t* identifier = L"FilterId";  // GUID without braces: which report the filter is for
inline constexpr const wchar_t* connection = L"DialogConnection";        // the dialog's own open ADO connection
inline constexpr const wchar_t* setUnavailable = L"SetItemUnavailable";  // (key, flag): True locks the item
inline constexpr const wchar_t* setEnumeration = L"SetItemEnumeration";  // (key, codes{##}names): a choice item's list
// (key, "", condition): what the lookup of a reference item is restricted to.
inline constexpr const wchar_t* setLookupCondition = L"SetItemLookupCondition";
// (key, condition, flag): the same; True tells that the value in the condition is empty.
inline constexpr const wchar_t* setLookupConditionOfValue = L"SetItemLookupConditionOfValue";
inline constexpr const wchar_t* caption = L"Caption";        // an item's: what the user sees beside it
inline constexpr const wchar_t* listText = L"ListText";      // an item's, written: choices, separated by commas
inline constexpr const wchar_t* listSource = L"ListSource";  // an item's, written: such a list or a Select statement
}  // namespace dialog

// --- Components that the library creates by ProgID.

// Account information.
inline constexpr automation::NamedClass publicComponent = {
    L"IA_Pub.ClsIAPub", {0x6c37e46f, 0x1639, 0x4f4c, {0xbe, 0x5d, 0x44, 0x86, 0x38, 0x98, 0x8b, 0x86}}};

namespace public_component {                                                // the connection is passed by reference
inline constexpr const wchar_t* accountInformation = L"GetAccInformation";  // (system, option, connection)
inline constexpr const wchar_t* currentPeriodYear = L"CurPeriodYear";       // (connection)
inline constexpr const wchar_t* costItemStartMonth = L"iFxStartMonth";      // (year text, connection)
inline constexpr const wchar_t* usedYears = L"GetIAUsedYears";              // (account code, connection): a dictionary
inline constexpr const wchar_t* dictionaryCount = L"Count";  // of that dictionary; its keys are "1", "2", ...
// What the detail ledger asks; here the connection stands before what is asked about. Years and months are 16-bit
// integers where they are received, integers where they are given.
inline constexpr const wchar_t* costItemOpeningsFinished = L"IsFxFinishQC";  // (connection, year): a flag
inline constexpr const wchar_t* moduleStart = L"StartMonthYear";      // (system, connection, month out, year out)
inline constexpr const wchar_t* periodOfDate = L"GetPeriodFromDate";  // (connection, date, year out, month out)
inline constexpr const wchar_t* periodSettled = L"GetMonthState";     // (connection, year, month): True when settled
// (connection, account code, year, month, first day out, last day out); the days are dates.
inline constexpr const wchar_t* datesOfPeriod = L"GetDateFromPeriod";
// (): part of work-table names that stand without brackets, so only letters, digits and underscores will do.
inline constexpr const wchar_t* workstationName = L"GetComputerName";
}  // namespace public_component

// Names of work tables: a number that differs between sessions, by the member with dispatch id 1.
inline constexpr automation::NamedClass naming = {
    L"OrvPlatform.Naming", {0x4e3725c9, 0xac68, 0x4eeb, {0x88, 0x27, 0x35, 0xb4, 0x8a, 0xa1, 0x59, 0x0d}}};
inline constexpr DISPID namingNumber = 1;

// Names of work tables: a text that differs between tables.
inline constexpr automation::NamedClass uniqueNames = {
    L"OrvPlatform.UniqueName", {0x0d204fb7, 0x1d0a, 0x41cf, {0x8e, 0x9c, 0x8c, 0xd8, 0xe1, 0xd9, 0xa6, 0xa6}}};
inline constexpr const wchar_t* uniqueName = L"UniqueName";  // a fresh text with each read

// Names of the detail ledger's work tables: a number that differs between the tables of a session, by the default member
// of an object that is made anew for each.
inline constexpr automation::NamedClass workTableNumber = {
    L"OrvPlatform.WorkTableNumber", {0xb15bdbe4, 0x049f, 0x4ce9, {0xa2, 0x4b, 0x59, 0x54, 0xa6, 0xbb, 0x94, 0x66}}};

// The login that the inventory-accounting environment works with.
inline constexpr automation::NamedClass accountLogin = {
    L"OrvPlatform.AccountLogin", {0x7b36c25f, 0x3960, 0x4e30, {0xb4, 0xde, 0xf0, 0xb1, 0xf9, 0x6a, 0x64, 0x04}}};

namespace account_login {
inline constexpr const wchar_t* initialise = L"Init";  // (connection string, ";PWD=" and the password)
}  // namespace account_login

// The inventory-accounting environment.
inline constexpr automation::NamedClass environment = {
    L"OrvPlatform.InventoryEnvironment",
    {0xbb04c263, 0x4d58, 0x4441, {0xb6, 0x46, 0x07, 0x77, 0x47, 0x0d, 0x60, 0x10}}};

namespace inventory_environment {
inline constexpr const wchar_t* initialise = L"Init";           // (account login)
inline constexpr const wchar_t* tableNames = L"GetTableNames";  // (result table out, second name out): texts
// (account-options object, account login, result table): fills the object.
inline constexpr const wchar_t* fillOptions = L"FillAccountOptions";
}  // namespace inventory_environment

// The account options; made empty and filled by the environment.
inline constexpr automation::NamedClass accountOptions = {
    L"OrvPlatform.AccountOptions", {0x8f2aba28, 0x9e60, 0x44d8, {0x86, 0xcd, 0x70, 0x80, 0xf5, 0x1f, 0x7e, 0x3f}}};

namespace account_options {
inline constexpr const wchar_t* costingBasis = L"CostingBasis";      // the valuation method
inline constexpr const wchar_t* inventoryTable = L"InventoryTable";  // tables, or views that data rights limit
inline constexpr const wchar_t* warehouseTable = L"WarehouseTable";
}  // namespace account_options

// Opens source documents.
inline constexpr automation::NamedClass sourceVoucher = {
    L"PellUniVch.clsUniVch", {0x7432f519, 0xa8ce, 0x4314, {0x9c, 0x02, 0xc1, 0xa5, 0x20, 0x3c, 0x42, 0xb6}}};

namespace source_voucher {                                                // the connection is passed by reference
inline constexpr const wchar_t* initialise = L"Init";                     // (login, connection, system version)
inline constexpr const wchar_t* show = L"ShowVoucher";                    // its arguments: the lists below
inline constexpr const wchar_t* showCostItemAdjustment = L"ShowProJust";  // (connection, row id)
// (voucher type code, voucher code, row id, connection, whether the account is commercial, valuation method)
inline constexpr const wchar_t* showDifferences = L"ShowDifVouchs";
inline constexpr const wchar_t* showPriceAdjustment = L"ShowCostJustVouch";  // (voucher code)

// What ShowVoucher takes, in its order, for each group of voucher types that has a list of its own.
enum class Argument { typeCode, voucherCode, rowId, connection };
using Arguments = std::array<Argument, 4>;
inline constexpr Arguments ofAdjustment = {  // types 20 and 21
    Argument::typeCode, Argument::voucherCode, Argument::rowId, Argument::connection};
inline constexpr Arguments ofWriteBack = {  // types 24 and 30
    Argument::typeCode, Argument::voucherCode, Argument::rowId, Argument::connection};
inline constexpr Arguments ofOther = {  // all the rest
    Argument::typeCode, Argument::voucherCode, Argument::rowId, Argument::connection};
}  // namespace source_voucher

// The general ledger's shared state.
inline constexpr automation::NamedClass ledgerModule = {
    L"ZzPub.clsPub", {0xdb034130, 0x830f, 0x424b, {0xa6, 0xd6, 0xfd, 0x4f, 0x16, 0x09, 0xb5, 0xdd}}};

namespace ledger_module {
inline constexpr const wchar_t* business = L"g_business";  // written: what ClsBusiness.Init was given, if anything
inline constexpr const wchar_t* login = L"oLogIn";         // written: the login object
// (connection string, ";PWD=" and the password, year of the voucher, account code, the login's date)
inline constexpr const wchar_t* initialise = L"InitPubs2";
}  // namespace ledger_module

// Opens general-ledger vouchers.
inline constexpr automation::NamedClass ledgerVoucher = {
    L"ZzPz.clsPZ", {0xcdf3ba16, 0xea64, 0x415d, {0x9c, 0xba, 0x6c, 0x03, 0x15, 0xc0, 0x4d, 0x28}}};

namespace ledger_voucher {
inline constexpr const wchar_t* login = L"zzLogin";   // written: the login object
inline constexpr const wchar_t* module = L"zzSys";    // written: the shared state
inline constexpr const wchar_t* open = L"StartUpPz";  // (menu code, module title or empty, voucher id): texts
}  // namespace ledger_voucher

// What Execute of the summary reports asks for a filter object.
inline constexpr automation::NamedClass drillThrough = {
    L"OrvPlatform.DrillThrough", {0xec2f2e81, 0xadfb, 0x4111, {0xa3, 0x5a, 0x32, 0x0f, 0xcb, 0xd9, 0x8c, 0x89}}};
inline constexpr const wchar_t* filterForLogin =
    L"GetFilter";  // (login, whether the action is "Link"): a filter object

// Localized texts and messages; the one component that is called early-bound, through IResourceService.
inline constexpr automation::NamedClass resourceService = {
    L"OrvPlatform.ResourceService", {0x40d07aa1, 0x5682, 0x4c45, {0x8c, 0x04, 0x73, 0x1a, 0xad, 0x81, 0xe4, 0x35}}};
inline constexpr IID resourceServiceId = {0x1d2095d1, 0x5ff4, 0x4d54, {0x95, 0xb8, 0xdc, 0x75, 0x2e, 0x76, 0x7d, 0x4a}};

// The dual interface of the resource and message service. Its first slots are those of IDispatch; these four follow in
// this order. Texts are passed by value, results are the caller's to free.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // as every interface of COM
struct IResourceService : IDispatch {
  // The localized name of `code` of the enumeration `type` ("IA.Bustype").
  virtual HRESULT STDMETHODCALLTYPE EnumName(BSTR type, BSTR code, BSTR* name) = 0;
  // The localized text of a resource key.
  virtual HRESULT STDMETHODCALLTYPE Text(BSTR key, BSTR* text) = 0;
  // Shows `text`; `flags` are icon and buttons (48: a warning); the last two are 0.
  virtual HRESULT STDMETHODCALLTYPE ShowMessage(BSTR text, LONG flags, LONG helpContext, LONG defaultAnswer) = 0;
  // With a key: its text with the list `arguments`, an array of variants, put in. With a login object (and no arguments): takes it over, so
  // that texts come in its language; the text is empty then.
  virtual HRESULT STDMETHODCALLTYPE FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) = 0;
};
#pragma GCC diagnostic pop

}  // namespace quillon::component::bindings

// Every name by which the library finds the host platform and ADO: ProgIDs, class ids of stand-ins, interface ids and
// member names. What a name stands for is said here and nowhere else; docs/platform-bindings.md tells an integrator the
// whole story. To bind the library to a platform that uses other names, change this header only.
#pragma once

#include "frame/com/class_lookup.h"

namespace quillon::com::bindings {

// --- ADO. The class ids are ADO's own, so that a stand-in made an InProcessClass under them takes ADO's place inside a
// process even where ADO is installed.

// The connection to the account database.
inline constexpr PlatformClass connection = {
    L"ADODB.Connection", {0x00000514, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}}};
// The rows of a lookup.
inline constexpr PlatformClass recordset = {
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

namespace argument {                                         // the argument object e of GETSQL and Execute
inline constexpr const wchar_t* rawFilter = L"rawFilter";    // the filter object
inline constexpr const wchar_t* login = L"Login";            // the session's login object
inline constexpr const wchar_t* loginObj = L"LoginObj";      // the same kind of login object, for the detail ledger
inline constexpr const wchar_t* dataSource = L"DataSource";  // the data-source descriptor
inline constexpr const wchar_t* action = L"Action";          // what Execute is asked for ("Link", "Vouch")
}  // namespace argument

namespace data_source {
inline constexpr const wchar_t* type = L"Type";  // written: 2, rows lie in a table
inline constexpr const wchar_t* sql = L"SQL";    // read: the table's name
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
inline constexpr PlatformClass publicComponent = {
    L"IA_Pub.ClsIAPub", {0x6c37e46f, 0x1639, 0x4f4c, {0xbe, 0x5d, 0x44, 0x86, 0x38, 0x98, 0x8b, 0x86}}};

namespace public_component {                                                // the connection is passed by reference
inline constexpr const wchar_t* accountInformation = L"GetAccInformation";  // (system, option, connection)
inline constexpr const wchar_t* currentPeriodYear = L"CurPeriodYear";       // (connection)
inline constexpr const wchar_t* costItemStartMonth = L"iFxStartMonth";      // (year text, connection)
inline constexpr const wchar_t* usedYears = L"GetIAUsedYears";              // (account code, connection): a dictionary
inline constexpr const wchar_t* dictionaryCount = L"Count";  // of that dictionary; its keys are "1", "2", ...
}  // namespace public_component

// Names of work tables: a number that differs between sessions, by the member with dispatch id 1.
inline constexpr PlatformClass naming = {
    L"OrvPlatform.Naming", {0x4e3725c9, 0xac68, 0x4eeb, {0x88, 0x27, 0x35, 0xb4, 0x8a, 0xa1, 0x59, 0x0d}}};
inline constexpr DISPID namingNumber = 1;

// Names of work tables: a text that differs between tables.
inline constexpr PlatformClass uniqueNames = {
    L"OrvPlatform.UniqueName", {0x0d204fb7, 0x1d0a, 0x41cf, {0x8e, 0x9c, 0x8c, 0xd8, 0xe1, 0xd9, 0xa6, 0xa6}}};
inline constexpr const wchar_t* uniqueName = L"UniqueName";  // a fresh text with each read

// What Execute of the summary reports asks for a filter object.
inline constexpr PlatformClass drillThrough = {
    L"OrvPlatform.DrillThrough", {0xec2f2e81, 0xadfb, 0x4111, {0xa3, 0x5a, 0x32, 0x0f, 0xcb, 0xd9, 0x8c, 0x89}}};
inline constexpr const wchar_t* filterForLogin =
    L"GetFilter";  // (login, whether the action is "Link"): a filter object

// Localized texts and messages; the one component that is called early-bound, through IResourceService.
inline constexpr PlatformClass resourceService = {
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
  // With a key: its text with the list `arguments` put in. With a login object (and no arguments): takes it over, so
  // that texts come in its language; the text is empty then.
  virtual HRESULT STDMETHODCALLTYPE FormatText(VARIANT keyOrLogin, VARIANT arguments, BSTR* text) = 0;
};
#pragma GCC diagnostic pop

}  // namespace quillon::com::bindings

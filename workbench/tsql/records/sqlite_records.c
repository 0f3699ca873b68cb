/* SQLite as a whole, so that what follows sees its B-trees. */
#include "sqlite3.c"

#include "sqlite_records.h"

struct quillon_records {
  sqlite3* database;
  BtCursor* cursor;
  unsigned char* copy; /* of a record that does not lie on one page */
  int room;            /* how long it may be */
};

/* The connection has the error as well, as it has after a call of SQLite's own interface. */
static int told(sqlite3* database, int result) {
  if (result != SQLITE_OK) sqlite3Error(database, result);
  return result;
}

static int isPlain(Table* table, int writes) {
  if (!IsOrdinaryTable(table) || !HasRowid(table) || (table->tabFlags & TF_HasGenerated) != 0) return 0;
  return !writes || (table->pIndex == 0 && table->pTrigger == 0);
}

static int isSame(const Table* table, const quillon_table* known) {
  int i;
  if (table->nCol != known->count || table->iPKey != known->number_column) return 0;
  for (i = 0; i < known->count; ++i) {
    if (strcmp(table->aCol[i].zCnName, known->columns[i]) != 0) return 0;
  }
  return 1;
}

int quillon_records_open(sqlite3* database, const quillon_table* known, int writes, quillon_records** records) {
  Table* const table = sqlite3FindTable(database, known->name, known->schema);
  quillon_records* made;
  Btree* tree;
  int result, version;
  *records = 0;
  if (table == 0 || !isPlain(table, writes) || !isSame(table, known) || ENC(database) != SQLITE_UTF8) {
    return SQLITE_MISMATCH;
  }
  tree = database->aDb[sqlite3SchemaToIndex(database, table->pSchema)].pBt;
  if (tree == 0) return told(database, SQLITE_MISUSE);
  if (database->autoCommit && (writes || sqlite3BtreeTxnState(tree) == SQLITE_TXN_NONE)) {
    return told(database, SQLITE_MISUSE);
  }
  /* Also where the file is written already: the savepoints that have begun since are told to it. */
  result = sqlite3BtreeBeginTrans(tree, writes, &version);
  if (result != SQLITE_OK) return told(database, result);
  if (version != table->pSchema->schema_cookie) return SQLITE_MISMATCH;
  made = sqlite3_malloc(sizeof(quillon_records));
  if (made == 0) return told(database, SQLITE_NOMEM);
  memset(made, 0, sizeof(quillon_records));
  made->database = database;
  made->cursor = sqlite3_malloc(sqlite3BtreeCursorSize());
  if (made->cursor == 0) {
    sqlite3_free(made);
    return told(database, SQLITE_NOMEM);
  }
  memset(made->cursor, 0, sqlite3BtreeCursorSize());
  sqlite3BtreeCursorZero(made->cursor);
  result = sqlite3BtreeCursor(tree, table->tnum, writes ? BTREE_WRCSR : 0, 0, made->cursor);
  if (result != SQLITE_OK) {
    sqlite3_free(made->cursor);
    sqlite3_free(made);
    return told(database, result);
  }
  *records = made;
  return SQLITE_OK;
}

void quillon_records_close(quillon_records* records) {
  if (records == 0) return;
  sqlite3BtreeCloseCursor(records->cursor);
  sqlite3_free(records->cursor);
  sqlite3_free(records->copy);
  sqlite3_free(records);
}

int quillon_records_read(quillon_records* records, sqlite3_int64 number, const void** data, int* size) {
  int place;
  u32 whole, local;
  int result = sqlite3BtreeTableMoveto(records->cursor, number, 0, &place);
  *data = 0;
  *size = 0;
  if (result != SQLITE_OK) return told(records->database, result);
  if (place != 0) return SQLITE_OK;
  whole = sqlite3BtreePayloadSize(records->cursor);
  *data = sqlite3BtreePayloadFetch(records->cursor, &local);
  if (local < whole) {
    *data = 0;
    if (whole > SQLITE_MAX_LENGTH) return told(records->database, SQLITE_CORRUPT);
    if (records->room < (int)whole) {
      unsigned char* const copy = sqlite3_realloc(records->copy, (int)whole);
      if (copy == 0) return told(records->database, SQLITE_NOMEM);
      records->copy = copy;
      records->room = (int)whole;
    }
    result = sqlite3BtreePayload(records->cursor, 0, whole, records->copy);
    if (result != SQLITE_OK) return told(records->database, result);
    *data = records->copy;
  }
  *size = (int)whole;
  return SQLITE_OK;
}

int quillon_records_last(quillon_records* records, sqlite3_int64* number) {
  int isEmpty;
  const int result = sqlite3BtreeLast(records->cursor, &isEmpty);
  *number = 0;
  if (result != SQLITE_OK) return told(records->database, result);
  if (!isEmpty) *number = sqlite3BtreeIntegerKey(records->cursor);
  return SQLITE_OK;
}

int quillon_records_write(quillon_records* records, sqlite3_int64 number, const void* data, int size, int follows) {
  BtreePayload row;
  memset(&row, 0, sizeof(row));
  row.nKey = number;
  row.pData = data;
  row.nData = size;
  return told(records->database, sqlite3BtreeInsert(records->cursor, &row, follows ? BTREE_APPEND : 0, 0));
}

void quillon_read_indexes_for_tables(sqlite3* database, int may) {
  if (may) {
    database->dbOptFlags &= ~(u32)SQLITE_CoverIdxScan;
  } else {
    database->dbOptFlags |= SQLITE_CoverIdxScan;
  }
}

/* Rows of SQLite's tables as the records that SQLite stores, past its SQL: for whoever makes many rows of pieces of other
   rows, and would otherwise have each value taken out of one record and put into the next.

   SQLite's own interface gives no records. So this is compiled together with SQLite's source, whose version is fixed
   (tools/setup.sh), and uses its B-trees as SQLite's statements do. What a record looks like is part of SQLite's file
   format (record.h). */
#ifndef QUILLON_TSQL_SQLITE_RECORDS_H
#define QUILLON_TSQL_SQLITE_RECORDS_H

#include <sqlite3.h>

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(readability-identifier-naming): names as SQLite's own interface has them. */
typedef struct quillon_records quillon_records;

/* A table as whoever opens it knows it. */
typedef struct quillon_table {
  const char* schema; /* "main", "temp", .. */
  const char* name;
  const char* const* columns; /* their names */
  int count;                  /* of the columns */
  int number_column;          /* the column that is the row's number; -1: none is */
} quillon_table;

/* Opens a table to be read or, with `writes`, to be read and written, within an open transaction or savepoint; a statement
   that reads the file and has not ended is enough for who only reads. They are closed before that ends. A column that is the row's number is null in a record; who writes rows of a table that counts them looks
   after the counter.

   Gives a code of SQLite: SQLITE_OK, and `*records` is to be closed; SQLITE_MISMATCH when the table is not of the plain
   kind whose rows are their records alone, with texts in UTF-8 (a view, a virtual table, generated columns, no row
   numbers; when written also an index or a trigger), when it is another than the one that is known, or when another
   connection has changed the schema since it was read; any other is an error, which the connection has, too. */
int quillon_records_open(sqlite3* database, const quillon_table* table, int writes, quillon_records** records);
void quillon_records_close(quillon_records* records);

/* The record of the row with that number. `*data` is null when there is no such row, and lasts until the next call for
   these records or change of their table. */
int quillon_records_read(quillon_records* records, sqlite3_int64 number, const void** data, int* size);

/* The greatest row number; 0 in an empty table. */
int quillon_records_last(quillon_records* records, sqlite3_int64* number);

/* Stores the record as the row with that number, in place of the one that has it. `follows`: the number is greater than
   all others. */
int quillon_records_write(quillon_records* records, sqlite3_int64 number, const void* data, int size, int follows);

/* Whether statements that are prepared from now on may read an index that has all columns they need in place of its
   table; they may from the start. */
void quillon_read_indexes_for_tables(sqlite3* database, int may);
/* NOLINTEND(readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif

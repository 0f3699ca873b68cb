/* libxlsxwriter prints errors to standard error by itself, or hands them to the language R when it is built for that, by this
 * header. Here they go nowhere (libraries.cmake): its calls give an error back as well, which
 * workbench/presentation/xlsx_workbook.cpp then says in one line. */
#ifndef QUILLON_QUIET_XLSXWRITER_R_H
#define QUILLON_QUIET_XLSXWRITER_R_H

#define REprintf(...) ((void)0)

#endif

// Keeps a file open so that others may read it but not write to it, as Windows itself does with a loaded library (Wine does
// not). Says so by making a second file, and ends when that is deleted.
//
//   hold_file FILE SIGN
#include "automation/win32.h"

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) return 2;
  const HANDLE held =
      CreateFileW(argv[1], GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (held == INVALID_HANDLE_VALUE) return 1;
  const HANDLE sign = CreateFileW(argv[2], GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (sign == INVALID_HANDLE_VALUE) return 1;
  CloseHandle(sign);
  while (GetFileAttributesW(argv[2]) != INVALID_FILE_ATTRIBUTES)
    Sleep(50);
  CloseHandle(held);
  return 0;
}

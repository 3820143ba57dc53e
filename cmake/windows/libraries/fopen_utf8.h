/* Put before each source of the libraries that open files by narrow names: here these are UTF-8, in the C library's own
   functions the ANSI code page, which lacks most letters. */
#pragma once

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <windows.h>

/* queue.h of libxlsxwriter has it too. */
#undef SLIST_ENTRY

static inline wchar_t* lvx_widened(const char* name) {
  const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name, -1, NULL, 0);
  wchar_t* wide = size > 0 ? (wchar_t*)malloc((size_t)size * sizeof(wchar_t)) : NULL;
  if (wide != NULL) MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name, -1, wide, size);
  return wide;
}

static inline FILE* lvx_fopen_utf8(const char* name, const char* mode) {
  wchar_t* wide = lvx_widened(name);
  wchar_t* wide_mode = lvx_widened(mode);
  FILE* stream = wide != NULL && wide_mode != NULL ? _wfopen(wide, wide_mode) : NULL;
  free(wide);
  free(wide_mode);
  return stream;
}

static inline int lvx_open_utf8(const char* name, int flags, int permissions) {
  wchar_t* wide = lvx_widened(name);
  const int file = wide != NULL ? _wopen(wide, flags, permissions) : -1;
  free(wide);
  return file;
}

#define fopen lvx_fopen_utf8
#define fopen64 lvx_fopen_utf8
#define _open(name, flags, permissions) lvx_open_utf8(name, flags, permissions)

static inline int lvx_stat_utf8(const char* name, struct stat* status) {
  wchar_t* wide = lvx_widened(name);
  const DWORD attributes = wide != NULL ? GetFileAttributesW(wide) : INVALID_FILE_ATTRIBUTES;
  free(wide);
  if (attributes == INVALID_FILE_ATTRIBUTES) return -1;
  status->st_mode = attributes & FILE_ATTRIBUTE_DIRECTORY ? S_IFDIR : S_IFREG;
  return 0;
}

#define stat(name, status) lvx_stat_utf8(name, status)

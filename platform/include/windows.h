// SPDX-License-Identifier: MIT
//
// The part of the Win32 interface that Vorn and its hosts use, under the platform's own names.
//
//   LARGE_INTEGER counter, frequency;
//   QueryPerformanceCounter(&counter);
//   QueryPerformanceFrequency(&frequency);
//
// Widths are those of the 32-bit platform wherever a record crosses the border: LONG, DWORD, BOOL
// and HRESULT have 32 bits. Handles, WPARAM and LPARAM are as wide as a pointer. No macro renames a
// function.
//
//   [X] types and result codes
//   [X] performance counter, Sleep
//   [X] listing of a directory
//   [ ] window, cursor, messages
//   [ ] keys and mouse
#ifndef VORN_PLATFORM_WINDOWS_H
#define VORN_PLATFORM_WINDOWS_H
#pragma GCC system_header

#include <cstddef>
#include <cstdint>

typedef int32_t BOOL;
typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef int16_t SHORT;
typedef uint16_t USHORT;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef float FLOAT;
typedef int32_t HRESULT;
typedef uint16_t ATOM;
typedef char CHAR;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef intptr_t LPARAM;
typedef uintptr_t WPARAM;
typedef intptr_t LRESULT;
typedef const char* LPCSTR;
typedef char* LPSTR;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef void* HANDLE;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#ifndef CONST
#define CONST const
#endif
#define WINAPI
#define CALLBACK

struct POINT {
    LONG x, y;
};
typedef POINT* LPPOINT;
struct RECT {
    LONG left, top, right, bottom;
};
typedef RECT* LPRECT;
union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};
struct FILETIME {
    DWORD dwLowDateTime, dwHighDateTime;
};
struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime, ftLastAccessTime, ftLastWriteTime;
    DWORD nFileSizeHigh, nFileSizeLow, dwReserved0, dwReserved1;
    CHAR cFileName[260];
    CHAR cAlternateFileName[14];
};

#define INVALID_HANDLE_VALUE ((HANDLE)(intptr_t)-1)
#define FILE_ATTRIBUTE_DIRECTORY 0x10
#define FILE_ATTRIBUTE_NORMAL 0x80
#define S_OK 0
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_FAIL ((HRESULT)0x80004005)
#define SUCCEEDED(hr) ((HRESULT)(hr) >= 0)
#define FAILED(hr) ((HRESULT)(hr) < 0)
#define LOWORD(l) ((WORD)((uintptr_t)(l)&0xffff))
#define HIWORD(l) ((WORD)(((uintptr_t)(l) >> 16) & 0xffff))

#pragma GCC visibility push(default)

/// Counts since some moment before the start, monotonic, never below ten seconds' worth. Always
/// TRUE.
BOOL QueryPerformanceCounter(LARGE_INTEGER*);
/// Counts per second, constant and above 0. Always TRUE.
BOOL QueryPerformanceFrequency(LARGE_INTEGER*);
void Sleep(DWORD milliseconds);

/// Lists "folder/pattern", where `*` and `?` in the last element are wildcards and case counts;
/// "*.*" stands for every name, as ever. The entries come in the order of the file system, "." and
/// ".." and names that begin with a dot among them. Gives INVALID_HANDLE_VALUE when nothing
/// matches. Of the record, the name, the size and the directory flag are filled; a link counts as
/// what it points at.
HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA*);
BOOL FindNextFileA(HANDLE, WIN32_FIND_DATAA*);
BOOL FindClose(HANDLE);

#pragma GCC visibility pop

#endif

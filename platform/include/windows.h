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
//   [X] window, cursor, messages
//   [X] keys and mouse
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
struct HWND__;
struct HINSTANCE__;
struct HMENU__;
struct HICON__;
struct HBRUSH__;
struct HMONITOR__;
typedef HWND__* HWND;
typedef HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef HMENU__* HMENU;
typedef HICON__* HICON;
typedef HICON HCURSOR;
typedef HBRUSH__* HBRUSH;
typedef HMONITOR__* HMONITOR;

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
typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);
struct WNDCLASSEXA {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
    HICON hIconSm;
};
struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
typedef MSG* LPMSG;
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
#define MAKEINTRESOURCEA(i) ((LPCSTR)(uintptr_t)(WORD)(i))
#define LOWORD(l) ((WORD)((uintptr_t)(l)&0xffff))
#define HIWORD(l) ((WORD)(((uintptr_t)(l) >> 16) & 0xffff))

enum : UINT {
    WM_DESTROY = 2,
    WM_SIZE = 5,
    WM_ACTIVATE = 6,
    WM_CLOSE = 16,
    WM_QUIT = 18,
    WM_ERASEBKGND = 20,
    WM_SETCURSOR = 32,
    WM_KEYDOWN = 256,
    WM_KEYUP = 257,
    WM_MOUSEMOVE = 512,
    WM_MOUSEWHEEL = 522,
    PM_REMOVE = 1
};
enum : DWORD {
    WS_OVERLAPPED = 0,
    WS_POPUP = 0x80000000u,
    WS_CAPTION = 0xC00000,
    WS_SYSMENU = 0x80000,
    WS_MINIMIZEBOX = 0x20000,
    WS_OVERLAPPEDWINDOW = 0xCF0000
};
enum : int { CW_USEDEFAULT = INT32_MIN, SW_SHOWDEFAULT = 10, GWL_STYLE = -16, HTCLIENT = 1 };
enum : UINT { CS_CLASSDC = 0x40, IMAGE_CURSOR = 2, SWP_SHOWWINDOW = 0x40 };
enum : int {
    VK_LBUTTON = 1,
    VK_RBUTTON = 2,
    VK_MBUTTON = 4,
    VK_BACK = 8,
    VK_TAB = 9,
    VK_RETURN = 13,
    VK_SHIFT = 16,
    VK_ESCAPE = 27,
    VK_SPACE = 32,
    VK_LEFT = 37,
    VK_UP = 38,
    VK_RIGHT = 39,
    VK_DOWN = 40,
    VK_F1 = 112
};
#define HWND_NOTOPMOST ((HWND)(intptr_t)-2)

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

HMODULE GetModuleHandleA(LPCSTR);
HCURSOR LoadCursorFromFileA(LPCSTR);
HANDLE LoadImageA(HINSTANCE, LPCSTR name, UINT type, int cx, int cy, UINT flags);
ATOM RegisterClassExA(const WNDCLASSEXA*);
BOOL AdjustWindowRect(LPRECT, DWORD style, BOOL menu);
HWND CreateWindowExA(DWORD exStyle, LPCSTR cls, LPCSTR title, DWORD style, int x, int y, int w,
                     int h, HWND parent, HMENU, HINSTANCE, LPVOID);
BOOL DestroyWindow(HWND);
BOOL ShowWindow(HWND, int);
BOOL UpdateWindow(HWND);
BOOL GetWindowRect(HWND, LPRECT);
LONG SetWindowLongA(HWND, int index, LONG value);
HMENU GetMenu(HWND);
BOOL SetMenu(HWND, HMENU);
BOOL SetWindowPos(HWND, HWND after, int x, int y, int cx, int cy, UINT flags);
LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM);
HCURSOR SetCursor(HCURSOR);
int ShowCursor(BOOL);
SHORT GetKeyState(int vk);
BOOL GetCursorPos(LPPOINT);
BOOL PeekMessageA(LPMSG, HWND, UINT min, UINT max, UINT remove);
BOOL TranslateMessage(const MSG*);
LRESULT DispatchMessageA(const MSG*);
LRESULT SendMessageA(HWND, UINT, WPARAM, LPARAM);
BOOL PostMessageA(HWND, UINT, WPARAM, LPARAM);

#pragma GCC visibility pop

#endif

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
//   [X] a message that waits for its button, a file that the desktop opens
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
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define E_FAIL ((HRESULT)0x80004005)
#define SUCCEEDED(hr) ((HRESULT)(hr) >= 0)
#define FAILED(hr) ((HRESULT)(hr) < 0)
#define MAKEINTRESOURCEA(i) ((LPCSTR)(uintptr_t)(WORD)(i))
#define LOWORD(l) ((WORD)((uintptr_t)(l)&0xffff))
#define HIWORD(l) ((WORD)(((uintptr_t)(l) >> 16) & 0xffff))

enum : UINT {
    WM_DESTROY = 2,
    WM_MOVE = 3,     // lParam: x and y of the client area on the screen
    WM_SIZE = 5,     // wParam: SIZE_; lParam: client width and height
    WM_ACTIVATE = 6, // wParam: WA_
    WM_CLOSE = 16,
    WM_QUIT = 18, // wParam: what PostQuitMessage was given
    WM_ERASEBKGND = 20,
    WM_SETCURSOR = 32, // wParam: the window; lParam: HTCLIENT and the mouse message
    // wParam: the virtual key, without its side. lParam: bits 16 to 23 the scan code, 24 an
    // extended key, 29 Alt is held, 30 the key was down before, 31 it comes up; the low word is 1.
    WM_KEYDOWN = 256,
    WM_KEYUP = 257,
    WM_CHAR = 258,       // wParam: a byte of the text in UTF-8
    WM_SYSKEYDOWN = 260, // keys with Alt, and F10
    WM_SYSKEYUP = 261,
    // wParam: low word MK_; of the wheels, the high word is the turn, WHEEL_DELTA a notch; of the X
    // buttons, XBUTTON1 or XBUTTON2. lParam: x and y in client pixels, of the wheels on the screen.
    WM_MOUSEMOVE = 512,
    WM_LBUTTONDOWN = 513,
    WM_LBUTTONUP = 514,
    WM_LBUTTONDBLCLK = 515, // in place of the second WM_LBUTTONDOWN, in classes with CS_DBLCLKS
    WM_RBUTTONDOWN = 516,
    WM_RBUTTONUP = 517,
    WM_RBUTTONDBLCLK = 518,
    WM_MBUTTONDOWN = 519,
    WM_MBUTTONUP = 520,
    WM_MBUTTONDBLCLK = 521,
    WM_MOUSEWHEEL = 522,
    WM_XBUTTONDOWN = 523,
    WM_XBUTTONUP = 524,
    WM_XBUTTONDBLCLK = 525,
    WM_MOUSEHWHEEL = 526,
    WM_USER = 1024,
    PM_NOREMOVE = 0,
    PM_REMOVE = 1
};
enum : WORD { WA_INACTIVE = 0, WA_ACTIVE = 1, WA_CLICKACTIVE = 2 };
enum : WORD { SIZE_RESTORED = 0, SIZE_MINIMIZED = 1, SIZE_MAXIMIZED = 2 };
enum : WORD {
    MK_LBUTTON = 1,
    MK_RBUTTON = 2,
    MK_SHIFT = 4,
    MK_CONTROL = 8,
    MK_MBUTTON = 16,
    MK_XBUTTON1 = 32,
    MK_XBUTTON2 = 64
};
enum : WORD { XBUTTON1 = 1, XBUTTON2 = 2 };
enum : int { WHEEL_DELTA = 120 };
enum : DWORD {
    WS_OVERLAPPED = 0,
    WS_POPUP = 0x80000000u, // full screen
    WS_CAPTION = 0xC00000,
    WS_SYSMENU = 0x80000,
    WS_THICKFRAME = 0x40000, // the user may change the size
    WS_MINIMIZEBOX = 0x20000,
    WS_MAXIMIZEBOX = 0x10000,
    WS_OVERLAPPEDWINDOW = 0xCF0000
};
enum : int { CW_USEDEFAULT = INT32_MIN, GWL_STYLE = -16, HTCLIENT = 1 };
enum : int {
    SW_HIDE = 0,
    SW_SHOWNORMAL = 1,
    SW_SHOWMINIMIZED = 2,
    SW_MAXIMIZE = 3,
    SW_SHOW = 5,
    SW_MINIMIZE = 6,
    SW_RESTORE = 9,
    SW_SHOWDEFAULT = 10
};
enum : UINT { CS_DBLCLKS = 8, CS_CLASSDC = 0x40, IMAGE_CURSOR = 2 };
enum : UINT { SWP_NOSIZE = 1, SWP_NOMOVE = 2, SWP_SHOWWINDOW = 0x40, SWP_HIDEWINDOW = 0x80 };
// Virtual keys; letters and digits are their own capital characters.
enum : int {
    VK_LBUTTON = 1,
    VK_RBUTTON = 2,
    VK_CANCEL = 3,
    VK_MBUTTON = 4,
    VK_XBUTTON1 = 5,
    VK_XBUTTON2 = 6,
    VK_BACK = 8,
    VK_TAB = 9,
    VK_CLEAR = 12,
    VK_RETURN = 13,
    VK_SHIFT = 16,
    VK_CONTROL = 17,
    VK_MENU = 18,
    VK_PAUSE = 19,
    VK_CAPITAL = 20,
    VK_KANA = 21,
    VK_HANGUL = 21,
    VK_IME_ON = 22,
    VK_JUNJA = 23,
    VK_FINAL = 24,
    VK_HANJA = 25,
    VK_KANJI = 25,
    VK_IME_OFF = 26,
    VK_ESCAPE = 27,
    VK_CONVERT = 28,
    VK_NONCONVERT = 29,
    VK_ACCEPT = 30,
    VK_MODECHANGE = 31,
    VK_SPACE = 32,
    VK_PRIOR = 33,
    VK_NEXT = 34,
    VK_END = 35,
    VK_HOME = 36,
    VK_LEFT = 37,
    VK_UP = 38,
    VK_RIGHT = 39,
    VK_DOWN = 40,
    VK_SELECT = 41,
    VK_PRINT = 42,
    VK_EXECUTE = 43,
    VK_SNAPSHOT = 44,
    VK_INSERT = 45,
    VK_DELETE = 46,
    VK_HELP = 47,
    VK_LWIN = 91,
    VK_RWIN = 92,
    VK_APPS = 93,
    VK_SLEEP = 95,
    VK_NUMPAD0 = 96,
    VK_NUMPAD1 = 97,
    VK_NUMPAD2 = 98,
    VK_NUMPAD3 = 99,
    VK_NUMPAD4 = 100,
    VK_NUMPAD5 = 101,
    VK_NUMPAD6 = 102,
    VK_NUMPAD7 = 103,
    VK_NUMPAD8 = 104,
    VK_NUMPAD9 = 105,
    VK_MULTIPLY = 106,
    VK_ADD = 107,
    VK_SEPARATOR = 108,
    VK_SUBTRACT = 109,
    VK_DECIMAL = 110,
    VK_DIVIDE = 111,
    VK_F1 = 112,
    VK_F2 = 113,
    VK_F3 = 114,
    VK_F4 = 115,
    VK_F5 = 116,
    VK_F6 = 117,
    VK_F7 = 118,
    VK_F8 = 119,
    VK_F9 = 120,
    VK_F10 = 121,
    VK_F11 = 122,
    VK_F12 = 123,
    VK_F13 = 124,
    VK_F14 = 125,
    VK_F15 = 126,
    VK_F16 = 127,
    VK_F17 = 128,
    VK_F18 = 129,
    VK_F19 = 130,
    VK_F20 = 131,
    VK_F21 = 132,
    VK_F22 = 133,
    VK_F23 = 134,
    VK_F24 = 135,
    VK_NUMLOCK = 144,
    VK_SCROLL = 145,
    VK_OEM_NEC_EQUAL = 146,
    VK_OEM_FJ_JISHO = 146,
    VK_OEM_FJ_MASSHOU = 147,
    VK_OEM_FJ_TOUROKU = 148,
    VK_OEM_FJ_LOYA = 149,
    VK_OEM_FJ_ROYA = 150,
    VK_LSHIFT = 160,
    VK_RSHIFT = 161,
    VK_LCONTROL = 162,
    VK_RCONTROL = 163,
    VK_LMENU = 164,
    VK_RMENU = 165,
    VK_BROWSER_BACK = 166,
    VK_BROWSER_FORWARD = 167,
    VK_BROWSER_REFRESH = 168,
    VK_BROWSER_STOP = 169,
    VK_BROWSER_SEARCH = 170,
    VK_BROWSER_FAVORITES = 171,
    VK_BROWSER_HOME = 172,
    VK_VOLUME_MUTE = 173,
    VK_VOLUME_DOWN = 174,
    VK_VOLUME_UP = 175,
    VK_MEDIA_NEXT_TRACK = 176,
    VK_MEDIA_PREV_TRACK = 177,
    VK_MEDIA_STOP = 178,
    VK_MEDIA_PLAY_PAUSE = 179,
    VK_LAUNCH_MAIL = 180,
    VK_LAUNCH_MEDIA_SELECT = 181,
    VK_LAUNCH_APP1 = 182,
    VK_LAUNCH_APP2 = 183,
    VK_OEM_1 = 186,    // ;:
    VK_OEM_PLUS = 187, // =+
    VK_OEM_COMMA = 188,
    VK_OEM_MINUS = 189,
    VK_OEM_PERIOD = 190,
    VK_OEM_2 = 191, // /?
    VK_OEM_3 = 192, // `~
    VK_ABNT_C1 = 193,
    VK_ABNT_C2 = 194,
    VK_OEM_4 = 219, // [{
    VK_OEM_5 = 220, // \|
    VK_OEM_6 = 221, // ]}
    VK_OEM_7 = 222, // '"
    VK_OEM_8 = 223,
    VK_OEM_AX = 225,
    VK_OEM_102 = 226, // <> or \| beside the left Shift
    VK_ICO_HELP = 227,
    VK_ICO_00 = 228,
    VK_PROCESSKEY = 229,
    VK_ICO_CLEAR = 230,
    VK_PACKET = 231,
    VK_OEM_RESET = 233,
    VK_OEM_JUMP = 234,
    VK_OEM_PA1 = 235,
    VK_OEM_PA2 = 236,
    VK_OEM_PA3 = 237,
    VK_OEM_WSCTRL = 238,
    VK_OEM_CUSEL = 239,
    VK_OEM_ATTN = 240,
    VK_OEM_FINISH = 241,
    VK_OEM_COPY = 242,
    VK_OEM_AUTO = 243,
    VK_OEM_ENLW = 244,
    VK_OEM_BACKTAB = 245,
    VK_ATTN = 246,
    VK_CRSEL = 247,
    VK_EXSEL = 248,
    VK_EREOF = 249,
    VK_PLAY = 250,
    VK_ZOOM = 251,
    VK_NONAME = 252,
    VK_PA1 = 253,
    VK_OEM_CLEAR = 254
};
// Text, as the fonts of D3DX take it.
enum : UINT {
    DT_TOP = 0,
    DT_LEFT = 0,
    DT_CENTER = 1,
    DT_RIGHT = 2,
    DT_VCENTER = 4,
    DT_BOTTOM = 8,
    DT_WORDBREAK = 0x10,
    DT_SINGLELINE = 0x20,
    DT_NOCLIP = 0x100,
    DT_CALCRECT = 0x400,
    FW_NORMAL = 400,
    FW_BOLD = 700,
    DEFAULT_CHARSET = 1,
    OUT_DEFAULT_PRECIS = 0,
    ANTIALIASED_QUALITY = 4,
    DEFAULT_PITCH = 0
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

/// Any value but null: it stands for the program in the functions below, and none looks at it.
HMODULE GetModuleHandleA(LPCSTR);

// Cursors. A file of one is a .cur or a .ani, of which the first picture is shown. Handles are good
// until the process ends.

/// Null for a file that is missing or holds no cursor.
HCURSOR LoadCursorFromFileA(LPCSTR);
/// As LoadCursorFromFileA for IMAGE_CURSOR and a path. Null for everything else: there are no
/// resources.
HANDLE LoadImageA(HINSTANCE, LPCSTR name, UINT type, int cx, int cy, UINT flags);
/// Returns the one before, which at first is the system's arrow. Null shows none.
HCURSOR SetCursor(HCURSOR);
/// The pointer is shown while the count is 0 or more; returns the count. Other than on Win32 it
/// stays between -1 and 0: a procedure may hide the pointer with each WM_SETCURSOR, and one call
/// shows it again.
int ShowCursor(BOOL);

// Windows. A handle that never was a window's, or is no more, gives 0. The frame that a desktop
// draws around a window is not counted: the outer rectangle of a window is its client area.

/// Keeps procedure, cursor, CS_DBLCLKS and name; a name that is there already, in any case, is
/// given the new ones for the windows to come. 0 without a name or a procedure.
ATOM RegisterClassExA(const WNDCLASSEXA*);
/// The frame is 0: the rectangle stays as it is.
BOOL AdjustWindowRect(LPRECT, DWORD style, BOOL menu);
/// Hidden until ShowWindow. The class is a name, or the number that RegisterClassExA gave. Null
/// without such a class, and where no window can be made. CW_USEDEFAULT for `x` leaves the place to
/// the desktop, for `w` the size to us. WS_POPUP is full screen: see SetWindowLongA.
HWND CreateWindowExA(DWORD exStyle, LPCSTR cls, LPCSTR title, DWORD style, int x, int y, int w,
                     int h, HWND parent, HMENU, HINSTANCE, LPVOID);
/// Delivers WM_ACTIVATE 0 if the window was active, then WM_DESTROY, before it returns. Messages
/// that wait for the window are dropped. It may be called in the window's own procedure.
BOOL DestroyWindow(HWND);
/// Gives whether the window was shown before. Without a display, a window that is shown is active
/// from then on, and its procedure is told before this returns; on a desktop, WM_ACTIVATE comes
/// with the messages.
BOOL ShowWindow(HWND, int);
BOOL UpdateWindow(HWND);
BOOL GetWindowRect(HWND, LPRECT);
/// GWL_STYLE only; gives the style before. WS_POPUP puts the window in full screen, without it
/// comes back. The display keeps its resolution meanwhile, but the host need not know: sizes and
/// positions are those of the client area that the window had, as if the display had been set to
/// it.
LONG SetWindowLongA(HWND, int index, LONG value);
/// Always null.
HMENU GetMenu(HWND);
BOOL SetMenu(HWND, HMENU);
/// `after` is not looked at. In full screen the size is that which positions are mapped to, and the
/// rectangle that the window comes back to.
BOOL SetWindowPos(HWND, HWND after, int x, int y, int cx, int cy, UINT flags);

// Messages. The machine is asked when PeekMessageA finds nothing waiting; a procedure runs in
// DispatchMessageA, SendMessageA, DestroyWindow and ShowWindow, on the thread that calls them,
// which is the one that made the window.

/// FALSE when no message passes the filters: a window, or null for all, and numbers from `min` to
/// `max`, or both 0. WM_QUIT passes every filter, once nothing else waits.
BOOL PeekMessageA(LPMSG, HWND, UINT min, UINT max, UINT remove);
/// Nothing is left to do: WM_CHAR comes by itself, behind the key's WM_KEYDOWN.
BOOL TranslateMessage(const MSG*);
/// Sends WM_SETCURSOR with HTCLIENT before a WM_MOUSEMOVE.
LRESULT DispatchMessageA(const MSG*);
LRESULT SendMessageA(HWND, UINT, WPARAM, LPARAM);
/// A message without a window is for the host alone: no procedure gets it.
BOOL PostMessageA(HWND, UINT, WPARAM, LPARAM);
void PostQuitMessage(int exitCode);
/// WM_CLOSE destroys the window, Alt and F4 post it, WM_SETCURSOR over the client area shows the
/// cursor of the class.
LRESULT DefWindowProcA(HWND, UINT, WPARAM, LPARAM);

// Keys and mouse, as the messages that were fetched have left them. When the window loses the
// focus, all keys come up, with their messages, before WM_ACTIVATE.

/// Bit 15 while the key or mouse button is down, bit 0 while a lock is lit. VK_SHIFT, VK_CONTROL
/// and VK_MENU are down while either side is. Codes outside of 0 to 255 are up.
SHORT GetKeyState(int vk);
/// Screen pixels. Where the desktop does not tell, the place in the window that the mouse was last
/// seen at.
BOOL GetCursorPos(LPPOINT);

#define MB_OK 0x0
#define MB_ICONERROR 0x10
#define MB_ICONWARNING 0x30
#define MB_ICONINFORMATION 0x40
#define IDOK 1
/// Shows a text and waits until it was read: IDOK. Whatever the type says, OK is the one button.
/// Messages of the host's windows wait meanwhile. 0, at once, where nobody could read it: without a
/// display, and where the desktop refuses.
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);
/// Opens a file or an address with the desktop's program for it, by "open" or null, and does not
/// wait for that. A number above 32, or 31 for all that does not come about, at once without a
/// display.
HINSTANCE ShellExecuteA(HWND owner, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                        LPCSTR directory, INT show);

#pragma GCC visibility pop

#endif

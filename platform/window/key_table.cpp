// SPDX-License-Identifier: MIT
#include "platform/window/key_table.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace VornPlatform {

namespace {

struct Place {
    SDL_Scancode scancode;
    std::uint8_t virtualKey;
    std::uint16_t scan;
};

constexpr Place Places[] = {
    {SDL_SCANCODE_A, 'A', 0x1E},
    {SDL_SCANCODE_B, 'B', 0x30},
    {SDL_SCANCODE_C, 'C', 0x2E},
    {SDL_SCANCODE_D, 'D', 0x20},
    {SDL_SCANCODE_E, 'E', 0x12},
    {SDL_SCANCODE_F, 'F', 0x21},
    {SDL_SCANCODE_G, 'G', 0x22},
    {SDL_SCANCODE_H, 'H', 0x23},
    {SDL_SCANCODE_I, 'I', 0x17},
    {SDL_SCANCODE_J, 'J', 0x24},
    {SDL_SCANCODE_K, 'K', 0x25},
    {SDL_SCANCODE_L, 'L', 0x26},
    {SDL_SCANCODE_M, 'M', 0x32},
    {SDL_SCANCODE_N, 'N', 0x31},
    {SDL_SCANCODE_O, 'O', 0x18},
    {SDL_SCANCODE_P, 'P', 0x19},
    {SDL_SCANCODE_Q, 'Q', 0x10},
    {SDL_SCANCODE_R, 'R', 0x13},
    {SDL_SCANCODE_S, 'S', 0x1F},
    {SDL_SCANCODE_T, 'T', 0x14},
    {SDL_SCANCODE_U, 'U', 0x16},
    {SDL_SCANCODE_V, 'V', 0x2F},
    {SDL_SCANCODE_W, 'W', 0x11},
    {SDL_SCANCODE_X, 'X', 0x2D},
    {SDL_SCANCODE_Y, 'Y', 0x15},
    {SDL_SCANCODE_Z, 'Z', 0x2C},
    {SDL_SCANCODE_1, '1', 0x02},
    {SDL_SCANCODE_2, '2', 0x03},
    {SDL_SCANCODE_3, '3', 0x04},
    {SDL_SCANCODE_4, '4', 0x05},
    {SDL_SCANCODE_5, '5', 0x06},
    {SDL_SCANCODE_6, '6', 0x07},
    {SDL_SCANCODE_7, '7', 0x08},
    {SDL_SCANCODE_8, '8', 0x09},
    {SDL_SCANCODE_9, '9', 0x0A},
    {SDL_SCANCODE_0, '0', 0x0B},
    {SDL_SCANCODE_RETURN, VK_RETURN, 0x1C},
    {SDL_SCANCODE_ESCAPE, VK_ESCAPE, 0x01},
    {SDL_SCANCODE_BACKSPACE, VK_BACK, 0x0E},
    {SDL_SCANCODE_TAB, VK_TAB, 0x0F},
    {SDL_SCANCODE_SPACE, VK_SPACE, 0x39},
    {SDL_SCANCODE_MINUS, VK_OEM_MINUS, 0x0C},
    {SDL_SCANCODE_EQUALS, VK_OEM_PLUS, 0x0D},
    {SDL_SCANCODE_LEFTBRACKET, VK_OEM_4, 0x1A},
    {SDL_SCANCODE_RIGHTBRACKET, VK_OEM_6, 0x1B},
    {SDL_SCANCODE_BACKSLASH, VK_OEM_5, 0x2B},
    {SDL_SCANCODE_NONUSHASH, VK_OEM_5, 0x2B},
    {SDL_SCANCODE_SEMICOLON, VK_OEM_1, 0x27},
    {SDL_SCANCODE_APOSTROPHE, VK_OEM_7, 0x28},
    {SDL_SCANCODE_GRAVE, VK_OEM_3, 0x29},
    {SDL_SCANCODE_COMMA, VK_OEM_COMMA, 0x33},
    {SDL_SCANCODE_PERIOD, VK_OEM_PERIOD, 0x34},
    {SDL_SCANCODE_SLASH, VK_OEM_2, 0x35},
    {SDL_SCANCODE_CAPSLOCK, VK_CAPITAL, 0x3A},
    {SDL_SCANCODE_F1, VK_F1, 0x3B},
    {SDL_SCANCODE_F2, VK_F2, 0x3C},
    {SDL_SCANCODE_F3, VK_F3, 0x3D},
    {SDL_SCANCODE_F4, VK_F4, 0x3E},
    {SDL_SCANCODE_F5, VK_F5, 0x3F},
    {SDL_SCANCODE_F6, VK_F6, 0x40},
    {SDL_SCANCODE_F7, VK_F7, 0x41},
    {SDL_SCANCODE_F8, VK_F8, 0x42},
    {SDL_SCANCODE_F9, VK_F9, 0x43},
    {SDL_SCANCODE_F10, VK_F10, 0x44},
    {SDL_SCANCODE_F11, VK_F11, 0x57},
    {SDL_SCANCODE_F12, VK_F12, 0x58},
    {SDL_SCANCODE_F13, VK_F13, 0x64},
    {SDL_SCANCODE_F14, VK_F14, 0x65},
    {SDL_SCANCODE_F15, VK_F15, 0x66},
    {SDL_SCANCODE_F16, VK_F16, 0x67},
    {SDL_SCANCODE_F17, VK_F17, 0x68},
    {SDL_SCANCODE_F18, VK_F18, 0x69},
    {SDL_SCANCODE_F19, VK_F19, 0x6A},
    {SDL_SCANCODE_F20, VK_F20, 0x6B},
    {SDL_SCANCODE_F21, VK_F21, 0x6C},
    {SDL_SCANCODE_F22, VK_F22, 0x6D},
    {SDL_SCANCODE_F23, VK_F23, 0x6E},
    {SDL_SCANCODE_F24, VK_F24, 0x76},
    {SDL_SCANCODE_PRINTSCREEN, VK_SNAPSHOT, 0x137},
    {SDL_SCANCODE_SCROLLLOCK, VK_SCROLL, 0x46},
    {SDL_SCANCODE_PAUSE, VK_PAUSE, 0x45},
    {SDL_SCANCODE_INSERT, VK_INSERT, 0x152},
    {SDL_SCANCODE_HOME, VK_HOME, 0x147},
    {SDL_SCANCODE_PAGEUP, VK_PRIOR, 0x149},
    {SDL_SCANCODE_DELETE, VK_DELETE, 0x153},
    {SDL_SCANCODE_END, VK_END, 0x14F},
    {SDL_SCANCODE_PAGEDOWN, VK_NEXT, 0x151},
    {SDL_SCANCODE_RIGHT, VK_RIGHT, 0x14D},
    {SDL_SCANCODE_LEFT, VK_LEFT, 0x14B},
    {SDL_SCANCODE_DOWN, VK_DOWN, 0x150},
    {SDL_SCANCODE_UP, VK_UP, 0x148},
    {SDL_SCANCODE_NUMLOCKCLEAR, VK_NUMLOCK, 0x145},
    {SDL_SCANCODE_KP_DIVIDE, VK_DIVIDE, 0x135},
    {SDL_SCANCODE_KP_MULTIPLY, VK_MULTIPLY, 0x37},
    {SDL_SCANCODE_KP_MINUS, VK_SUBTRACT, 0x4A},
    {SDL_SCANCODE_KP_PLUS, VK_ADD, 0x4E},
    {SDL_SCANCODE_KP_ENTER, VK_RETURN, 0x11C},
    {SDL_SCANCODE_KP_1, VK_NUMPAD1, 0x4F},
    {SDL_SCANCODE_KP_2, VK_NUMPAD2, 0x50},
    {SDL_SCANCODE_KP_3, VK_NUMPAD3, 0x51},
    {SDL_SCANCODE_KP_4, VK_NUMPAD4, 0x4B},
    {SDL_SCANCODE_KP_5, VK_NUMPAD5, 0x4C},
    {SDL_SCANCODE_KP_6, VK_NUMPAD6, 0x4D},
    {SDL_SCANCODE_KP_7, VK_NUMPAD7, 0x47},
    {SDL_SCANCODE_KP_8, VK_NUMPAD8, 0x48},
    {SDL_SCANCODE_KP_9, VK_NUMPAD9, 0x49},
    {SDL_SCANCODE_KP_0, VK_NUMPAD0, 0x52},
    {SDL_SCANCODE_KP_PERIOD, VK_DECIMAL, 0x53},
    {SDL_SCANCODE_KP_COMMA, VK_SEPARATOR, 0x7E},
    {SDL_SCANCODE_SEPARATOR, VK_SEPARATOR, 0},
    {SDL_SCANCODE_KP_EQUALS, VK_OEM_NEC_EQUAL, 0x59},
    {SDL_SCANCODE_NONUSBACKSLASH, VK_OEM_102, 0x56},
    {SDL_SCANCODE_APPLICATION, VK_APPS, 0x15D},
    {SDL_SCANCODE_MENU, VK_APPS, 0x15D},
    {SDL_SCANCODE_LCTRL, VK_LCONTROL, 0x1D},
    {SDL_SCANCODE_LSHIFT, VK_LSHIFT, 0x2A},
    {SDL_SCANCODE_LALT, VK_LMENU, 0x38},
    {SDL_SCANCODE_LGUI, VK_LWIN, 0x15B},
    {SDL_SCANCODE_RCTRL, VK_RCONTROL, 0x11D},
    {SDL_SCANCODE_RSHIFT, VK_RSHIFT, 0x36},
    {SDL_SCANCODE_RALT, VK_RMENU, 0x138},
    {SDL_SCANCODE_RGUI, VK_RWIN, 0x15C},
    {SDL_SCANCODE_MODE, VK_MODECHANGE, 0},
    {SDL_SCANCODE_INTERNATIONAL1, VK_ABNT_C1, 0x73},
    {SDL_SCANCODE_INTERNATIONAL2, VK_KANA, 0x70},
    {SDL_SCANCODE_INTERNATIONAL3, VK_OEM_5, 0x7D},
    {SDL_SCANCODE_INTERNATIONAL4, VK_CONVERT, 0x79},
    {SDL_SCANCODE_INTERNATIONAL5, VK_NONCONVERT, 0x7B},
    {SDL_SCANCODE_LANG1, VK_KANA, 0x72},
    {SDL_SCANCODE_LANG2, VK_KANJI, 0x71},
    {SDL_SCANCODE_EXECUTE, VK_EXECUTE, 0},
    {SDL_SCANCODE_HELP, VK_HELP, 0x63},
    {SDL_SCANCODE_SELECT, VK_SELECT, 0},
    {SDL_SCANCODE_CANCEL, VK_CANCEL, 0x146},
    {SDL_SCANCODE_CLEAR, VK_CLEAR, 0},
    {SDL_SCANCODE_KP_CLEAR, VK_CLEAR, 0},
    {SDL_SCANCODE_PRIOR, VK_PRIOR, 0},
    {SDL_SCANCODE_RETURN2, VK_RETURN, 0},
    {SDL_SCANCODE_CRSEL, VK_CRSEL, 0},
    {SDL_SCANCODE_EXSEL, VK_EXSEL, 0},
    {SDL_SCANCODE_SLEEP, VK_SLEEP, 0x15F},
    {SDL_SCANCODE_MUTE, VK_VOLUME_MUTE, 0x120},
    {SDL_SCANCODE_AUDIOMUTE, VK_VOLUME_MUTE, 0x120},
    {SDL_SCANCODE_VOLUMEDOWN, VK_VOLUME_DOWN, 0x12E},
    {SDL_SCANCODE_VOLUMEUP, VK_VOLUME_UP, 0x130},
    {SDL_SCANCODE_AUDIONEXT, VK_MEDIA_NEXT_TRACK, 0x119},
    {SDL_SCANCODE_AUDIOPREV, VK_MEDIA_PREV_TRACK, 0x110},
    {SDL_SCANCODE_AUDIOSTOP, VK_MEDIA_STOP, 0x124},
    {SDL_SCANCODE_AUDIOPLAY, VK_MEDIA_PLAY_PAUSE, 0x122},
    {SDL_SCANCODE_MEDIASELECT, VK_LAUNCH_MEDIA_SELECT, 0x16D},
    {SDL_SCANCODE_MAIL, VK_LAUNCH_MAIL, 0x16C},
    {SDL_SCANCODE_COMPUTER, VK_LAUNCH_APP1, 0x16B},
    {SDL_SCANCODE_APP1, VK_LAUNCH_APP1, 0x16B},
    {SDL_SCANCODE_CALCULATOR, VK_LAUNCH_APP2, 0x121},
    {SDL_SCANCODE_APP2, VK_LAUNCH_APP2, 0x121},
    {SDL_SCANCODE_AC_HOME, VK_BROWSER_HOME, 0x132},
    {SDL_SCANCODE_WWW, VK_BROWSER_HOME, 0x132},
    {SDL_SCANCODE_AC_BACK, VK_BROWSER_BACK, 0x16A},
    {SDL_SCANCODE_AC_FORWARD, VK_BROWSER_FORWARD, 0x169},
    {SDL_SCANCODE_AC_STOP, VK_BROWSER_STOP, 0x168},
    {SDL_SCANCODE_AC_REFRESH, VK_BROWSER_REFRESH, 0x167},
    {SDL_SCANCODE_AC_SEARCH, VK_BROWSER_SEARCH, 0x165},
    {SDL_SCANCODE_AC_BOOKMARKS, VK_BROWSER_FAVORITES, 0x166},
};

// Keys of punctuation, by the character that they give without Shift.
struct Label {
    char character;
    std::uint8_t virtualKey;
};
constexpr Label Labels[] = {
    {'-', VK_OEM_MINUS},  {'=', VK_OEM_PLUS}, {'+', VK_OEM_PLUS}, {',', VK_OEM_COMMA},
    {'.', VK_OEM_PERIOD}, {';', VK_OEM_1},    {'/', VK_OEM_2},    {'`', VK_OEM_3},
    {'[', VK_OEM_4},      {'\\', VK_OEM_5},   {']', VK_OEM_6},    {'\'', VK_OEM_7},
};

// The number pad with its lock off.
constexpr std::array<std::uint8_t, 10> Unlocked = {VK_INSERT, VK_END,   VK_DOWN, VK_NEXT, VK_LEFT,
                                                   VK_CLEAR,  VK_RIGHT, VK_HOME, VK_UP,   VK_PRIOR};

constexpr auto ByScancode = [] {
    std::array<Place, SDL_NUM_SCANCODES> table{};
    for (const Place& place : Places)
        table[place.scancode] = place;
    return table;
}();

const Place& PlaceOf(SDL_Scancode scancode) {
    const auto index = static_cast<std::size_t>(scancode);
    return ByScancode[index < ByScancode.size() ? index : 0];
}

bool IsLetter(int virtualKey) {
    return virtualKey >= 'A' && virtualKey <= 'Z';
}

bool IsDigit(int virtualKey) {
    return virtualKey >= '0' && virtualKey <= '9';
}

int WithLock(int virtualKey, bool locked) {
    if (locked)
        return virtualKey;
    if (virtualKey >= VK_NUMPAD0 && virtualKey <= VK_NUMPAD9)
        return Unlocked[static_cast<std::size_t>(virtualKey - VK_NUMPAD0)];
    return virtualKey == VK_DECIMAL ? VK_DELETE : virtualKey;
}

// A place whose letter the layout has elsewhere gives its code away to that key.
bool IsElsewhere(int letter, SDL_Scancode scancode) {
    const SDL_Scancode place = SDL_GetScancodeFromKey(letter - 'A' + SDLK_a);
    return place != SDL_SCANCODE_UNKNOWN && place != scancode;
}

} // namespace

int VirtualKeyOf(const SDL_Keysym& key) {
    if (key.sym >= SDLK_a && key.sym <= SDLK_z)
        return 'A' + (key.sym - SDLK_a);
    if (key.sym >= SDLK_0 && key.sym <= SDLK_9)
        return key.sym;

    const SDL_Scancode scancode =
        key.scancode == SDL_SCANCODE_UNKNOWN ? SDL_GetScancodeFromKey(key.sym) : key.scancode;
    const int place = PlaceOf(scancode).virtualKey;
    if (IsDigit(place))
        return place; // layouts that give digits with Shift only
    const auto* label = std::find_if(std::begin(Labels), std::end(Labels), [&](const Label& other) {
        return other.character == key.sym;
    });
    if (label != std::end(Labels))
        return label->virtualKey;
    if (IsLetter(place) && IsElsewhere(place, scancode))
        return VK_OEM_8;
    return WithLock(place, (key.mod & KMOD_NUM) != 0);
}

int WithoutSide(int virtualKey) {
    switch (virtualKey) {
    case VK_LSHIFT:
    case VK_RSHIFT:
        return VK_SHIFT;
    case VK_LCONTROL:
    case VK_RCONTROL:
        return VK_CONTROL;
    case VK_LMENU:
    case VK_RMENU:
        return VK_MENU;
    default:
        return virtualKey;
    }
}

int ScanCodeOf(SDL_Scancode scancode) {
    return PlaceOf(scancode).scan;
}

std::optional<SDL_Keysym> KeysymOf(int virtualKey) {
    const auto* place = std::find_if(std::begin(Places), std::end(Places), [&](const Place& other) {
        return other.virtualKey == virtualKey || WithoutSide(other.virtualKey) == virtualKey;
    });
    if (virtualKey <= 0 || place == std::end(Places))
        return std::nullopt;

    SDL_Keysym key = {};
    key.scancode = place->scancode;
    key.sym = SDL_GetKeyFromScancode(place->scancode);
    // What depends on the layout is sent as a keyboard would that has the label in its US place.
    const auto* label = std::find_if(std::begin(Labels), std::end(Labels), [&](const Label& other) {
        return other.virtualKey == virtualKey;
    });
    if (label != std::end(Labels))
        key.sym = static_cast<unsigned char>(label->character);
    else if (IsLetter(virtualKey))
        key.sym = SDLK_a + (virtualKey - 'A');
    else if (IsDigit(virtualKey))
        key.sym = virtualKey;
    return key;
}

} // namespace VornPlatform

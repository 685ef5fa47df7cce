// SPDX-License-Identifier: MIT
//
// How the calls of a host get into a CallLog. At the head of each function of an interface:
//
//   HRESULT Device::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
//       const CallScope call("SetRenderState", state, value);
//
// Calls that are made until the scope ends are our own, and not told. While no log lives, a scope
// costs a branch.
#pragma once

#include "platform/control/vorn_platform.hpp"

#include <d3d9.h>

#include <concepts>
#include <cstddef>
#include <string>
#include <type_traits>

namespace VornPlatform {

/// Rows of floats: each in brackets, and with `list`, in brackets all together.
struct FloatRows {
    const float* values = nullptr;
    std::size_t rows = 1, columns = 1;
    bool list = true;
};
/// The elements of a declaration.
struct ElementRows {
    const D3DVERTEXELEMENT9* elements = nullptr;
    std::size_t count = 0;
};
/// The rectangles of a Clear.
struct RectRows {
    const D3DRECT* rects = nullptr;
    std::size_t count = 0;
};
/// Vertices in the host's memory, element by element.
struct VertexRows {
    const void* values = nullptr;
    std::size_t count = 0, stride = 0;
    const D3DVERTEXELEMENT9* elements = nullptr;
    std::size_t elementCount = 0;
};

// What an argument looks like in a log. Pointers that are null are "null". The call is not checked
// when it is told, so who makes rows counts only what a sound call reads.
void AppendText(std::string& text, const IUnknown* object);
void AppendText(std::string& text, const char* string); // in quotation marks
void AppendText(std::string& text, const void* memory); // "memory"
void AppendText(std::string& text, HWND window);        // "window"
void AppendText(std::string& text, const D3DMATRIX* matrix);
void AppendText(std::string& text, const D3DVIEWPORT9* viewport);
void AppendText(std::string& text, const D3DLIGHT9* light);
void AppendText(std::string& text, const RECT* rect);
void AppendText(std::string& text, const D3DPRESENT_PARAMETERS* parameters);
void AppendText(std::string& text, const ElementRows& rows);
void AppendText(std::string& text, const FloatRows& rows);
void AppendText(std::string& text, const VertexRows& rows);
void AppendText(std::string& text, const RectRows& rows);
void AppendText(std::string& text, float number);
template <typename Number>
requires(std::integral<Number> || std::is_enum_v<Number>) void AppendText(std::string& text,
                                                                          Number number) {
    if constexpr (std::is_enum_v<Number>)
        text += std::to_string(static_cast<std::underlying_type_t<Number>>(number));
    else
        text += std::to_string(number);
}

class CallScope {
public:
    template <typename... Arguments>
    explicit CallScope(const char* name, const Arguments&... arguments) : mInside(logCount != 0) {
        if (!mInside) [[likely]]
            return;
        if (depth++ == 0)
            tell(name, arguments...);
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    ~CallScope() {
        if (mInside) [[unlikely]]
            --depth;
    }

private:
    friend class CallLog;

    template <typename... Arguments>
    [[gnu::noinline, gnu::cold]] static void tell(const char* name, const Arguments&... arguments) {
        std::string text = name;
        text += '(';
        [[maybe_unused]] const char* separator = "";
        ((text += separator, AppendText(text, arguments), separator = ", "), ...);
        text += ')';
        keep(text);
    }
    static void keep(const std::string& text);

    static constinit int logCount; // that live
    static constinit int depth;    // of calls, while a log lives

    bool mInside;
};

} // namespace VornPlatform

// SPDX-License-Identifier: MIT
#include "platform/d3d9/recorder/call_log.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace VornPlatform {

namespace {

// Never destroyed: a log may die after this file's objects.
std::vector<std::vector<std::string>*>& Logs() {
    static auto& logs = *new std::vector<std::vector<std::string>*>;
    return logs;
}

template <typename... Values>
void AppendRecord(std::string& text, const Values&... values) {
    const char* separator = "[";
    ((text += separator, AppendText(text, values), separator = ", "), ...);
    text += ']';
}

void AppendFloats(std::string& text, const float* values, std::size_t count) {
    text += '[';
    for (std::size_t i = 0; i < count; ++i) {
        text += i ? ", " : "";
        AppendText(text, values[i]);
    }
    text += ']';
}

template <typename Number>
void AppendNumbers(std::string& text, const std::byte* from, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        Number number;
        std::memcpy(&number, from + i * sizeof number, sizeof number);
        text += i ? ", " : "";
        AppendText(text, number);
    }
}

void AppendElement(std::string& text, const std::byte* from, BYTE type) {
    if (type == D3DDECLTYPE_D3DCOLOR)
        AppendNumbers<D3DCOLOR>(text, from, 1);
    else if (type == D3DDECLTYPE_UBYTE4)
        AppendNumbers<BYTE>(text, from, 4);
    else
        AppendNumbers<float>(text, from, type + std::size_t(1));
}

} // namespace

constinit int CallScope::logCount = 0;
constinit int CallScope::depth = 0;

void CallScope::keep(const std::string& text) {
    for (std::vector<std::string>* log : Logs())
        log->push_back(text);
}

CallLog::CallLog() {
    Logs().push_back(&mCalls);
    ++CallScope::logCount;
}

CallLog::~CallLog() {
    auto& logs = Logs();
    logs.erase(std::find(logs.begin(), logs.end(), &mCalls));
    --CallScope::logCount;
}

void AppendText(std::string& text, const IUnknown* object) {
    text += ObjectName(object);
}

void AppendText(std::string& text, const char* string) {
    text += string ? '"' + std::string(string) + '"' : "null";
}

void AppendText(std::string& text, const void* memory) {
    text += memory ? "memory" : "null";
}

void AppendText(std::string& text, HWND window) {
    text += window ? "window" : "null";
}

void AppendText(std::string& text, float number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", static_cast<double>(number));
    text += digits;
}

void AppendText(std::string& text, const FloatRows& rows) {
    if (!rows.values) {
        text += "null";
        return;
    }
    text += rows.list ? "[" : "";
    for (std::size_t i = 0; i < rows.rows; ++i) {
        text += i ? ", " : "";
        AppendFloats(text, rows.values + i * rows.columns, rows.columns);
    }
    text += rows.list ? "]" : "";
}

void AppendText(std::string& text, const VertexRows& rows) {
    if (!rows.values || !rows.elements) {
        AppendText(text, rows.values);
        return;
    }
    text += '[';
    for (std::size_t i = 0; i < rows.count; ++i) {
        const std::byte* vertex = static_cast<const std::byte*>(rows.values) + i * rows.stride;
        text += i ? ", [" : "[";
        for (std::size_t j = 0; j < rows.elementCount; ++j) {
            text += j ? ", " : "";
            AppendElement(text, vertex + rows.elements[j].Offset, rows.elements[j].Type);
        }
        text += ']';
    }
    text += ']';
}

void AppendText(std::string& text, const RectRows& rows) {
    if (!rows.rects) {
        text += "null";
        return;
    }
    text += '[';
    for (std::size_t i = 0; i < rows.count; ++i) {
        const D3DRECT& rect = rows.rects[i];
        text += i ? ", " : "";
        AppendRecord(text, rect.x1, rect.y1, rect.x2, rect.y2);
    }
    text += ']';
}

void AppendText(std::string& text, const D3DMATRIX* matrix) {
    AppendText(text, FloatRows{matrix ? &matrix->m[0][0] : nullptr, 1, 16, false});
}

void AppendText(std::string& text, const D3DVIEWPORT9* viewport) {
    if (!viewport)
        text += "null";
    else
        AppendRecord(text, viewport->X, viewport->Y, viewport->Width, viewport->Height,
                     viewport->MinZ, viewport->MaxZ);
}

void AppendText(std::string& text, const D3DLIGHT9* light) {
    if (!light) {
        text += "null";
        return;
    }
    const D3DCOLORVALUE &d = light->Diffuse, &s = light->Specular, &a = light->Ambient;
    const D3DVECTOR &p = light->Position, &n = light->Direction;
    AppendRecord(text, light->Type, d.r, d.g, d.b, d.a, s.r, s.g, s.b, s.a, a.r, a.g, a.b, a.a, p.x,
                 p.y, p.z, n.x, n.y, n.z, light->Range, light->Falloff, light->Attenuation0,
                 light->Attenuation1, light->Attenuation2, light->Theta, light->Phi);
}

void AppendText(std::string& text, const RECT* rect) {
    if (!rect)
        text += "null";
    else
        AppendRecord(text, rect->left, rect->top, rect->right, rect->bottom);
}

void AppendText(std::string& text, const D3DPRESENT_PARAMETERS* parameters) {
    if (!parameters) {
        text += "null";
        return;
    }
    const D3DPRESENT_PARAMETERS& p = *parameters;
    AppendRecord(text, p.BackBufferWidth, p.BackBufferHeight, p.BackBufferFormat, p.BackBufferCount,
                 p.MultiSampleType, p.MultiSampleQuality, p.SwapEffect, p.hDeviceWindow, p.Windowed,
                 p.EnableAutoDepthStencil, p.AutoDepthStencilFormat, p.Flags,
                 p.FullScreen_RefreshRateInHz, p.PresentationInterval);
}

void AppendText(std::string& text, const ElementRows& rows) {
    if (!rows.elements) {
        text += "null";
        return;
    }
    text += '[';
    for (std::size_t i = 0; i < rows.count; ++i) {
        const D3DVERTEXELEMENT9& e = rows.elements[i];
        text += i ? ", " : "";
        AppendRecord(text, e.Stream, e.Offset, e.Type, e.Method, e.Usage, e.UsageIndex);
    }
    text += ']';
}

} // namespace VornPlatform

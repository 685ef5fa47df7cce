// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"

#include <d3dx9.h>

namespace Vorn {

/// Text to be thrown away again, in a font of the system.
///
///   Vorn::TempFont notes;
///   notes.createTempText("DejaVu Sans");
///   notes.tempRenderText(10, 10, 0xFFFFFFFF, "left of here");
///
/// The host calls Release before a reset of the device and Reload after it.
class VORN_API TempFont {
public:
    TempFont() = default;
    TempFont(const TempFont&) = delete;
    TempFont& operator=(const TempFont&) = delete;
    /// Before Graphic::Free.
    ~TempFont();

    /// A name of 255 characters at most; what is longer is cut. Makes the font, 22 pixels high, if
    /// there is a device; a font that is there stays until Reload.
    void createTempText(const char* face);
    /// One line (unit: pixels), `color` packed as 31..24 alpha, red, green, blue. Nothing before
    /// createTempText, and without a device.
    void tempRenderText(int x, int y, unsigned int color, const char* text);
    /// Makes the font anew, by the name that was told last.
    void Reload();
    void Release();

private:
    void create();

    ID3DXFont* mFont = nullptr;
    char mFontFace[256] = {};
};

} // namespace Vorn

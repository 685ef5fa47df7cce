// SPDX-License-Identifier: MIT
#include "vorn/render/temp_font.hpp"

#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"

#include <cstddef>
#include <cstring>

namespace Vorn {

TempFont::~TempFont() {
    Release();
}

void TempFont::createTempText(const char* face) {
    const std::size_t length = face ? ::strnlen(face, sizeof mFontFace - 1) : 0;
    std::memmove(mFontFace, face ? face : "", length);
    mFontFace[length] = '\0';
    if (!mFont)
        create();
}

void TempFont::create() {
    constexpr DWORD defaultCharset = 1, antialiased = 4;
    if (IDirect3DDevice9* device = Graphic::LiveDevice())
        D3DXCreateFontA(device, 22, 0, 400, 1, FALSE, defaultCharset, 0, antialiased, 0, mFontFace,
                        &mFont);
}

void TempFont::tempRenderText(int x, int y, unsigned int color, const char* text) {
    if (!Graphic::LiveDevice() || !mFont || !text)
        return;
    // Nothing is clipped, so only the left and the top count.
    RECT rect{x, y, 1, static_cast<LONG>(static_cast<unsigned int>(y) + 1)};
    mFont->DrawTextA(nullptr, text, -1, &rect, DT_NOCLIP, color);
}

void TempFont::Reload() {
    Release();
    create();
}

void TempFont::Release() {
    ReleaseObject(mFont);
}

} // namespace Vorn

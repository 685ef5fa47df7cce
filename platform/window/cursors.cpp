// SPDX-License-Identifier: MIT
#include "platform/window/cursors.hpp"
#include "platform/window/session.hpp"

#include <SDL.h>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

struct HICON__ {
    VornPlatform::CursorPicture picture; // empty for the system's arrow
    SDL_Cursor* cursor = nullptr;
    bool made = false;
};

namespace VornPlatform {

namespace {

// Never destroyed: objects that die after this file's may still set a cursor. The first is the
// arrow.
std::vector<std::unique_ptr<HICON__>>& Cursors() {
    static auto& cursors = *[] {
        auto* list = new std::vector<std::unique_ptr<HICON__>>;
        list->push_back(std::make_unique<HICON__>());
        return list;
    }();
    return cursors;
}

HCURSOR& Current() {
    static HCURSOR current = Cursors().front().get();
    return current;
}

constinit bool pointerShown = true;

SDL_Cursor* Make(CursorPicture& picture) {
    SDL_Surface* surface =
        SDL_CreateRGBSurfaceWithFormatFrom(picture.pixels.data(), picture.width, picture.height, 32,
                                           picture.width * 4, SDL_PIXELFORMAT_ARGB8888);
    if (!surface)
        return nullptr;
    SDL_Cursor* cursor = SDL_CreateColorCursor(surface, picture.hotX, picture.hotY);
    SDL_FreeSurface(surface);
    return cursor;
}

} // namespace

HCURSOR KeepCursor(CursorPicture picture) {
    auto& cursors = Cursors();
    cursors.push_back(std::make_unique<HICON__>());
    cursors.back()->picture = std::move(picture);
    return cursors.back().get();
}

HCURSOR ShowCursorPicture(HCURSOR cursor) {
    const auto& cursors = Cursors();
    const bool known = std::any_of(cursors.begin(), cursors.end(),
                                   [cursor](const auto& other) { return other.get() == cursor; });
    if (cursor && !known)
        return nullptr;
    const HCURSOR before = std::exchange(Current(), cursor);
    if (before != cursor)
        RefreshPointer();
    return before;
}

void ShowPointer(bool shown) {
    if (std::exchange(pointerShown, shown) != shown)
        RefreshPointer();
}

void RefreshPointer() {
    if (!VideoRuns())
        return;
    HICON__* current = Current();
    SDL_ShowCursor(pointerShown && current ? SDL_ENABLE : SDL_DISABLE);
    if (!current)
        return;
    if (!current->made && !current->picture.pixels.empty())
        current->cursor = Make(current->picture);
    current->made = true;
    // A driver that draws no pictures of ours shows its own.
    SDL_SetCursor(current->cursor ? current->cursor : SDL_GetDefaultCursor());
}

void DropCursors() {
    for (const auto& cursor : Cursors()) {
        if (cursor->cursor)
            SDL_FreeCursor(cursor->cursor);
    }
    ForgetCursors();
}

void ForgetCursors() {
    for (const auto& cursor : Cursors()) {
        cursor->cursor = nullptr;
        cursor->made = false;
    }
}

} // namespace VornPlatform

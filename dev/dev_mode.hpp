// SPDX-License-Identifier: MIT
//
// The development mode: what is changed in the game's data files shows while the game runs, and a
// panel in its window shows the entities.
//
//   if (wanted)
//       Vorn::Dev::Start();
//   while (running) {
//       ... a frame, with its Present ...
//       Vorn::Dev::Update();
//   }
//   Vorn::Dev::Stop();
//
// It is off until Start; then all of it is in Update, and in what Present draws on top. F1 opens
// and closes the panel. docs/dev.md tells what follows which file.
//
// A scene, entity, variant, material, texture, model, shader or trigger file that changes is read
// beside what runs, and takes its place when it is whole, within a second. One that is broken
// changes nothing, and the screen says why until it is mended. Pointers to textures, meshes,
// materials, triggers and entities stay good; those to render targets of Graphic are new after a
// change of a shader, as after a reset.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Vorn::Dev {

struct Options {
    /// Watched, with all below them. Resources are known by their place below "data/".
    std::vector<std::string> folders = {"data"};
    /// Opens and closes the panel: a scancode of SDL. The game does not get it.
    int key = 58; // F1
    bool panelOpen = false;
};

/// After the entity files are loaded, and before they change. Raises std::logic_error when it is on
/// already, std::system_error for a folder that cannot be watched; then it is off.
void Start(const Options& options = {});
/// Once a frame, between two frames: scenes, stores and device may change. Nothing while it is off.
/// What is wrong in a file raises nothing.
void Update();
/// Stand-ins stay where they are, and the game's time goes on at its own speed. Nothing while it is
/// off.
void Stop();
bool IsOn();

/// For files that the game reads by itself, fonts and tables of its own: `read` is called in Update
/// when the file has changed, until Stop or until another call for the file takes its place; null
/// for none. What it raises is told like any fault. Raises std::logic_error while the mode is off.
///
///   Vorn::Dev::Follow("data/font/score.fnt", [&] { font.loadCharData("data/font/score.fnt"); });
void Follow(const std::string& path, std::function<void()> read);

/// What else is to be seen while the panel is open: called inside a frame of Dear ImGui, until
/// Stop. Raises std::logic_error while the mode is off.
void AddPanel(std::function<void()> panel);

} // namespace Vorn::Dev

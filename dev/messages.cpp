// SPDX-License-Identifier: MIT
#include "dev/messages.hpp"

#include <imgui.h>

namespace Vorn::Dev {

namespace {

constexpr std::chrono::seconds NoteTime{3};
constexpr std::size_t MostNotes = 6, MostText = 1200;
constexpr ImGuiWindowFlags Plain =
    ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_AlwaysAutoResize |
    ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoNav | ImGuiWindowFlags_NoFocusOnAppearing;

} // namespace

void Messages::Note(const std::string& text) {
    mNotes.push_back({text, std::chrono::steady_clock::now() + NoteTime});
    if (mNotes.size() > MostNotes)
        mNotes.pop_front();
}

void Messages::Draw() {
    while (!mNotes.empty() && mNotes.front().until < std::chrono::steady_clock::now())
        mNotes.pop_front();
    if (mFaults.empty() && mNotes.empty())
        return;
    const ImVec2 screen = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos({8, screen.y - 8}, ImGuiCond_Always, {0, 1});
    ImGui::SetNextWindowBgAlpha(0.85f);
    ImGui::PushStyleColor(ImGuiCol_WindowBg,
                          mFaults.empty() ? IM_COL32(0, 40, 0, 255) : IM_COL32(70, 0, 0, 255));
    ImGui::Begin("##messages", nullptr, Plain);
    ImGui::PushTextWrapPos(screen.x - 32);
    for (const auto& [file, text] : mFaults) {
        ImGui::TextColored({1, 0.85f, 0.3f, 1}, "%s", file.c_str());
        ImGui::TextColored({1, 0.6f, 0.6f, 1}, "%s", text.substr(0, MostText).c_str());
    }
    for (const Timed& note : mNotes)
        ImGui::TextColored({0.6f, 1, 0.6f, 1}, "%s", note.text.c_str());
    ImGui::PopTextWrapPos();
    ImGui::End();
    ImGui::PopStyleColor();
}

} // namespace Vorn::Dev

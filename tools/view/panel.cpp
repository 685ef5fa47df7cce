// SPDX-License-Identifier: MIT
#include "tools/view/panel.hpp"

#include "tools/view/pose.hpp"

#include "vorn/render/graphic.hpp"

#include <fmt/format.h>
#include <fontconfig/fontconfig.h>
#include <imgui.h>
#include <imgui_internal.h> // for ClosePopupToLevel

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace View {
namespace {

constexpr float PanelWidth = 340;
constexpr float LetterSize = 15;

/// From D3DCOLOR to Dear ImGui's order of bytes.
ImU32 Packed(std::uint32_t color) {
    return (color & 0xFF00FF00u) | (color >> 16 & 0xFFu) | (color & 0xFFu) << 16;
}

struct PlacedLabel {
    const Label* label;
    ImVec2 low, high;
    float toMouse; // of its point (unit: pixels)

    bool Overlaps(const PlacedLabel& other) const {
        return low.x < other.high.x && other.low.x < high.x && low.y < other.high.y &&
               other.low.y < high.y;
    }
};

void PlaceLabels(const Orbit& orbit, const Lines& lines, std::vector<PlacedLabel>& placed) {
    const ImGuiIO& io = ImGui::GetIO();
    for (const Label& label : lines.Labels())
        if (const auto at = orbit.ToPixels(label.at, io.DisplaySize.x, io.DisplaySize.y)) {
            const ImVec2 low(std::round(at->x) + 4, std::round(at->y) - 7);
            const ImVec2 size = ImGui::CalcTextSize(label.text.c_str());
            placed.push_back({&label, low, ImVec2(low.x + size.x, low.y + size.y),
                              std::hypot(at->x - io.MousePos.x, at->y - io.MousePos.y)});
        }
}

// Where names would lie over one another the earlier one is written, so that they do not change
// while all of it moves; but first of all the one that the mouse points at.
void DrawLabels(const Viewer& viewer) {
    constexpr float Near = 16; // (unit: pixels)
    std::vector<PlacedLabel> labels;
    PlaceLabels(viewer.Orbit(), viewer.FrontLines(), labels);
    PlaceLabels(viewer.Orbit(), viewer.WorldLines(), labels);
    const auto pointed = std::min_element(
        labels.begin(), labels.end(),
        [](const PlacedLabel& a, const PlacedLabel& b) { return a.toMouse < b.toMouse; });
    if (pointed != labels.end() && pointed->toMouse < Near)
        std::rotate(labels.begin(), pointed, pointed + 1);
    ImDrawList& list = *ImGui::GetBackgroundDrawList();
    std::vector<PlacedLabel> written;
    for (const PlacedLabel& one : labels) {
        if (std::any_of(written.begin(), written.end(),
                        [&one](const PlacedLabel& other) { return one.Overlaps(other); }))
            continue;
        written.push_back(one);
        const char* const text = one.label->text.c_str();
        list.AddText(ImVec2(one.low.x + 1, one.low.y + 1), IM_COL32(0, 0, 0, 180), text);
        list.AddText(one.low, Packed(one.label->color), text);
    }
}

void DrawFaults(const Problems& faults) {
    if (faults.empty())
        return;
    const ImVec2 size = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos(ImVec2(12, 12));
    ImGui::SetNextWindowSizeConstraints(ImVec2(0, 0), ImVec2(size.x - PanelWidth - 36, size.y / 3));
    ImGui::SetNextWindowBgAlpha(0.85f);
    ImGui::Begin("faults", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_AlwaysAutoResize |
                     ImGuiWindowFlags_NoFocusOnAppearing | ImGuiWindowFlags_NoNav);
    for (const auto& [file, fault] : faults) {
        ImGui::PushStyleColor(ImGuiCol_Text, IM_COL32(255, 110, 100, 255));
        ImGui::TextUnformatted(file.c_str());
        ImGui::PopStyleColor();
        ImGui::TextUnformatted(fault.c_str());
    }
    ImGui::End();
}

void DrawNote(const std::string& note) {
    if (note.empty())
        return;
    ImGui::SetNextWindowPos(ImVec2(12, ImGui::GetIO().DisplaySize.y - 12), 0, ImVec2(0, 1));
    ImGui::SetNextWindowBgAlpha(0.85f);
    ImGui::Begin("note", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_AlwaysAutoResize |
                     ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_NoNav);
    ImGui::TextUnformatted(note.c_str());
    ImGui::End();
}

void DrawSwitches(Viewer& viewer) {
    struct Switch {
        const char* label;
        bool& on;
    };
    const Switch switches[] = {
        {"Grid (G)", viewer.shown.grid},       {"Bones (B)", viewer.shown.bones},
        {"Volumes (V)", viewer.shown.volumes}, {"Wire (W)", viewer.shown.wire},
        {"Normals (N)", viewer.shown.normals}, {"Texture (T)", viewer.shown.texture}};
    int column = 0;
    for (const auto& [label, on] : switches) {
        if (column++ % 2 == 1)
            ImGui::SameLine(PanelWidth / 2);
        ImGui::Checkbox(label, &on);
    }
}

void DrawTime(Viewer& viewer) {
    if (ImGui::Button(viewer.playing ? "Pause" : "Play", ImVec2(60, 0)))
        viewer.playing = !viewer.playing;
    ImGui::SameLine();
    if (ImGui::Button("Restart", ImVec2(70, 0)))
        viewer.Restart();
    ImGui::SameLine();
    ImGui::SetNextItemWidth(-50);
    ImGui::SliderFloat("Speed", &viewer.speed, 0.0f, 4.0f, "%.2f");
    const float duration = viewer.Duration();
    if (duration <= 0)
        return;
    float time = std::fmod(viewer.Time(), duration);
    ImGui::SetNextItemWidth(-50);
    if (ImGui::SliderFloat("Time", &time, 0.0f, duration * 0.9999f, "%.3f s")) {
        viewer.Seek(time);
        viewer.playing = false;
    }
    ImGui::Checkbox("Posed by its bones", &viewer.posed);
}

void DrawNumbers(const Numbers& numbers) {
    bool open = false;
    for (const auto& [label, value] : numbers) {
        if (value.empty()) {
            if (open)
                ImGui::EndTable();
            ImGui::TextDisabled("%s", label.c_str());
            open = ImGui::BeginTable(label.c_str(), 2, ImGuiTableFlags_RowBg);
            if (open) {
                ImGui::TableSetupColumn("name", ImGuiTableColumnFlags_WidthFixed, 110);
                ImGui::TableSetupColumn("value");
            }
        } else if (open) {
            ImGui::TableNextRow();
            ImGui::TableNextColumn();
            ImGui::TextUnformatted(label.c_str());
            ImGui::TableNextColumn();
            ImGui::TextUnformatted(value.c_str());
        }
    }
    if (open)
        ImGui::EndTable();
}

void DrawBone(const std::vector<Vorn::Bone>& bones, std::size_t index) {
    const Vorn::Bone& bone = bones[index];
    const std::string label = fmt::format("{}  {} keys##{}", bone.mName, bone.mKeys.size(), index);
    const ImGuiTreeNodeFlags leaf =
        bone.mChildren.empty() ? ImGuiTreeNodeFlags_Leaf : ImGuiTreeNodeFlags_DefaultOpen;
    if (!ImGui::TreeNodeEx(label.c_str(), leaf))
        return;
    for (const int child : bone.mChildren)
        DrawBone(bones, static_cast<std::size_t>(child));
    ImGui::TreePop();
}

void DrawBones(Viewer& viewer) {
    for (const Part& part : viewer.Subject().Parts()) {
        if (part.mesh->mBones.empty())
            continue;
        if (ImGui::CollapsingHeader("Bones"))
            for (const int root : part.mesh->mRoots)
                DrawBone(part.mesh->mBones, static_cast<std::size_t>(root));
        return;
    }
}

void DrawView(Viewer& viewer) {
    const Orbit& orbit = viewer.Orbit();
    const auto number = [](float f) { return static_cast<double>(f); };
    Numbers numbers = {
        {"Frame", ""},
        {"Draw calls", Counted(static_cast<std::uint64_t>(viewer.DrawCalls()))},
        {"Eye", Written(orbit.Eye())},
        {"Yaw, pitch", fmt::format("{:.0f}  {:.0f}", number(orbit.Yaw()), number(orbit.Pitch()))},
        {"Distance", fmt::format("{:.4g}", number(orbit.Distance()))}};
    if (viewer.shown.grid)
        numbers.emplace_back("Cell of the grid", fmt::format("{:g}", number(viewer.GridCell())));
    DrawNumbers(numbers);
}

void DrawKeys() {
    if (ImGui::CollapsingHeader("Mouse and keys"))
        DrawNumbers({{"With the mouse", ""},
                     {"Drag", "turn"},
                     {"Right, middle", "move"},
                     {"Wheel", "nearer and farther"},
                     {"With keys", ""},
                     {"F", "all of it"},
                     {"1  2  3", "front, side, above"},
                     {"Space, R", "pause, from the start"},
                     {"P", "saves a picture"},
                     {"Tab", "hides the panel"},
                     {"Escape", "quits"}});
}

void DrawWindow(Viewer& viewer) {
    const ImVec2 size = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos(ImVec2(size.x - PanelWidth - 12, 12));
    ImGui::SetNextWindowSize(ImVec2(PanelWidth, size.y - 24));
    ImGui::SetNextWindowBgAlpha(0.9f);
    const std::string title = viewer.Stage().File().filename().string() + "###panel";
    ImGui::Begin(title.c_str(), nullptr,
                 ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoCollapse |
                     ImGuiWindowFlags_NoFocusOnAppearing);
    PushFieldWidth(0);
    DrawSwitches(viewer);
    ImGui::Separator();
    DrawTime(viewer);
    if (ImGui::CollapsingHeader("Light")) {
        ImGui::SliderFloat("Yaw", &viewer.lightYaw, -180, 180, "%.0f");
        ImGui::SliderFloat("Pitch", &viewer.lightPitch, -90, 90, "%.0f");
        ImGui::SliderFloat("Strength", &viewer.lightStrength, 0.1f, 1e4f, "%.1f",
                           ImGuiSliderFlags_Logarithmic);
    }
    ImGui::Separator();
    ImGui::PushID("subject"); // whose names may be those of the panel
    viewer.Subject().Controls();
    ImGui::PopID();
    ImGui::Separator();
    DrawNumbers(viewer.Subject().Describe());
    DrawBones(viewer);
    DrawView(viewer);
    DrawKeys();
    ImGui::PopItemWidth();
    ImGui::End();
}

/// Over the window the pointer of the desktop is hidden; over the panel the overlay has one.
void DrawPointer() {
    const ImGuiIO& io = ImGui::GetIO();
    if (io.WantCaptureMouse || !ImGui::IsMousePosValid())
        return;
    const ImVec2 at = io.MousePos;
    const ImVec2 right(at.x + 11, at.y + 11), below(at.x, at.y + 16);
    ImDrawList& list = *ImGui::GetForegroundDrawList();
    list.AddTriangleFilled(at, right, below, IM_COL32_WHITE);
    list.AddTriangle(at, right, below, IM_COL32_BLACK);
}

/// The desktop's own; Dear ImGui's where there is none that it reads.
void UseDesktopFace() {
    const auto destroy = [](FcPattern* pattern) { FcPatternDestroy(pattern); };
    using Pattern = std::unique_ptr<FcPattern, decltype(destroy)>;
    const FcChar8 wanted[] = "sans:scalable=true:fontformat=TrueType";
    const Pattern pattern(FcNameParse(wanted), destroy);
    if (!pattern)
        return;
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result{};
    const Pattern match(FcFontMatch(nullptr, pattern.get(), &result), destroy);
    FcChar8* file = nullptr;
    if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch)
        return;
    const std::string path(static_cast<const char*>(static_cast<const void*>(file)));
    if (path.ends_with(".ttf"))
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), LetterSize);
}

} // namespace

bool CloseMenus() {
    if (!ImGui::IsPopupOpen("", ImGuiPopupFlags_AnyPopup))
        return false;
    ImGui::ClosePopupToLevel(0, true);
    return true;
}

void StylePanel() {
    UseDesktopFace();
    ImGuiStyle& style = ImGui::GetStyle();
    ImGui::StyleColorsDark();
    style.WindowRounding = 6;
    style.FrameRounding = 3;
    style.GrabRounding = 3;
    style.WindowBorderSize = 0;
    style.ItemSpacing = ImVec2(8, 5);
    style.Colors[ImGuiCol_WindowBg] = ImVec4(0.10f, 0.11f, 0.13f, 1);
    style.Colors[ImGuiCol_TitleBgActive] = style.Colors[ImGuiCol_TitleBg] =
        ImVec4(0.16f, 0.24f, 0.34f, 1);
    style.Colors[ImGuiCol_TableRowBg] = ImVec4(1, 1, 1, 0.03f);
    style.Colors[ImGuiCol_TableRowBgAlt] = ImVec4(1, 1, 1, 0.0f);
}

void DrawPanel(Viewer& viewer) {
    DrawLabels(viewer);
    DrawFaults(viewer.Faults());
    DrawNote(viewer.Note());
    if (viewer.shown.panel)
        DrawWindow(viewer);
    if (viewer.shown.pointer)
        DrawPointer();
}

} // namespace View

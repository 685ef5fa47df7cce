// SPDX-License-Identifier: MIT
//
// A subject before a camera, its lines, its time, and what happens to it when files change. The
// device is there already, and the frame is the caller's to present:
//
//   Viewer viewer(options, stage);      // raises what cannot be shown
//   viewer.Update(dt);
//   viewer.CheckFiles();
//   viewer.Draw();
//   Vorn::Graphic::Instance()->Present();
#pragma once

#include "tools/view/orbit.hpp"
#include "tools/view/subject.hpp"

#include <memory>
#include <string>

namespace View {

class Viewer {
public:
    Viewer(const Options& options, const Stage& stage);
    Viewer(const Viewer&) = delete;
    Viewer& operator=(const Viewer&) = delete;
    ~Viewer();

    /// (unit: seconds)
    void Update(float dt);
    /// Reads again what has changed. What is broken now stays as it was, and is told by Faults.
    void CheckFiles();
    void Draw();

    /// All of it in the picture again.
    void FrameAll();
    void Restart();
    /// To a time of the animation (unit: seconds); particles have no way back.
    void Seek(float time) { mTime = time; }
    float Time() const { return mTime; }
    /// Of the longest animation; 0 if nothing moves.
    float Duration() const;

    View::Orbit& Orbit() { return mOrbit; }
    const View::Orbit& Orbit() const { return mOrbit; }
    View::Subject& Subject() { return *mSubject; }
    const View::Stage& Stage() const { return mStage; }
    /// A line for the user, which stays for a few seconds; an empty one takes it away.
    void Tell(const std::string& note);
    std::string Note() const { return mNoteLeft > 0 ? mNote : std::string(); }
    /// What is wrong with the files now.
    Problems Faults() const;
    const Lines& WorldLines() const { return mLines; }
    const Lines& FrontLines() const { return mFront; }
    /// Of the last frame, with its lines and without the panel.
    int DrawCalls() const { return mDrawCalls; }
    float GridCell() const { return mGridCell; }

    // What the keys and the panel switch.
    Shown shown;
    bool playing = true;
    bool posed = true; // else skinned models stand as their file has them, and are lit
    float speed = 1.0f;
    float lightYaw = 35.0f, lightPitch = 30.0f; // from the eye (unit: degrees)
    float lightStrength = 1.0f;                 // a game's own shader may want more

private:
    void placeLight();
    void pose() const;
    void gatherLines();
    void addBones(const Part& part);
    void addWire(const Part& part);
    void addNormals(const Part& part);
    void drawWorld();
    void drawPart(const Part& part) const;
    void drawTargets();
    void drawTexture();
    void replaceSubject();
    void replaceShaders();
    float aspect() const;
    float freeAspect() const { return aspect() * (1 - panelShare()); }
    float panelShare() const;
    bool isPosed(const Part& part) const;

    const Options& mOptions;
    const View::Stage& mStage;
    Resources mResources;
    std::unique_ptr<View::Subject> mSubject;
    View::Orbit mOrbit;
    Bounds mExtent;
    Vorn::Vector3 mLight;
    Lines mLines, mFront;
    Problems mProblems; // of a change that could not be shown
    std::map<std::string, Stamp> mShaderStamps;
    std::string mNote;
    float mNoteLeft = 0.0f; // (unit: seconds)
    float mTime = 0.0f;
    float mGridCell = 0.0f;
    int mDrawCalls = 0;
};

} // namespace View

// SPDX-License-Identifier: MIT
//
// What the platform's own interfaces lack and tests, samples and tools need: a hand on the machine
// below the engine. The engine itself never includes this header.
//
//   VornPlatform::HoldClock(VornPlatform::ClockFrequency * 100);
//   Vorn::DeltaClock::Instance()->Update();
//   VornPlatform::ReleaseClock();
#pragma once

#include <d3d9.h>

#include <cstdint>
#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace VornPlatform {

/// Counts per second of the performance counter.
inline constexpr std::int64_t ClockFrequency = 1'000'000'000;

/// From now on the performance counter answers `counts`, until the next HoldClock or ReleaseClock.
void HoldClock(std::int64_t counts);
/// The performance counter runs by the machine's clock again.
void ReleaseClock();

/// Windows that are made from now on have no display, whatever the machine has. Call before the
/// first window.
void ForceHeadless();
/// Whether somebody may see the window: false before the first one, and without a display.
bool HasDisplay();

// Input as a driver would send it: an event of SDL goes into SDL's own queue, for the window that
// was made last, and takes effect when the host next fetches its messages. Without a window nothing
// happens.

/// `virtualKey` is a Win32 code; one that no keyboard has, as a mouse button's, is passed over.
/// Down again without up is a repeat. The number pad's lock is lit at the start.
void SendKey(int virtualKey, bool down);
/// (unit: client pixels)
void SendMouseMove(int x, int y);
/// 1, 2 and 4 are the left, right and middle button, 5 and 6 the two at the side. At the place of
/// the last SendMouseMove.
void SendMouseButton(int virtualKey, bool down);
/// Away from the user is positive. A fraction waits until it is a whole unit of the message.
void SendMouseWheel(float notches);
/// Losing it lets go of all that was sent down.
void SendFocus(bool focused);
/// As a click on the cross of the window.
void SendClose();

/// A game pad that is plugged in for as long as the object lives. What is set takes effect when the
/// host next fetches its messages; without a window, with the next XInputGetState.
class VirtualPad {
public:
    /// Raises std::runtime_error where the machine cannot have one.
    VirtualPad();
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;
    ~VirtualPad();

    /// The index for XInput, or -1 while four others have all of them.
    int Index() const;

    /// Any of the buttons of XInput, one or more.
    void Buttons(unsigned int buttons, bool down);
    /// Up is positive, as XInput has it.
    void LeftStick(int x, int y);
    void RightStick(int x, int y);
    /// From 0 to 255.
    void Triggers(int left, int right);
    /// What the pad was last told, from 0 to 65535.
    int LeftMotor() const;
    int RightMotor() const;

private:
    struct State;
    State* mState;
};

// Recording. Everything that comes in from below is kept frame by frame: messages, keys, cursor,
// pads, and each answer of the performance counter. A frame ends when the host has fetched its last
// message. A game that takes everything else from its files goes the same way again. Begin between
// two frames, and before the program keeps an answer of the counter: played answers are those of
// then. docs/input_recording.md describes the file.

/// Ends what is recorded or played. Raises std::runtime_error where the file cannot be made.
void RecordInput(const std::string& path);
/// Live input is kept away until the recording is at its end or stopped. Raises std::runtime_error,
/// with file and line, for a file that is missing or broken, and goes on as before.
void PlayInput(const std::string& path);
bool IsPlayingInput();
/// Ends recording and playing; keys that a recording held down come up, with their messages. Raises
/// std::runtime_error where a recording could not be written whole. Passed over if there is
/// neither.
void StopInput();

// The device of Direct3D.

/// Devices that are made from now on draw nothing and need no OpenGL: textures and buffers keep
/// what is written to them, Clear fills its target, all else leaves pixels alone.
void UseRecorder(bool);

/// Every call that reaches an object of Direct3D or D3DX, in order, one text each, for as long as
/// the object lives: "SetRenderState(27, 1)". Numbers stand as decimals, colours too, floats as %g,
/// a matrix, a point or a record as its numbers in brackets; an object is its ObjectName, and out
/// pointers are left out. Calls that our objects make of each other are not told.
class CallLog {
public:
    CallLog();
    CallLog(const CallLog&) = delete;
    CallLog& operator=(const CallLog&) = delete;
    ~CallLog();

    const std::vector<std::string>& Calls() const { return mCalls; }
    void Clear() { mCalls.clear(); }

private:
    std::vector<std::string> mCalls;
};
/// "null", or a kind and a number that counts up with each object of that kind: "VertexBuffer 3".
std::string ObjectName(const IUnknown* object);

/// All devices answer D3DERR_DEVICELOST from now on.
void LoseDevice();
/// They answer D3DERR_DEVICENOTRESET, until they are reset.
void RestoreDevice();
/// The next `count` calls of Reset, of any device, fail with `result`.
void FailResets(int count, HRESULT result);

/// What lives, of all devices together; what a device has for itself is not counted.
struct LiveObjects {
    int devices = 0;
    int textures = 0;
    int surfaces = 0; // that are no level of a texture
    int vertexBuffers = 0;
    int indexBuffers = 0;
    int declarations = 0;
    int vertexShaders = 0; // those of effects included
    int pixelShaders = 0;
    int fonts = 0;
    int lines = 0;
    int renderToSurfaces = 0;
    int dataBuffers = 0; // of D3DX: code and texts
    int constantTables = 0;
    int effects = 0;

    bool operator==(const LiveObjects&) const = default;
};
LiveObjects CountLiveObjects();
/// What OpenGL holds for them and for the devices themselves.
struct GpuObjects {
    int textures = 0;
    int buffers = 0;

    bool operator==(const GpuObjects&) const = default;
};
GpuObjects CountGpuObjects();

/// Since the process began.
struct ShaderCounters {
    int compiled = 0; // shaders, from their text
    int linked = 0;   // programs of OpenGL, of two stages each

    bool operator==(const ShaderCounters&) const = default;
};
ShaderCounters CountShaders();

/// Since the last Present, of all devices together.
struct FrameCounters {
    int draws = 0; // that a host asked for and that drew something
    std::int64_t primitives = 0;
    int drawCalls = 0;    // of OpenGL
    int stateChanges = 0; // of OpenGL: programs, textures, targets, blending and the like
};
FrameCounters CountFrame();

/// The pixels of a render target, a plain surface, or a level of an uncompressed texture:
/// 0xAARRGGBB, rows from the top, without gaps; X is 0xff. Empty for what cannot be read.
std::vector<std::uint32_t> ReadPixels(IDirect3DSurface9* surface);

// Sound.

/// Whether the machine has a device that sounds, asked anew in each call; without one, what is
/// played goes on in silence.
bool HasAudio();
/// Systems of sound that start from now on play into memory, `rate` frames a second, and not on the
/// machine; 0: on the machine again.
void UseAudioLoopback(int rate);
/// The next frames of what the system that was started last plays into memory: left and right by
/// turns, from -1 to 1. Its time goes on by this alone. Empty if there is none.
std::vector<float> RenderAudio(int frames);

} // namespace VornPlatform

#pragma GCC visibility pop

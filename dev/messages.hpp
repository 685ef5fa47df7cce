// SPDX-License-Identifier: MIT
//
// What the development mode has to say, on the screen: faults of files until they are mended, and
// notes for a moment.
#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <string>

namespace Vorn::Dev {

class Messages {
public:
    /// In place of what was told of the file before.
    void Fault(const std::string& file, const std::string& text) { mFaults[file] = text; }
    void Mended(const std::string& file) { mFaults.erase(file); }
    void ForgetFaults() { mFaults.clear(); }
    void Note(const std::string& text);
    const std::map<std::string, std::string>& Faults() const { return mFaults; }

    /// Within a frame of ImGui.
    void Draw();

private:
    struct Timed {
        std::string text;
        std::chrono::steady_clock::time_point until;
    };
    std::map<std::string, std::string> mFaults;
    std::deque<Timed> mNotes;
};

} // namespace Vorn::Dev

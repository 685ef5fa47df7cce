// SPDX-License-Identifier: MIT
//
// Work on files that nobody can vouch for, in a process of its own: whatever happens to it, the
// command goes on and can say what happened. The process has limits of time and memory and writes
// no files; all that it has to say comes back over a pipe.
#pragma once

#include "tools/import/options.hpp"

#include <functional>
#include <string>
#include <vector>

namespace Import {

/// The worker's side.
class Channel {
public:
    explicit Channel(int pipe) : mPipe(pipe) {}
    /// A line for a terminal, gone with the next.
    void Progress(const std::string& line) { send('P', line); }
    void Report(const std::string& text) { send('R', text); }
    void File(const OutputFile& file);
    void Error(const std::string& why) { send('E', why); }
    void Done() { send('D', {}); }

private:
    void send(char kind, const std::string& payload);

    int mPipe;
};

/// The command's side, once the worker is gone.
struct WorkerResult {
    /// Empty where all went well.
    std::string error;
    std::string report;
    std::vector<OutputFile> files;
};

/// Runs `work` in a process of its own and waits for it. An exception that leaves `work` is its
/// error.
WorkerResult RunWorker(const Options& options, const std::function<void(Channel&)>& work,
                       const std::function<void(const std::string&)>& progress);

} // namespace Import

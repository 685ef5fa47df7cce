// SPDX-License-Identifier: MIT
#include "tools/import.hpp"

#include "tools/import/convert.hpp"
#include "tools/import/outputs.hpp"
#include "tools/import/worker.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <unistd.h>

namespace Import {
namespace {

/// One line on a terminal that each next one replaces; nothing where there is no terminal.
class ProgressLine {
public:
    ProgressLine() : mTerminal(isatty(STDERR_FILENO) != 0) {}
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine() { Show(""); }
    void Show(const std::string& line) const {
        if (mTerminal)
            fmt::print(stderr, "\r\x1b[K{}", line);
    }

private:
    bool mTerminal;
};

int fail(const Options& options, const std::string& why) {
    fmt::print(stderr, "vorn: cannot read {}: {}\n", options.file, why);
    return 1;
}

} // namespace

int Run(const Options& options) {
    std::error_code error;
    if (!std::filesystem::exists(options.file, error))
        return fail(options, "there is no such file");
    if (!std::filesystem::is_regular_file(options.file, error))
        return fail(options, "it is no plain file");

    // Before the worker comes: what stands in a buffer would be written twice.
    std::fflush(nullptr);
    WorkerResult result;
    {
        const ProgressLine line;
        result = RunWorker(
            options, [&](Channel& channel) { Convert(options, channel); },
            [&](const std::string& text) { line.Show(text); });
    }
    if (!result.error.empty())
        return fail(options, result.error);
    try {
        WriteOutputs(options.out, result.files, options.force);
    } catch (const std::exception& exception) {
        fmt::print(stderr, "vorn: nothing is written: {}\n", exception.what());
        return 1;
    }
    fmt::print("{}", result.report);
    return 0;
}

} // namespace Import

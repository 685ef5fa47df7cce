// SPDX-License-Identifier: MIT
#include "tools/check.hpp"

#include "tools/check/checker.hpp"
#include "tools/check/effects.hpp"
#include "tools/check/report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace Check {

int Run(const Options& options) {
    const Folder folder = ReadFolder(options.directory, options.root);
    const std::vector<Finding> findings = CheckFolder(folder, CheckEffect);
    fmt::print("{}", Report(findings, folder));
    if (!options.sarif.empty()) {
        std::ofstream file(options.sarif, std::ios::binary);
        file << Sarif(findings, folder);
        if (!file.flush())
            throw std::runtime_error("cannot write " + options.sarif);
    }
    const auto errors = std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::Error;
    });
    if (findings.empty())
        return 0;
    fmt::print("{} errors, {} warnings{}\n", errors,
               findings.size() - static_cast<std::size_t>(errors),
               findings.size() >= Findings::Most ? "; there may be more" : "");
    return 1;
}

} // namespace Check

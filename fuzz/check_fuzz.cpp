// SPDX-License-Identifier: MIT
//
// Any bytes as a file of each kind, in one folder: the check ends, and what it tells lies in them.
#include "fuzz/fuzz.hpp"
#include "tools/check/checker.hpp"
#include "tools/check/game.hpp"
#include "tools/check/report.hpp"
#include "tools/check/schemas.hpp"

#include <algorithm>
#include <string>

FUZZ_TARGET(data, size) {
    const std::string bytes(data, size);
    Check::Folder folder;
    folder.names = {"check.json",        "data/level.scene",    "data/physics.json",
                    "data/entity/a.ent", "data/entity/b.var",   "data/pack/a.json",
                    "data/mat/a.json",   "data/trigger/a.json", "data/mesh/a.mesh",
                    "data/font/a.fnt"};
    folder.checked = folder.names;
    folder.read = [&bytes](const std::string&) { return bytes; };
    folder.path = [](const std::string& name) { return name; };

    const std::vector<Check::Finding> findings = Check::CheckFolder(folder, nullptr);
    Fuzz::Require(findings.size() <= Check::Findings::Most, "no end of findings");
    for (const Check::Finding& finding : findings)
        Fuzz::Require(finding.place.offset + finding.place.length <= std::max<std::size_t>(size, 1),
                      "a place behind the end");
    const std::string report = Check::Report(findings, folder);
    Fuzz::Require(report.empty() == findings.empty(), "a report of nothing");
    Check::Sarif(findings, folder);
    Check::Findings ignored;
    Check::Schemas(Check::Game(folder, Check::EngineTable(), ignored).Keys());
}

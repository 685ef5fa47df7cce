// SPDX-License-Identifier: MIT
#include "tools/check/checker.hpp"

#include "tools/check/font.hpp"
#include "tools/check/form.hpp"
#include "tools/check/game.hpp"
#include "tools/check/model.hpp"
#include "tools/check/names.hpp"

#include <stdexcept>

namespace Check {
namespace {

void CheckForm(const Game& game, const DataFile& file, Findings& findings,
               std::vector<Reference>& references) {
    file.json->TellFaults(findings);
    const char* record = RecordOf(file.format);
    // Of a broken text the rest would only be what follows from the fault.
    if (!record || !file.json->IsWhole())
        return;
    Form form{game.Keys(), *file.json, findings, references, file.format == Format::Entity};
    form.CheckObject(file.json->Root(), *game.Keys().Find(record));
}

void CheckBinary(const Game& game, const DataFile& file, const EffectChecker& checkEffect,
                 Findings& findings) {
    try {
        if (file.format == Format::Effect) {
            if (checkEffect)
                checkEffect(game.Keys(), game.Files(), file.name, findings);
            return;
        }
        const std::string bytes = game.Files().read(file.name);
        if (file.format == Format::Model)
            CheckModel(file.name, bytes, findings);
        else
            CheckFont(game.Keys(), file.name, bytes, findings);
    } catch (const std::runtime_error& error) {
        findings.Error("unreadable", {file.name}, error.what());
    }
}

} // namespace

std::vector<Finding> CheckFolder(const Folder& folder, const EffectChecker& checkEffect) {
    Findings findings, ofOthers;
    std::vector<Reference> references;
    const Game game(folder, EngineTable(), findings);
    for (const DataFile& file : game.Data()) {
        const bool isChecked = folder.checked.count(file.name) != 0;
        if (file.json)
            CheckForm(game, file, isChecked ? findings : ofOthers, references);
        else if (isChecked && !findings.IsFull())
            CheckBinary(game, file, checkEffect, findings);
    }
    CheckEntities(game, references, findings);
    CheckNames(game, references, findings);

    std::vector<Finding> list = findings.Take();
    std::erase_if(list, [&](const Finding& finding) {
        return folder.checked.count(finding.place.file) == 0;
    });
    AddUses(game, references, list);
    return list;
}

} // namespace Check

// SPDX-License-Identifier: MIT
#include "tools/check/names.hpp"

#include "tools/check/nearest.hpp"

#include <fmt/format.h>

#include <set>

namespace Check {
namespace {

const char* FolderOf(Refers kind) {
    switch (kind) {
    case Refers::Mesh:
    case Refers::MeshFile:
        return "data/mesh/";
    case Refers::Texture:
    case Refers::TextureFile:
        return "data/img/";
    case Refers::Material:
    case Refers::MaterialFile:
        return "data/mat/";
    case Refers::SoundFile:
        return "data/audio/";
    default:
        return "";
    }
}

// Behind the first blank of a sound stands its tag.
std::string FileOf(const Reference& reference) {
    const bool isSound = reference.kind == Refers::SoundFile;
    return FolderOf(reference.kind) +
           (isSound ? reference.name.substr(0, reference.name.find(' ')) : reference.name);
}

class NameCheck {
public:
    NameCheck(const Game& game, Findings& findings) : mGame(game), mFindings(findings) {}

    void Run(const Reference& reference) {
        switch (reference.kind) {
        case Refers::Mesh:
        case Refers::Texture:
        case Refers::Material:
            return checkListed(reference);
        case Refers::MeshFile:
        case Refers::TextureFile:
        case Refers::MaterialFile:
        case Refers::SoundFile:
        case Refers::Pack:
            return checkFile(reference);
        case Refers::EntityType:
            if (mGame.HasTypes() && mGame.Types().count(reference.name) == 0 &&
                mGame.VariantsOf(reference.name).empty())
                tell("unknown-type", reference, "no entity file describes the type",
                     KeysOf(mGame.Types()));
            return;
        case Refers::Variant:
            if (mGame.HasTypes() && mGame.VariantsOf(reference.type).count(reference.name) == 0)
                tell("unknown-type", reference,
                     fmt::format("the type \"{}\" has no variant", reference.type),
                     KeysOf(mGame.VariantsOf(reference.type)));
            return;
        case Refers::Category:
            return checkTable("unknown-category", reference, mGame.Categories());
        case Refers::Volume:
            return checkTable("unknown-volume", reference, mGame.Volumes());
        default:
            return;
        }
    }

private:
    void tell(const char* rule, const Reference& reference, const std::string& what,
              const std::vector<std::string>& known, std::vector<Note> notes = {}) {
        mFindings.Error(
            rule, reference.place,
            fmt::format("{} \"{}\"{}", what, reference.name, Suggestion(reference.name, known)),
            std::move(notes));
    }
    std::vector<std::string> filesBelow(const std::string& folder) const {
        std::vector<std::string> files;
        const auto& names = mGame.Files().names;
        for (auto at = names.lower_bound(folder); at != names.end() && at->starts_with(folder);
             ++at)
            files.push_back(at->substr(folder.size()));
        return files;
    }
    void checkListed(const Reference& reference) {
        const Names& listed = mGame.Listed(reference.kind);
        const std::string file = FileOf(reference);
        const bool isThere = mGame.Files().Holds(file);
        if (reference.name.empty() || listed.count(reference.name) != 0 ||
            (!mGame.HasPacks() && isThere))
            return;
        const char* kind = reference.kind == Refers::Mesh      ? "mesh"
                           : reference.kind == Refers::Texture ? "texture"
                                                               : "material";
        std::vector<Note> notes;
        if (isThere) {
            Note& note = notes.emplace_back();
            note.place.file = file;
            note.text = "the file is there";
        }
        tell("unlisted-name", reference, fmt::format("no resource pack lists the {}", kind),
             mGame.HasPacks() ? KeysOf(listed) : filesBelow(FolderOf(reference.kind)),
             std::move(notes));
    }
    void checkFile(const Reference& reference) {
        const std::string file = FileOf(reference);
        if (reference.name.empty() || mGame.Files().Holds(file))
            return;
        const std::string folder = FolderOf(reference.kind);
        const std::string name = file.substr(folder.size());
        mFindings.Error(
            "missing-file", reference.place,
            fmt::format("there is no file \"{}\"{}", file, Suggestion(name, filesBelow(folder))));
    }
    void checkTable(const char* rule, const Reference& reference, const Names& names) {
        if (names.count(reference.name) != 0)
            return;
        const bool isVolume = reference.kind == Refers::Volume;
        tell(rule, reference,
             isVolume ? "no physics info file lists the volume"
                      : "no physics info file lists the category",
             KeysOf(names));
    }

    const Game& mGame;
    Findings& mFindings;
};

/// Files by what names them.
class Uses {
public:
    Uses(const Game& game, const std::vector<Reference>& references) {
        for (const Reference& reference : references) {
            if (reference.kind == Refers::EntityType)
                addDescribed(game.Types(), reference);
            else if (reference.kind == Refers::Variant)
                addDescribed(game.VariantsOf(reference.type), reference);
            else if (const std::string file = FileOf(reference); game.Files().Holds(file))
                mPlaces[file].push_back(reference.place);
        }
    }
    const std::vector<Place>* Of(const std::string& file) const {
        const auto found = mPlaces.find(file);
        return found == mPlaces.end() ? nullptr : &found->second;
    }

private:
    void addDescribed(const Names& names, const Reference& reference) {
        const auto found = names.find(reference.name);
        if (found != names.end())
            for (const Place& place : found->second)
                mPlaces[place.file].push_back(reference.place);
    }

    std::map<std::string, std::vector<Place>> mPlaces;
};

} // namespace

void CheckNames(const Game& game, const std::vector<Reference>& references, Findings& findings) {
    NameCheck check(game, findings);
    for (const Reference& reference : references)
        if (!findings.IsFull() && game.Files().checked.count(reference.place.file) != 0)
            check.Run(reference);
}

void AddUses(const Game& game, const std::vector<Reference>& references,
             std::vector<Finding>& findings) {
    const Uses uses(game, references);
    std::string last;
    for (Finding& finding : findings) {
        const std::vector<Place>* places = uses.Of(finding.place.file);
        if (!places || last == finding.place.file)
            continue;
        last = finding.place.file;
        std::string text = "used from here";
        if (places->size() > 1)
            text += fmt::format(", and from {} more", places->size() - 1);
        finding.notes.push_back({places->front(), text});
    }
}

} // namespace Check

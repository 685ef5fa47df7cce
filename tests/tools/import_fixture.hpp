// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/temp_folder.hpp"
#include "tests/tools/model_reader.hpp"

#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace Tests {

/// Runs the program on files in a fresh folder; results go to "game" in it.
class ImportFixture : public testing::Test {
protected:
    struct Outcome {
        /// -1 where a signal ended the program.
        int status = -1;
        std::string out;
        std::string error;
    };

    Outcome Run(const std::string& arguments) const {
        return RunIn(mFolder.Path().string(), arguments);
    }
    /// In another folder than the fresh one.
    Outcome RunIn(const std::string& folder, const std::string& arguments) const {
        const std::string command = "cd '" + folder + "' && '" VORN_PROGRAM "' " + arguments +
                                    " >'" + mFolder / "out.txt" + "' 2>'" + mFolder / "error.txt" +
                                    "' </dev/null";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                Vorn::TextFromFile(mFolder / "out.txt"), Vorn::TextFromFile(mFolder / "error.txt")};
    }
    Outcome Import(const std::string& arguments) const {
        return Run("import --out game " + arguments);
    }

    std::string Result(const std::string& path) const {
        return Vorn::TextFromFile(mFolder / ("game/data/" + path));
    }
    ReadModel Model(const std::string& name) const {
        return ModelReader(Result("mesh/" + name + ".mesh")).Read();
    }
    Json::Value Json(const std::string& path) const { return Vorn::ParseJson(Result(path)); }
    /// All files below "game", in order.
    std::vector<std::string> Results() const {
        std::vector<std::string> names;
        const std::filesystem::path game = mFolder.Path() / "game";
        if (std::filesystem::exists(game)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(game))
                names.push_back(entry.path().lexically_relative(game).string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    TempFolder mFolder;
};

/// Clockwise seen from the side that the normals point to, in left-handed coordinates.
inline bool FacesItsNormals(const ReadModel& model) {
    for (std::size_t i = 0; i < model.indices.size(); i += 3) {
        const ReadVertex& a = model.vertices.at(model.indices[i]);
        const ReadVertex& b = model.vertices.at(model.indices[i + 1]);
        const ReadVertex& c = model.vertices.at(model.indices[i + 2]);
        const Vorn::Vector3 side = (b.position - a.position).CrossProduct(c.position - a.position);
        if (side.DotProduct(a.normal) <= 0)
            return false;
    }
    return true;
}

} // namespace Tests

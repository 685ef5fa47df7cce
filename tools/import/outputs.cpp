// SPDX-License-Identifier: MIT
#include "tools/import/outputs.hpp"

#include "vorn/core/file.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace Import {
namespace {

namespace fs = std::filesystem;

/// What is made on the way, taken away again unless all of it was finished.
class Traces {
public:
    Traces() = default;
    Traces(const Traces&) = delete;
    Traces& operator=(const Traces&) = delete;
    ~Traces() {
        std::error_code ignored;
        for (auto path = mPaths.rbegin(); path != mPaths.rend(); ++path)
            fs::remove(*path, ignored);
    }
    void Add(const fs::path& path) { mPaths.push_back(path); }
    void Keep() { mPaths.clear(); }

    void MakeFolder(const fs::path& folder) {
        if (folder.empty() || fs::is_directory(folder))
            return;
        MakeFolder(folder.parent_path());
        if (fs::create_directory(folder))
            Add(folder);
    }

private:
    std::vector<fs::path> mPaths;
};

void write(const fs::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
}

} // namespace

void WriteOutputs(const std::string& folder, const std::vector<OutputFile>& files, bool force) {
    std::vector<const OutputFile*> fresh;
    std::string inTheWay;
    for (const OutputFile& file : files) {
        const fs::path relative = file.path;
        if (!file.path.starts_with("data/") ||
            std::find(relative.begin(), relative.end(), "..") != relative.end())
            throw std::runtime_error("a result has a strange name: " + file.path);
        const fs::path place = fs::path(folder) / file.path;
        if (fs::is_regular_file(place)) {
            if (Vorn::TextFromFile(place.string()) == file.bytes)
                continue;
            if (!force)
                inTheWay += "\n  " + place.string();
        } else if (fs::exists(place)) {
            throw std::runtime_error(place.string() + " is in the way and no file");
        }
        fresh.push_back(&file);
    }
    if (!inTheWay.empty())
        throw std::runtime_error("these files are there and differ (--force replaces them):" +
                                 inTheWay);

    Traces traces;
    std::vector<fs::path> written;
    for (const OutputFile* file : fresh) {
        const fs::path place = fs::path(folder) / file->path;
        traces.MakeFolder(place.parent_path());
        written.push_back(place.parent_path() /
                          fmt::format(".{}.{}.part", place.filename().string(), getpid()));
        traces.Add(written.back());
        write(written.back(), file->bytes);
    }
    for (std::size_t i = 0; i < fresh.size(); ++i)
        fs::rename(written[i], fs::path(folder) / fresh[i]->path);
    traces.Keep();
}

} // namespace Import

// SPDX-License-Identifier: MIT
#include "samples/game/score_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace Lantern {

namespace fs = std::filesystem;

fs::path ScoreFile::UsualPath() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    const fs::path base = data && *data   ? fs::path(data)
                          : home && *home ? fs::path(home) / ".local/share"
                                          : fs::temp_directory_path();
    return base / "vorn-lantern" / "best";
}

int ScoreFile::Best() const {
    std::ifstream file(mPath);
    file.imbue(std::locale::classic());
    int best = 0;
    return file >> best && (file >> std::ws).eof() && best > 0 ? best : 0;
}

bool ScoreFile::Keep(int score) const {
    std::error_code error;
    fs::create_directories(mPath.parent_path(), error);
    fs::path next = mPath;
    next += ".new";
    const int file = open(next.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return false;
    const std::string text = std::to_string(score) + "\n";
    const auto size = static_cast<ssize_t>(text.size());
    const bool written = write(file, text.data(), text.size()) == size && fsync(file) == 0;
    if (close(file) != 0 || !written) {
        fs::remove(next, error);
        return false;
    }
    fs::rename(next, mPath, error);
    return !error;
}

} // namespace Lantern

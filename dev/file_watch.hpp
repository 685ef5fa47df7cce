// SPDX-License-Identifier: MIT
//
// Tells which files below some folders have changed, without waiting.
//
//   Vorn::Dev::FileWatch watch;
//   watch.Add("data");
//   for (const std::string& path : watch.Changed())   // once a frame
//       Reload(path);
//
// A file is told once it has been left alone for a moment, however it was written: in place, piece
// by piece, or beside and renamed, as editors do. So it may be gone again, or be the same as
// before; files that an editor leaves beside it are told too.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Vorn::Dev {

class FileWatch {
public:
    /// Raises std::system_error where the machine has no more watches to give.
    FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
    ~FileWatch();

    /// With all folders below it, those too that come later. A link to a file counts as the file, a
    /// link to a folder below it is not followed. A folder that is there already is passed over.
    /// Raises std::system_error, with the path, for one that cannot be watched.
    void Add(const std::string& folder);
    /// Files that were written, came or went, and have rested for a tenth of a second since: the
    /// folder as it was given, and the way from there. Each once, in order. When more changed than
    /// the machine keeps, every file that is there.
    std::vector<std::string> Changed();

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

} // namespace Vorn::Dev

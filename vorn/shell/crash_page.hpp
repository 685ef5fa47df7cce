// SPDX-License-Identifier: MIT
//
// What a player gets instead of a program that is just gone: an exception that nobody caught ends
// in a page of text which says what happened, what to do about it, and what to send to whom.
//
//   int main() {
//       Vorn::ShowCrashPage({.game = "Meadow", .contact = "bugs@meadow.example", .recording = ""});
//       ...
//
// The page goes to standard error and into a file. Where there is a display a box tells what to do,
// and then the desktop's editor opens the file, to copy from.
// Without this call such an exception ends the program with one line, as C++ has it.
#pragma once

#include "vorn/core/api.hpp"

#include <string>

namespace Vorn {

struct CrashPage {
    std::string game;    // its name, and its version if it has one
    std::string contact; // where to send the page: an address, a web page; empty: nothing is said
    /// The file into which this session's input is recorded, to be sent too; empty: it is not.
    std::string recording;
};

/// From now on, and for every thread. A second call replaces the page's details. The file is
/// GAME-crash.txt, of the name's letters and digits, in the current folder, or where that cannot be
/// written in the folder for temporary files; an older one is replaced. Behind the page the program
/// ends by SIGABRT, so that a debugger stops where the exception was raised: nothing is unwound.
VORN_API void ShowCrashPage(CrashPage page);

} // namespace Vorn

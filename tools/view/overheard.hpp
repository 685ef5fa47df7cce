// SPDX-License-Identifier: MIT
#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace View {

/// For as long as it lives, standard output goes in here. The engine tells of each thing that it
/// loads there; what it says of a shader that does not compile is wanted.
class Overheard {
public:
    Overheard() : mBefore(std::cout.rdbuf(mText.rdbuf())) {}
    Overheard(const Overheard&) = delete;
    Overheard& operator=(const Overheard&) = delete;
    ~Overheard() { std::cout.rdbuf(mBefore); }
    std::string Text() const { return mText.str(); }

private:
    std::ostringstream mText;
    std::streambuf* mBefore;
};

} // namespace View

// SPDX-License-Identifier: MIT
//
// What runs the programs that stand in the documents, one at a time, by name.
#pragma once

#include "platform/control/vorn_platform.hpp"

#include <initializer_list>
#include <string>
#include <type_traits>

namespace Docs {

struct Program {
    const char* name;
    int (*main)(int, char**);
};

template <auto Main>
int Call(int count, char** arguments) {
    if constexpr (std::is_invocable_v<decltype(Main)>)
        return Main();
    else
        return Main(count, arguments);
}

/// Arguments: the program's name, a recording of input to play to it or "", and its own.
inline int Run(std::initializer_list<Program> programs, int count, char** arguments) {
    if (count < 3)
        return 2;
    if (*arguments[2])
        VornPlatform::PlayInput(arguments[2]);
    for (const Program& program : programs)
        if (program.name == std::string(arguments[1]))
            return program.main(count - 2, arguments + 2);
    return 2;
}

} // namespace Docs

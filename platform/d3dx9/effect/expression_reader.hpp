// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/declarations.hpp"
#include "platform/d3dx9/effect/state_table.hpp"
#include "platform/d3dx9/effect/token_cursor.hpp"

namespace VornPlatform {

/// Reads an expression where the cursor stands, up to what cannot belong to it.
class ExpressionReader {
public:
    struct Options {
        std::optional<StateValues> values = {}; // whose names are numbers
        bool parametersFirst = false;           // `<Point>` is a parameter, `Point` a filter
        bool greaterEnds = false;               // inside of < >
        bool anyConstant = false;               // `const` variables without `static` count
    };

    ExpressionReader(TokenCursor& cursor, const Declarations& declarations, Options options)
        : cursor_(cursor), declarations_(declarations), options_(options) {}
    Value read() { return choice(); }

private:
    struct Depth;

    Value choice();
    Value binary(int rank);
    Value unary();
    Value postfix(Value value);
    Value primary();
    Value bracket();
    std::optional<Value> cast();
    std::vector<Value> arguments();
    Value name(const Token& token);
    Value number(const Token& token);
    const char* operatorHere(int& rank) const;

    TokenCursor& cursor_;
    const Declarations& declarations_;
    Options options_;
    int depth_ = 0;
};

} // namespace VornPlatform

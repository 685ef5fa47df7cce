// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/matrix_columns.hpp"

#include "platform/d3dx9/effect/spirv_words.hpp"

#include <spirv_cross/GLSL.std.450.h>
#include <spirv_cross/spirv.hpp>

#include <unordered_map>
#include <unordered_set>

namespace VornPlatform {

namespace {

using Id = std::uint32_t;

struct Matrix {
    Id column = 0; // type
    std::uint32_t columns = 0;
};

// Where the operands of a function of vectors begin; 0 for anything else.
std::size_t OperandsOf(std::uint32_t code, const std::uint32_t* words) {
    switch (code) {
    case spv::OpExtInst:
        return words[4] == GLSLstd450MatrixInverse ? 0 : 5;
    case spv::OpDPdx:
    case spv::OpDPdy:
    case spv::OpFwidth:
        return 3;
    default:
        return 0;
    }
}

class ColumnWriter {
public:
    explicit ColumnWriter(const std::vector<std::uint32_t>& spirv)
        : out_(spirv.begin(), spirv.begin() + 5) {}

    void take(std::uint32_t code, const std::uint32_t* words, std::size_t count) {
        if (code == spv::OpTypeMatrix)
            matrices_[words[1]] = {words[2], words[3]};
        const std::size_t operands = OperandsOf(code, words);
        const auto result = operands ? matrices_.find(words[1]) : matrices_.end();
        if (result != matrices_.end())
            split(result->second, words, count, operands);
        else
            out_.insert(out_.end(), words, words + count);
        if (count > 2 && matrices_.contains(words[1]))
            values_.insert(words[2]);
    }
    std::vector<std::uint32_t> finish() { return std::move(out_); }

private:
    Id newId() { return out_[3]++; }
    void put(std::uint32_t code, std::initializer_list<std::uint32_t> words) {
        out_.push_back(static_cast<std::uint32_t>(words.size() + 1) << 16 | code);
        out_.insert(out_.end(), words);
    }

    void split(const Matrix& type, const std::uint32_t* words, std::size_t count,
               std::size_t operands) {
        std::vector<Id> columns;
        for (std::uint32_t column = 0; column < type.columns; ++column) {
            std::vector<std::uint32_t> one(words, words + count);
            for (std::size_t i = operands; i < count; ++i)
                if (values_.contains(words[i])) {
                    one[i] = newId();
                    put(spv::OpCompositeExtract, {type.column, one[i], words[i], column});
                }
            one[1] = type.column;
            one[2] = newId();
            columns.push_back(one[2]);
            out_.insert(out_.end(), one.begin(), one.end());
        }
        out_.push_back((3 + type.columns) << 16 | spv::OpCompositeConstruct);
        out_.insert(out_.end(), {words[1], words[2]});
        out_.insert(out_.end(), columns.begin(), columns.end());
    }

    std::vector<std::uint32_t> out_;
    std::unordered_map<Id, Matrix> matrices_;
    std::unordered_set<Id> values_; // that are matrices
};

} // namespace

void SplitMatrixFunctions(std::vector<std::uint32_t>& spirv) {
    ColumnWriter writer(spirv);
    ForEachInstruction(spirv, [&](std::uint32_t code, const std::uint32_t* words,
                                  std::size_t count) { writer.take(code, words, count); });
    spirv = writer.finish();
}

} // namespace VornPlatform

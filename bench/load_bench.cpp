// SPDX-License-Identifier: MIT
//
// A model of a million vertices, from its file to the device, beside fread of the same bytes. The
// file lies in the page cache for both.
#include "platform/control/vorn_platform.hpp"
#include "tests/support/working_folder.hpp"
#include "vorn/vorn.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t Side = 1000; // vertices along an edge of the grid
constexpr std::uint32_t VertexCount = Side * Side;
constexpr std::size_t StaticFloats = 8, SkinnedFloats = 13; // the last stands for four bones

struct Model {
    const char* name;
    std::uint32_t kind;
    std::size_t size = 0;
};
std::array<Model, 2> models{{{"static.model", 0}, {"skinned.model", 1}}};

void Append(std::vector<std::uint32_t>& words, std::initializer_list<std::uint32_t> more) {
    words.insert(words.end(), more);
}

void WriteModel(const Tests::TempFolder& folder, Model& model) {
    std::vector<std::uint32_t> words;
    Append(words, {0, 0, 0, 0, model.kind, 6 * (Side - 1) * (Side - 1)});
    for (std::uint32_t r = 0; r + 1 < Side; ++r)
        for (std::uint32_t c = 0; c + 1 < Side; ++c) {
            const std::uint32_t a = r * Side + c;
            Append(words, {a, a + 1, a + Side, a + 1, a + Side + 1, a + Side});
        }
    Append(words, {VertexCount});
    const std::size_t floats = model.kind == 1 ? SkinnedFloats : StaticFloats;
    for (std::uint32_t i = 0; i < VertexCount; ++i)
        for (std::size_t f = 0; f < floats; ++f)
            words.push_back(0x3F000000u + i); // floats from a half up
    std::string bytes(words.size() * sizeof(std::uint32_t), '\0');
    std::memcpy(bytes.data(), words.data(), bytes.size());
    folder.File(std::string("data/mesh/") + model.name, bytes);
    model.size = bytes.size();
}

void ReadBytes(benchmark::State& state) {
    const Model& model = models[static_cast<std::size_t>(state.range(0))];
    const std::string path = std::string("data/mesh/") + model.name;
    for (auto _ : state) {
        const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                         std::fclose);
        auto bytes = std::make_unique_for_overwrite<char[]>(model.size);
        if (std::fread(bytes.get(), 1, model.size, file.get()) != model.size)
            state.SkipWithError("the file is not whole");
        benchmark::DoNotOptimize(bytes.get());
        state.PauseTiming();
        bytes.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(model.size));
}

void LoadModel(benchmark::State& state) {
    const Model& model = models[static_cast<std::size_t>(state.range(0))];
    auto* meshes = Vorn::MeshManager::Instance();
    std::streambuf* const out = std::cout.rdbuf(nullptr); // a line to each model
    for (auto _ : state) {
        meshes->Load(model.name);
        state.PauseTiming();
        const Vorn::Mesh* mesh = meshes->Get(model.name);
        if (mesh->mVertexCount != VertexCount || !mesh->mVertexBuffer || !mesh->mIndexBuffer)
            state.SkipWithError("the model is not on the device");
        meshes->Unload(model.name);
        state.ResumeTiming();
    }
    std::cout.rdbuf(out);
    std::cout.clear();
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(model.size));
}

BENCHMARK(ReadBytes)->Arg(0)->Arg(1)->ArgName("skinned")->Unit(benchmark::kMillisecond);
BENCHMARK(LoadModel)->Arg(0)->Arg(1)->ArgName("skinned")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    VornPlatform::ForceHeadless();
    Vorn::Engine::Instance()->Init("Loading", 64, 64, false);
    {
        const Tests::WorkingFolder folder;
        folder.Folder("data/mesh");
        for (Model& model : models)
            WriteModel(folder, model);
        benchmark::RunSpecifiedBenchmarks();
    }
    Vorn::Engine::Instance()->Free();
    return 0;
}

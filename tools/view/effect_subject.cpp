// SPDX-License-Identifier: MIT
//
// An effect on a shape or a mesh, its parameters as sliders. Annotations tell the sliders their
// name and range: UIName, UIMin, UIMax, UIStep, UIWidget "Color"; ResourceName a picture.
#include "tools/view/effect_values.hpp"
#include "tools/view/subjects.hpp"

#include "vorn/render/graphic.hpp"

#include <fmt/format.h>
#include <imgui.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <stdexcept>

namespace View {
namespace {

using VornPlatform::ShaderConstant;
using VornPlatform::ValueClass;
using VornPlatform::ValueType;

constexpr std::uint32_t CheckerSide = 256, CheckerCell = 32;

constexpr D3DVERTEXELEMENT9 Element(std::size_t offset, BYTE type, BYTE usage) {
    return {0, static_cast<WORD>(offset), type, D3DDECLMETHOD_DEFAULT, usage, 0};
}
constexpr D3DVERTEXELEMENT9 Elements[] = {
    Element(offsetof(Vorn::Vertex_UTx, x), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION),
    Element(offsetof(Vorn::Vertex_UTx, nx), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_NORMAL),
    Element(offsetof(Vorn::Vertex_UTx, color), D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR),
    Element(offsetof(Vorn::Vertex_UTx, u), D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD),
    D3DDECL_END()};

const ShaderConstant* Annotation(const ShaderConstant& parameter, const char* name) {
    for (const ShaderConstant& annotation : parameter.annotations)
        if (annotation.name == name)
            return &annotation;
    return nullptr;
}
std::string TextOf(const ShaderConstant& parameter, const char* name) {
    const ShaderConstant* const annotation = Annotation(parameter, name);
    return annotation ? annotation->text : std::string();
}
std::string LabelOf(const ShaderConstant& parameter) {
    const std::string name = TextOf(parameter, "UIName");
    return name.empty() ? parameter.name : name;
}
float NumberOf(const ShaderConstant& parameter, const char* name, float fallback) {
    const ShaderConstant* const annotation = Annotation(parameter, name);
    return annotation && !annotation->numbers.empty() ? static_cast<float>(annotation->numbers[0])
                                                      : fallback;
}

/// A number or a vector that nothing gives but the author.
bool IsEditable(const ShaderConstant& parameter) {
    return (parameter.valueClass == ValueClass::Scalar ||
            parameter.valueClass == ValueClass::Vector) &&
           parameter.elements == 0 && parameter.columns <= 4 && !IsGiven(parameter) &&
           (parameter.type == ValueType::Float || parameter.type == ValueType::Int ||
            parameter.type == ValueType::Bool);
}

/// A value of four bytes a component, as the block of an effect has it.
struct Value {
    std::array<std::uint32_t, 4> bits{};

    float* Floats() { return static_cast<float*>(static_cast<void*>(bits.data())); }
    int* Ints() { return static_cast<int*>(static_cast<void*>(bits.data())); }
};

class Effect : public Subject {
public:
    Effect(const Options& options, const Stage& stage, Resources& resources)
        : mResources(resources), mPath(stage.File().string()),
          mOn(options.on.empty() ? "sphere" : options.on), mMesh(MeshNamed(mOn, resources)) {
        if (!mMesh)
            throw std::runtime_error("there is no mesh " + mOn + " to show it on");
        mCode = VornPlatform::CompileEffect(mPath, {}, VornPlatform::FileIncludes());
        for (const auto& [file, text] : mCode->files)
            dependOn(file);
        readValues();
        load();
    }
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    ~Effect() override { release(); }

    std::vector<Part> Parts() const override { return {{mMesh, &mResources.Plain(), {}, mOn}}; }

    bool Draw(const Frame& frame) override {
        IDirect3DDevice9* const device = Vorn::Graphic::LiveDevice();
        if (!device || !mEffect || !mMesh->mVertexBuffer)
            return true;
        device->SetVertexDeclaration(mDeclaration);
        device->SetStreamSource(0, mMesh->mVertexBuffer, 0, sizeof(Vorn::Vertex_UTx));
        device->SetIndices(mMesh->mIndexBuffer);
        setValues(frame);
        mEffect->SetTechnique(mEffect->GetTechniqueByName(mTechnique.c_str()));
        UINT passes = 0;
        if (FAILED(mEffect->Begin(&passes, 0)))
            return true;
        for (UINT pass = 0; pass < passes; ++pass)
            if (SUCCEEDED(mEffect->BeginPass(pass))) {
                Vorn::Graphic::Instance()->Draw(mMesh->mVertexCount, mMesh->mIndexCount / 3);
                mEffect->EndPass();
            }
        mEffect->End();
        return true;
    }

    Numbers Describe() const override {
        Numbers numbers;
        numbers.emplace_back("Effect", "");
        numbers.emplace_back("Techniques", Counted(mCode->techniques.size()));
        for (const auto& technique : mCode->techniques)
            if (technique.name == mTechnique)
                numbers.emplace_back("Passes", Counted(technique.passes.size()));
        numbers.emplace_back("Shaders", Counted(mCode->shaders.size()));
        numbers.emplace_back("Parameters", Counted(mCode->parameters.size()));
        numbers.emplace_back("Block", fmt::format("{} bytes", mCode->start.size()));
        DescribeMesh(*mMesh, numbers);
        return numbers;
    }

    void Controls() override {
        if (Choose("On", mOn, MeshChoices()))
            if (Vorn::Mesh* const mesh = MeshNamed(mOn, mResources))
                mMesh = mesh;
        std::vector<std::string> techniques;
        for (const auto& technique : mCode->techniques)
            techniques.push_back(technique.name);
        if (techniques.size() > 1)
            Choose("Technique", mTechnique, techniques);
        float widest = 0;
        for (const ShaderConstant& parameter : mCode->parameters)
            if (IsEditable(parameter) || parameter.type == ValueType::Texture)
                widest = std::max(widest, ImGui::CalcTextSize(LabelOf(parameter).c_str()).x);
        PushFieldWidth(widest);
        for (const ShaderConstant& parameter : mCode->parameters) {
            ImGui::PushID(parameter.name.c_str());
            if (IsEditable(parameter))
                edit(parameter, mValues[parameter.name]);
            else if (parameter.type == ValueType::Texture)
                choosePicture(parameter);
            ImGui::PopID();
        }
        ImGui::PopItemWidth();
    }

    void BeforeReset() override { release(); }
    void AfterReset() override { load(); }
    void TakeOver(const Subject& old) override {
        const auto* const before = dynamic_cast<const Effect*>(&old);
        if (!before)
            return;
        mOn = before->mOn;
        mMesh = before->mMesh;
        for (const auto& technique : mCode->techniques)
            if (technique.name == before->mTechnique)
                mTechnique = before->mTechnique;
        // What was set by hand stays, as long as it is of the same type.
        for (const ShaderConstant& parameter : mCode->parameters) {
            const auto same =
                std::find_if(before->mCode->parameters.begin(), before->mCode->parameters.end(),
                             [&](const ShaderConstant& other) {
                                 return other.name == parameter.name &&
                                        other.type == parameter.type &&
                                        other.columns == parameter.columns;
                             });
            if (same == before->mCode->parameters.end())
                continue;
            if (before->mEdited.contains(parameter.name)) {
                mValues[parameter.name] = before->mValues.at(parameter.name);
                mEdited[parameter.name] = true;
            }
            if (const auto picture = before->mPictures.find(parameter.name);
                picture != before->mPictures.end())
                mPictures[parameter.name] = picture->second;
        }
    }

private:
    /// The start values of the file, and a picture where it names one of the game's.
    void readValues() {
        const std::vector<std::string> pictures = Stage::Names("img");
        for (const ShaderConstant& parameter : mCode->parameters) {
            if (IsEditable(parameter))
                std::memcpy(mValues[parameter.name].bits.data(),
                            mCode->start.data() + parameter.offset, 4u * parameter.columns);
            else if (parameter.type == ValueType::Texture) {
                const std::string named =
                    std::filesystem::path(TextOf(parameter, "ResourceName")).filename().string();
                const bool there =
                    std::find(pictures.begin(), pictures.end(), named) != pictures.end();
                // Other targets of the last pass add nothing where they are black.
                const bool black =
                    parameter.name == "BeamTexture" || parameter.name == "ParticlesTexture";
                mPictures[parameter.name] = there ? named : black ? "black" : "checker";
            }
        }
        if (!mCode->techniques.empty())
            mTechnique = mCode->techniques[0].name;
    }

    void load() {
        IDirect3DDevice9* const device = Vorn::Graphic::LiveDevice();
        if (!Vorn::Graphic::LoadShader(mPath.c_str(), mEffect) || !device)
            throw std::runtime_error("there is no such file");
        device->CreateVertexDeclaration(Elements, &mDeclaration);
        makeChecker(*device);
    }
    void release() {
        if (mEffect)
            mEffect->Release();
        if (mDeclaration)
            mDeclaration->Release();
        if (mChecker)
            mChecker->Release();
        mEffect = nullptr;
        mDeclaration = nullptr;
        mChecker = nullptr;
    }

    void makeChecker(IDirect3DDevice9& device) {
        if (FAILED(D3DXCreateTexture(&device, CheckerSide, CheckerSide, 1, 0, D3DFMT_X8R8G8B8,
                                     D3DPOOL_MANAGED, &mChecker)))
            return;
        D3DLOCKED_RECT locked{};
        if (FAILED(mChecker->LockRect(0, &locked, nullptr, 0)))
            return;
        for (std::uint32_t y = 0; y < CheckerSide; ++y) {
            std::array<std::uint32_t, CheckerSide> row{};
            for (std::uint32_t x = 0; x < CheckerSide; ++x)
                row[x] = (x / CheckerCell + y / CheckerCell) % 2 ? 0xFFB8BCC4u : 0xFFE4E6EAu;
            std::memcpy(static_cast<char*>(locked.pBits) +
                            static_cast<std::ptrdiff_t>(y) * locked.Pitch,
                        row.data(), sizeof row);
        }
        mChecker->UnlockRect(0);
    }

    void setValues(const Frame& frame) {
        SetFrameValues(*mEffect, mCode->parameters, frame, mResources.Plain());
        for (const ShaderConstant& parameter : mCode->parameters) {
            const char* const name = parameter.name.c_str();
            if (const auto value = mValues.find(parameter.name); value != mValues.end())
                mEffect->SetValue(name, value->second.bits.data(), 4u * parameter.columns);
            if (const auto picture = mPictures.find(parameter.name); picture != mPictures.end())
                mEffect->SetTexture(name, pictureOf(picture->second));
        }
    }

    IDirect3DTexture9* pictureOf(const std::string& name) {
        if (name == "black")
            return nullptr;
        return name == "checker" ? mChecker : *mResources.Texture(name)->mTexture;
    }

    void edit(const ShaderConstant& parameter, Value& value) {
        const std::string title = LabelOf(parameter);
        const char* const label = title.c_str();
        const int columns = static_cast<int>(parameter.columns);
        bool changed = false;
        if (parameter.type == ValueType::Bool) {
            bool on = value.bits[0] != 0;
            changed = ImGui::Checkbox(label, &on);
            value.bits[0] = on ? 1u : 0u;
        } else if (parameter.type == ValueType::Int) {
            changed = ImGui::DragScalarN(label, ImGuiDataType_S32, value.Ints(), columns, 0.1f);
        } else if (isColor(parameter)) {
            changed = columns == 3 ? ImGui::ColorEdit3(label, value.Floats())
                                   : ImGui::ColorEdit4(label, value.Floats());
        } else {
            const float least = NumberOf(parameter, "UIMin", 0);
            const float most = NumberOf(parameter, "UIMax", 0);
            if (least < most)
                changed = ImGui::SliderScalarN(label, ImGuiDataType_Float, value.Floats(), columns,
                                               &least, &most, "%.3g");
            else
                changed = ImGui::DragScalarN(label, ImGuiDataType_Float, value.Floats(), columns,
                                             NumberOf(parameter, "UIStep", 0.01f), nullptr, nullptr,
                                             "%.3g");
        }
        if (changed)
            mEdited[parameter.name] = true;
    }

    /// By its widget, or by what it is called.
    static bool isColor(const ShaderConstant& parameter) {
        if (parameter.columns < 3)
            return false;
        if (const std::string widget = TextOf(parameter, "UIWidget"); !widget.empty())
            return widget == "Color" || widget == "color";
        std::string name = parameter.name;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return name.find("color") != std::string::npos ||
               name.find("colour") != std::string::npos || name.find("tint") != std::string::npos;
    }

    void choosePicture(const ShaderConstant& parameter) {
        std::vector<std::string> names = Stage::Names("img");
        names.insert(names.begin(), {"checker", "black"});
        Choose(LabelOf(parameter).c_str(), mPictures[parameter.name], names);
    }

    Resources& mResources;
    std::string mPath, mOn, mTechnique;
    Vorn::Mesh* mMesh;
    std::shared_ptr<const VornPlatform::EffectCode> mCode;
    std::map<std::string, Value> mValues; // by the parameter's name
    std::map<std::string, bool> mEdited;
    std::map<std::string, std::string> mPictures;
    ID3DXEffect* mEffect = nullptr;
    IDirect3DVertexDeclaration9* mDeclaration = nullptr;
    IDirect3DTexture9* mChecker = nullptr;
};

} // namespace

std::unique_ptr<Subject> MakeEffect(const Options& options, const Stage& stage,
                                    Resources& resources) {
    return std::make_unique<Effect>(options, stage, resources);
}

} // namespace View

// SPDX-License-Identifier: MIT
//
// A model with the material that the game gives it, a material on a shape, a picture on a plane.
#include "tools/view/entities.hpp"
#include "tools/view/subjects.hpp"

#include "vorn/core/json.hpp"

#include <imgui.h>

#include <algorithm>
#include <stdexcept>

namespace View {
namespace {

/// Raises what is wrong with a file that could not be loaded.
[[noreturn]] void RaiseFault(const Resources& resources, const std::string& path) {
    const auto fault = resources.Faults().find(path);
    throw std::runtime_error(fault == resources.Faults().end() ? "it cannot be read"
                                                               : fault->second);
}

std::string Stem(const std::string& name) {
    return std::filesystem::path(name).stem().string();
}

constexpr const char* PlainName = "plain grey";

class Model : public Subject {
public:
    Model(const Stage& stage, Resources& resources)
        : mResources(resources), mName(stage.NameOf("mesh")), mMesh(resources.Mesh(mName)) {
        if (!mMesh)
            RaiseFault(resources, "data/mesh/" + mName);
        LearnPhysicsNames(stage);
        mMaterialName = EntityTypes(stage.EntityFolders()).MaterialWith(mName);
        const std::vector<std::string> materials = Stage::Names("mat");
        if (mMaterialName.empty() &&
            std::find(materials.begin(), materials.end(), Stem(mName) + ".json") != materials.end())
            mMaterialName = Stem(mName) + ".json";
        if (mMaterialName.empty())
            mMaterialName = PlainName;
    }

    std::vector<Part> Parts() const override { return {{mMesh, material(), {}, mName}}; }
    Numbers Describe() const override {
        Numbers numbers;
        DescribeMesh(*mMesh, numbers);
        DescribeMaterial(*material(), numbers);
        return numbers;
    }
    void Controls() override {
        std::vector<std::string> names = Stage::Names("mat");
        names.insert(names.begin(), PlainName);
        Choose("Material", mMaterialName, names);
    }

private:
    Vorn::Material* material() const {
        Vorn::Material* const material =
            mMaterialName == PlainName ? nullptr : mResources.Material(mMaterialName);
        return material ? material : &mResources.Plain();
    }

    Resources& mResources;
    std::string mName, mMaterialName;
    Vorn::Mesh* mMesh;
};

class MaterialOnShape : public Subject {
public:
    MaterialOnShape(const Options& options, const Stage& stage, Resources& resources)
        : mResources(resources), mName(stage.NameOf("mat")),
          mOn(options.on.empty() ? "sphere" : options.on), mMesh(MeshNamed(mOn, resources)),
          mMaterial(resources.Material(mName)) {
        if (!mMaterial)
            RaiseFault(resources, "data/mat/" + mName);
        if (!mMesh)
            throw std::runtime_error("there is no mesh " + mOn + " to show it on");
    }

    std::vector<Part> Parts() const override { return {{mMesh, mMaterial, {}, mName}}; }
    Numbers Describe() const override {
        Numbers numbers;
        DescribeMaterial(*mMaterial, numbers);
        return numbers;
    }
    void Controls() override {
        if (Choose("On", mOn, MeshChoices()))
            if (Vorn::Mesh* const mesh = MeshNamed(mOn, mResources))
                mMesh = mesh;
    }

private:
    Resources& mResources;
    std::string mName, mOn;
    Vorn::Mesh* mMesh;
    Vorn::Material* mMaterial;
};

class PictureOnPlane : public Subject {
public:
    PictureOnPlane(const Stage& stage, Resources& resources)
        : mName(stage.NameOf("img")), mTexture(resources.Texture(mName)),
          mMesh(resources.Mesh(Shape::Plane)) {
        D3DSURFACE_DESC description{};
        if (!*mTexture->mTexture || FAILED((*mTexture->mTexture)->GetLevelDesc(0, &description)))
            RaiseFault(resources, "data/img/" + mName);
        mWide = static_cast<float>(description.Width) / static_cast<float>(description.Height);
        // Without any light a material shows its picture as it is.
        Json::Value root;
        root["Texture"] = mName;
        mMaterial.FromText(Vorn::WriteJson(root));
    }

    bool IsFlat() const override { return true; }
    std::vector<Part> Parts() const override {
        return {{mMesh, &mMaterial, Vorn::Matrix4::Scaling(mWide, 1, 1), mName}};
    }
    Numbers Describe() const override {
        Numbers numbers;
        DescribeTexture(mTexture, numbers);
        return numbers;
    }

private:
    std::string mName;
    Vorn::Texture* mTexture;
    Vorn::Mesh* mMesh;
    mutable Vorn::Material mMaterial;
    float mWide = 1;
};

} // namespace

std::unique_ptr<Subject> MakeModel(const Stage& stage, Resources& resources) {
    return std::make_unique<Model>(stage, resources);
}

std::unique_ptr<Subject> MakeMaterial(const Options& options, const Stage& stage,
                                      Resources& resources) {
    return std::make_unique<MaterialOnShape>(options, stage, resources);
}

std::unique_ptr<Subject> MakePicture(const Stage& stage, Resources& resources) {
    return std::make_unique<PictureOnPlane>(stage, resources);
}

} // namespace View

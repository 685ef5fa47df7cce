// SPDX-License-Identifier: MIT
//
// An entity or a variant by itself: its model, its body, its emitter, which plays.
#include "tools/view/emitter_controls.hpp"
#include "tools/view/entities.hpp"
#include "tools/view/subjects.hpp"

#include "vorn/core/json.hpp"
#include "vorn/render/emitter_cmpt.hpp"

#include <json/writer.h>
#include <fmt/format.h>
#include <imgui.h>

#include <algorithm>
#include <stdexcept>

namespace View {
namespace {

constexpr float Step = 1.0f / 60; // (unit: seconds)

class OneEntity : public Subject {
public:
    OneEntity(const Stage& stage, Resources& resources) : mResources(resources) {
        mOwn = ReadJson(stage.File());
        dependOn(stage.File());
        LearnPhysicsNames(stage);
        if (stage.File().extension() == ".var")
            readMaster(stage);
        build();
    }
    OneEntity(const OneEntity&) = delete;
    OneEntity& operator=(const OneEntity&) = delete;
    ~OneEntity() override { release(); }

    std::vector<Part> Parts() const override { return PartsOf({mDressed}); }
    bool HasParticles() const override { return emitter() != nullptr; }

    void Update(float dt) override {
        Vorn::EmitterCmpt* const emitter = this->emitter();
        if (!emitter)
            return;
        emitter->Emit(dt);
        emitter->Update(dt);
        // One that has ended begins anew, after a breath.
        const auto& particles = emitter->mParticles;
        const bool rests =
            std::none_of(particles.begin(), particles.end(), [](const auto& p) { return p.alive; });
        mRest = rests ? mRest + dt : 0.0f;
        if (mRest > 1.0f)
            Restart();
    }
    void Restart() override {
        mRest = 0.0f;
        if (emitter() && emitter()->GetTexture())
            StartEmitter(*emitter());
    }

    Bounds Extent() const override {
        Bounds bounds = Subject::Extent();
        bounds.Add(mSpread);
        return bounds;
    }
    void AddVolumes(Lines& lines) const override { AddVolume(mDressed, lines); }

    Numbers Describe() const override {
        const Vorn::Entity& entity = *mDressed.entity;
        Numbers numbers;
        numbers.emplace_back("Entity", "");
        numbers.emplace_back("Type", entity.Type());
        numbers.emplace_back("Variant", Vorn::JsonString(mOwn, "Variant", "master"));
        DescribeEmitter(entity, numbers);
        if (mDressed.mesh) {
            DescribeMesh(*mDressed.mesh, numbers);
            DescribeMaterial(*mDressed.material, numbers);
        }
        if (entity.Emitter())
            DescribeTexture(entity.Emitter()->GetTexture(), numbers);
        return numbers;
    }

    void Controls() override {
        if (!emitter() || !mValues["EmitterCmpt"].isObject())
            return;
        Json::Value edited = mValues;
        if (EditEmitter(edited["EmitterCmpt"]))
            tryOut(edited);
        if (ImGui::Button("Copy as JSON"))
            copy();
    }

private:
    /// As a person writes it: the digits that a float has.
    void copy() const {
        Json::StreamWriterBuilder builder;
        builder["precision"] = 6;
        builder["indentation"] = "    ";
        ImGui::SetClipboardText(Json::writeString(builder, mValues["EmitterCmpt"]).c_str());
    }

    void readMaster(const Stage& stage) {
        const std::string type = Vorn::JsonString(mOwn, "Type", "");
        const EntityTypes types(stage.EntityFolders());
        mProblems = types.Faults();
        for (const EntityFile& file : types.Files())
            if (file.type == type && file.variant == "master") {
                mMaster = file.root;
                dependOn(file.path);
                return;
            }
        mProblems[stage.File().string()] = "there is no entity file of the type \"" + type + '"';
    }

    void build() {
        mValues = Layered(mMaster, mOwn);
        mValues.removeMember("Variant");
        tryOut(mValues);
    }

    /// Raises, and changes nothing, where the values do not fit.
    void tryOut(const Json::Value& values) {
        LearnPhysicsNames(values);
        auto pool = std::make_unique<Vorn::EntityPool<Vorn::Entity>>();
        pool->LoadMaster(Vorn::WriteJson(values), 1);
        Vorn::Entity* const entity = pool->Fetch("master");
        const Dressed dressed = Dress(*entity, values, mResources);
        release();
        mPool = std::move(pool);
        mDressed = dressed;
        mValues = values;
        measure();
    }
    void release() {
        if (mDressed.entity)
            mPool->Return(mDressed.entity);
        mDressed = {};
    }

    /// Where its particles get to, found by letting them.
    void measure() {
        mSpread = {};
        Vorn::EmitterCmpt* const emitter = this->emitter();
        if (!emitter)
            return;
        const float longest = std::clamp(emitter->GetParticleLifeSpan(), 2.0f, 10.0f);
        for (float time = 0.0f; time < longest; time += Step) {
            emitter->Emit(Step);
            emitter->Update(Step);
            for (const Vorn::Particle& particle : emitter->mParticles)
                if (particle.alive) {
                    mSpread.Add(particle.position - particle.scale * 0.5f);
                    mSpread.Add(particle.position + particle.scale * 0.5f);
                }
        }
        Restart();
    }

    Vorn::EmitterCmpt* emitter() const {
        return mDressed.entity ? mDressed.entity->Emitter() : nullptr;
    }

    Resources& mResources;
    Json::Value mMaster, mOwn, mValues;
    std::unique_ptr<Vorn::EntityPool<Vorn::Entity>> mPool;
    Dressed mDressed;
    Bounds mSpread;
    float mRest = 0.0f; // since its last particle died (unit: seconds)
};

} // namespace

std::unique_ptr<Subject> MakeEntity(const Stage& stage, Resources& resources) {
    return std::make_unique<OneEntity>(stage, resources);
}

} // namespace View

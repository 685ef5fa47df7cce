// SPDX-License-Identifier: MIT
#include "vorn/physics/pair_walk.hpp"

#include "vorn/math/intersection.hpp"
#include "vorn/physics/body_volume.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/scene/entity.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

namespace Vorn {

PairWalk* PairWalk::sRunning = nullptr;

namespace {

// Whether rounding, or a rule for axes that are short or lie along Y, leaves the box three good
// axes. It may be wrong where it says no.
bool IsUpright(const Vector3& p, const Vector3& o, const Vector3& size) {
    const float length = o.SquareLength();
    // As Matrix4::RotationAxisAlignZ decides which axis the box's side is taken from.
    const bool alongY = std::abs(1 - o.y) < 0.00001f;
    const float aside = alongY ? o.y * o.y + o.z * o.z : o.x * o.x + o.z * o.z;
    const float least = std::min({std::abs(size.x), std::abs(size.y), std::abs(size.z)});
    const float farthest = std::abs(p.x) + std::abs(p.y) + std::abs(p.z) + std::abs(size.x) +
                           std::abs(size.y) + std::abs(size.z);
    return length > 1e-6f && length < 1e12f && aside > 1e-3f * length && least > 0.01f &&
           least > 1e-4f * farthest && farthest < 1e12f;
}

} // namespace

void PairWalk::Run(const std::list<PhysicsCmpt*>& cmpts) {
    struct Entered {
        PairWalk& walk;
        explicit Entered(PairWalk& w) : walk(w) { walk.mOuter = std::exchange(sRunning, &walk); }
        Entered(const Entered&) = delete;
        Entered& operator=(const Entered&) = delete;
        ~Entered() {
            sRunning = walk.mOuter;
            // What this walk was told, the outer one was not.
            if (sRunning)
                sRunning->touchAll();
        }
    } entered(*this);

    gather(cmpts);
    for (Id i = 0; i < count(); ++i)
        walkRow(i);
}

void PairWalk::Forget(const PhysicsCmpt* cmpt) {
    for (PairWalk* walk = sRunning; walk; walk = walk->mOuter)
        walk->forget(cmpt);
}

void PairWalk::Leave(const PhysicsSystem* system, const PhysicsCmpt* cmpt) {
    for (PairWalk* walk = sRunning; walk; walk = walk->mOuter)
        if (walk->mSystem != system)
            walk->forget(cmpt);
}

void PairWalk::forget(const PhysicsCmpt* cmpt) {
    for (Body& body : mBodies)
        if (body.cmpt == cmpt) {
            body.cmpt = nullptr;
            body.kind = Kind::None;
        }
}

void PairWalk::Append(const PhysicsSystem* system, PhysicsCmpt* cmpt) {
    for (PairWalk* walk = sRunning; walk; walk = walk->mOuter) {
        if (walk->mSystem != system)
            continue;
        const Id id = walk->add(cmpt);
        walk->body(id).stray = true;
        walk->mStrays.push_back(id);
        // An outer walk links all of its bodies anew when the inner one has ended.
        if (walk == sRunning)
            walk->link(id);
        walk->markTouched(id);
    }
}

void PairWalk::gather(const std::list<PhysicsCmpt*>& cmpts) {
    mBodies.clear();
    mBoxes.Clear();
    mSpheres.Clear();
    for (std::vector<Id>* ids : {&mDynamicBoxes, &mDynamicSpheres, &mStrays, &mTouched})
        ids->clear();

    for (PhysicsCmpt* cmpt : cmpts) {
        const Id id = add(cmpt);
        Body& added = body(id);
        link(id);
        read(added);
        if (added.dynamic && added.kind != Kind::None)
            (added.kind == Kind::Box ? mDynamicBoxes : mDynamicSpheres).push_back(id);
    }
    int boxes = 0, spheres = 0;
    for (Id id = 0; id < count(); ++id) {
        Body& added = body(id);
        if (added.kind == Kind::None)
            continue;
        added.index = added.kind == Kind::Box ? boxes++ : spheres++;
        groupOf(added).Add(id, boundsOf(added));
    }
    mShapes.resize(static_cast<std::size_t>(boxes));
    mBoxes.Build();
    mSpheres.Build();
}

PairWalk::Id PairWalk::add(PhysicsCmpt* cmpt) {
    Body& added = mBodies.emplace_back();
    added.cmpt = cmpt;
    added.entity = cmpt->Parent();
    return count() - 1;
}

// Each entity knows one of its bodies, and that one the others: a component may be registered
// twice, and an entity may have more than the one that it owns.
void PairWalk::link(Id id) {
    Body& linked = body(id);
    linked.next = -1;
    if (!linked.cmpt || !linked.entity)
        return;
    const auto known = static_cast<Id>(linked.entity->mBody);
    if (known < id && body(known).entity == linked.entity)
        linked.next = std::exchange(body(known).next, id);
    else
        linked.entity->mBody = static_cast<unsigned int>(id);
}

void PairWalk::read(Body& body) const {
    body.touched = false;
    body.shaped = false;
    body.kind = Kind::None;
    if (!body.cmpt || !body.entity)
        return;
    const PhysicsCmpt& cmpt = *body.cmpt;
    if (cmpt.mVolumeType == BoxVolume)
        body.kind = Kind::Box;
    else if (cmpt.mVolumeType == SphereVolume)
        body.kind = Kind::Sphere;
    body.dynamic = cmpt.mDynamicCheck;
    body.mask = cmpt.mMask;
    body.category = cmpt.mCategory;
    body.velocity = cmpt.mLinearVelocity;
    const Entity& entity = *body.entity;
    body.size = BodySize(entity.Scale(), cmpt.mScaleFactor);
    body.sphere = BodySphere(entity.Position(), body.size);
    body.orientation = entity.Orientation();
    body.angle = entity.Angle();
    body.upright = IsUpright(entity.Position(), body.orientation, body.size);
}

// Wide enough for all that rounding does to corners and distances. A sphere that may be swept
// reaches as far as it flies, and by half more: where the velocity's square is a denormal number,
// its direction is up to that much too short, and the swept test meets spheres that stand aside.
// Beyond 9e18 squares overflow, and the sphere meets whatever lies behind it.
Bounds PairWalk::boundsOf(const Body& body) const {
    const Vector3& c = body.sphere.center;
    float reach = body.sphere.radius * 1.0001f;
    if (body.kind == Kind::Sphere && !mDynamicSpheres.empty())
        reach = reach * 1.5f + body.velocity.Length() * 1.0001f;
    reach += 0.000002f * (std::abs(c.x) + std::abs(c.y) + std::abs(c.z));
    return {c, reach < 1e18f ? reach : std::numeric_limits<float>::infinity()};
}

const PairWalk::Shape& PairWalk::shapeOf(Id id) {
    Body& box = body(id);
    // The shapes of strays are needed two at a time, and kept no longer.
    Shape& shape = box.stray ? mStrayShapes[mLastStrayShape ^= 1]
                             : mShapes[static_cast<std::size_t>(box.index)];
    if (!box.shaped || box.stray) {
        shape.corners =
            CornersOf(BodyTransform(box.sphere.center, box.orientation, box.angle), box.size);
        shape.sides.axes = AxesOf(shape.corners);
        shape.sides.reach = Project(shape.corners, shape.sides.axes);
        box.shaped = true;
    }
    return shape;
}

BodyGroup& PairWalk::groupOf(const Body& body) {
    return body.kind == Kind::Box ? mBoxes : mSpheres;
}

void PairWalk::walkRow(Id i) {
    findCandidates(i, i + 1);
    // Nothing of the game runs before the first hit, so life is read there as at the row's start.
    bool knownAlive = false;
    for (std::size_t cursor = 0; cursor < mCandidates.size();) {
        const Id j = mCandidates[cursor++];
        if (!hits(i, j))
            continue;
        if (!knownAlive && !body(i).entity->IsAlive())
            return;
        knownAlive = true;
        if (!body(j).entity->IsAlive())
            continue;
        report(i, j);
        if (!mTouched.empty())
            cursor = settle(i, j, cursor);
    }
}

// The bodies from `from` on that body i may meet.
void PairWalk::findCandidates(Id i, Id from) {
    mCandidates.clear();
    const Body& a = body(i);
    if (a.kind == Kind::None)
        return;
    if (a.stray) {
        mCandidates.resize(static_cast<std::size_t>(std::max(count() - from, 0)));
        std::iota(mCandidates.begin(), mCandidates.end(), from);
        return;
    }
    Bounds bounds = boundsOf(a);
    if (a.kind == Kind::Sphere) {
        mSpheres.MeetSphere(bounds, a.index, from, mCandidates);
    } else if (!a.dynamic) {
        // A box that lacks an axis, or may, reaches on along it without an end.
        if (!a.upright)
            bounds.reach = std::numeric_limits<float>::infinity();
        mBoxes.MeetBox(
            bounds, [this, i]() -> const BoxSides& { return shapeOf(i).sides; }, a.index, from,
            mCandidates);
    }

    const BodyGroup& others = a.kind == Kind::Sphere ? mBoxes : mSpheres;
    const std::vector<Id>& swept = a.kind == Kind::Sphere ? mDynamicBoxes : mDynamicSpheres;
    addCandidates(a.dynamic ? others.Ids() : swept, from);
    addCandidates(mStrays, from);
}

void PairWalk::addCandidates(const std::vector<Id>& ids, Id from) {
    const auto first = std::lower_bound(ids.begin(), ids.end(), from);
    if (first == ids.end())
        return;
    mMerged.clear();
    std::set_union(mCandidates.begin(), mCandidates.end(), first, ids.end(),
                   std::back_inserter(mMerged));
    mCandidates.swap(mMerged);
}

bool PairWalk::hits(Id i, Id j) {
    const Body& a = body(i);
    const Body& b = body(j);
    if ((a.mask & b.category).any() || a.kind == Kind::None || b.kind == Kind::None)
        return false;
    const bool dynamic = a.dynamic || b.dynamic;
    if (a.kind == Kind::Sphere && b.kind == Kind::Sphere)
        return dynamic ? DynamicSphereToSphere(a.sphere, a.velocity, b.sphere, b.velocity)
                       : SphereSphere(a.sphere, b.sphere);
    if (a.kind == Kind::Box && b.kind == Kind::Box)
        return !dynamic && boxesHit(i, j);
    return dynamic && (a.kind == Kind::Box ? facesHit(i, j) : facesHit(j, i));
}

// OBBToOBB.
bool PairWalk::boxesHit(Id i, Id j) {
    const Shape& a = shapeOf(i);
    return Overlap(a.sides.reach, Project(shapeOf(j).corners, a.sides.axes));
}

// DynamicSphereToOBB.
bool PairWalk::facesHit(Id box, Id sphere) {
    const Shape& shape = shapeOf(box);
    const Body& ball = body(sphere);
    const Vector3 v = ball.velocity - body(box).velocity;
    for (int face = 0; face < 6; ++face) {
        const Vector3 axis = shape.sides.axes.At(AxisOfFace[face]);
        float t, side;
        if (SphereReachesPlane(ball.sphere, v, shape.corners.At(FirstCornerOfFace[face]),
                               IsOpposite[face] ? -axis : axis, t, side) &&
            t < 1.0f)
            return true;
    }
    return false;
}

void PairWalk::report(Id i, Id j) {
    CollisionData data{body(j).cmpt};
    body(i).cmpt->HandleCollision(&data);
    // The first call may have taken either away, against the rule.
    if (!body(i).cmpt || !body(j).cmpt)
        return;
    data.other = body(i).cmpt;
    body(j).cmpt->HandleCollision(&data);
}

// Takes in what a functor has changed. Answers where the row goes on.
std::size_t PairWalk::settle(Id i, Id j, std::size_t cursor) {
    bool rowMoved = false;
    // By index: reading a body anew touches none, but a list that grows may move.
    for (std::size_t k = 0; k < mTouched.size(); ++k) {
        const Id id = mTouched[k];
        const bool moved = refresh(id);
        rowMoved = rowMoved || (moved && id == i);
        if (!moved || id <= j)
            continue;
        const auto rest = mCandidates.begin() + static_cast<std::ptrdiff_t>(cursor);
        const auto place = std::lower_bound(rest, mCandidates.end(), id);
        if (place == mCandidates.end() || *place != id)
            mCandidates.insert(place, id);
    }
    mTouched.clear();
    if (!rowMoved)
        return cursor;
    findCandidates(i, j + 1);
    return 0;
}

// True if whom the body may meet has changed.
bool PairWalk::refresh(Id id) {
    Body& changed = body(id);
    const Kind kind = changed.kind;
    const bool dynamic = changed.dynamic;
    const Bounds before = boundsOf(changed);
    read(changed);
    if (changed.stray)
        return true;
    if (changed.kind != kind || changed.dynamic != dynamic) {
        changed.stray = true;
        mStrays.insert(std::upper_bound(mStrays.begin(), mStrays.end(), id), id);
        return true;
    }
    if (kind == Kind::None)
        return false;
    const Bounds after = boundsOf(changed);
    if (!(before.center == after.center && before.reach == after.reach))
        groupOf(changed).Move(changed.index, after);
    // A box may have turned about its centre.
    return kind == Kind::Box || !(before.center == after.center && before.reach == after.reach);
}

void PairWalk::touch(const Entity* entity) {
    const auto first = static_cast<Id>(entity->mBody);
    if (first >= count() || body(first).entity != entity)
        return;
    for (Id id = first; id >= 0; id = body(id).next)
        markTouched(id);
}

void PairWalk::touchAll() {
    for (Id id = 0; id < count(); ++id) {
        link(id);
        markTouched(id);
    }
}

void PairWalk::markTouched(Id id) {
    if (std::exchange(body(id).touched, true))
        return;
    mTouched.push_back(id);
}

} // namespace Vorn

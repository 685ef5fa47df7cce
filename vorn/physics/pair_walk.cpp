// SPDX-License-Identifier: MIT
#include "vorn/physics/pair_walk.hpp"

#include "vorn/core/fetch.hpp"
#include "vorn/math/intersection.hpp"
#include "vorn/physics/body_volume.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/scene/entity.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <numeric>

namespace Vorn {

PairWalk* PairWalk::sRunning = nullptr;

namespace {

void SortOut(std::vector<int>& ids) {
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

// By their bits: what is computed from them is the same, and a NaN is as it was.
template <typename T>
bool IsSame(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Whether rounding, or a rule for axes that are short or lie along Y, leaves a box three good axes.
// It may be wrong where it says no.
bool IsStraight(const Vector3& o) {
    const float length = o.SquareLength();
    // As Matrix4::RotationAxisAlignZ decides which axis the box's side is taken from.
    const bool alongY = std::abs(1 - o.y) < 0.00001f;
    const float aside = alongY ? o.y * o.y + o.z * o.z : o.x * o.x + o.z * o.z;
    return length > 1e-6f && length < 1e12f && aside > 1e-3f * length;
}

// The same of its place and size.
bool IsUpright(const Vector3& p, const Vector3& size) {
    const float x = std::abs(size.x), y = std::abs(size.y), z = std::abs(size.z);
    const float least = std::min({x, y, z});
    const float farthest = std::abs(p.x) + std::abs(p.y) + std::abs(p.z) + x + y + z;
    return (least > 0.01f) & (least > 1e-4f * farthest) & (farthest < 1e12f);
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
    findHits();
    for (Id i = 0; i < count(); ++i)
        if (!isSettled(body(i)) || !mHits.Of(i).empty())
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
        const Id id = walk->count();
        walk->mBodies.emplace_back(cmpt, cmpt->Parent()).stray = true;
        if (walk->mTurns.size() < walk->mBodies.size())
            walk->mTurns.emplace_back();
        walk->mStrays.push_back(id);
        // An outer walk links all of its bodies anew when the inner one has ended.
        if (walk == sRunning)
            walk->link(id);
        walk->markTouched(id);
    }
}

void PairWalk::gather(const std::list<PhysicsCmpt*>& cmpts) {
    mBodies.clear();
    mCategories.clear();
    if (mTurns.size() < cmpts.size())
        mTurns.resize(cmpts.size());
    mBoxes.Clear();
    mSpheres.Clear();
    for (std::vector<Id>* ids : {&mDynamicBoxes, &mDynamicSpheres, &mStrays, &mTouched})
        ids->clear();

    mAnyMask = false;
    mBodies.reserve(cmpts.size());
    VisitFetching(
        cmpts,
        [](const PhysicsCmpt* cmpt) {
            Fetch(&cmpt->mMask);
            Fetch(&cmpt->mLinearVelocity);
        },
        [](const PhysicsCmpt* cmpt) {
            if (const Entity* entity = cmpt->Parent()) {
                Fetch(&entity->Position());
                Fetch(&entity->Scale());
                Fetch(&entity->mBody);
            }
        },
        [this](PhysicsCmpt* cmpt) {
            const Id id = count();
            Body& added = mBodies.emplace_back(cmpt, cmpt->Parent());
            link(id);
            read(added, turn(id));
            group(id);
        });
    // Only now is it known that each of them may be swept.
    if (!mDynamicSpheres.empty())
        for (const Id id : mSpheres.Ids())
            mSpheres.Move(body(id).index, boundsOf(body(id)));
    mBoxes.Build();
    mSpheres.Build();
    placeBoxes();
    mShapes.resize(mBoxes.Ids().size());
    mShapesKnown.assign(mShapes.size(), false);
}

void PairWalk::group(Id id) {
    Body& added = body(id);
    if (added.kind == Kind::None)
        return;
    const bool box = added.kind == Kind::Box;
    BodyGroup& group = groupOf(added);
    added.index = static_cast<int>(group.Ids().size());
    group.Add(id, boundsOf(added));
    mAnyMask = mAnyMask || (box && added.mask.any());
    if (added.dynamic)
        (box ? mDynamicBoxes : mDynamicSpheres).push_back(id);
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

void PairWalk::read(Body& body, Turn& turn) {
    body.touched = false;
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
    if (mCategories.empty() || mCategories.back() != body.category)
        keepCategory(body.category);
    body.velocity = cmpt.mLinearVelocity;
    const Entity& entity = *body.entity;
    body.size = BodySize(entity.Scale(), cmpt.mScaleFactor);
    body.sphere = BodySphere(entity.Position(), body.size);
    if (body.kind != Kind::Box)
        return;
    if (!IsSame(turn.orientation, entity.Orientation()) || !IsSame(turn.angle, entity.Angle()))
        turn = Turn(entity.Orientation(), entity.Angle(), IsStraight(entity.Orientation()));
    body.upright = turn.straight && IsUpright(entity.Position(), body.size);
}

void PairWalk::keepCategory(const std::bitset<64>& category) {
    if (mCategories.size() < MostCategories &&
        std::find(mCategories.begin(), mCategories.end(), category) == mCategories.end())
        mCategories.push_back(category);
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
    const Body& box = body(id);
    const auto place = static_cast<std::size_t>(box.place);
    // The shapes of strays are needed two at a time, and kept no longer.
    Shape& shape = box.stray ? mStrayShapes[mLastStrayShape ^= 1] : mShapes[place];
    if (!box.stray && std::exchange(mShapesKnown[place], true))
        return shape;
    shape.corners = CornersOf(BodyTransform(box.sphere.center, turnOf(id)), box.size);
    shape.sides.axes = AxesOf(shape.corners);
    shape.sides.reach = Project(shape.corners, shape.sides.axes);
    return shape;
}

const BodyTurn& PairWalk::turnOf(Id id) {
    Turn& found = turn(id);
    if (!std::exchange(found.known, true))
        found.turn = TurnOf(found.orientation, found.angle);
    return found.turn;
}

// Whether its mask leaves nobody. Bodies are of a few categories, as a rule; where they are of
// more, each pair tells.
bool PairWalk::refusesAll(const Body& a) const {
    return a.mask.any() && mCategories.size() < MostCategories &&
           std::all_of(mCategories.begin(), mCategories.end(),
                       [&a](const std::bitset<64>& category) { return (a.mask & category).any(); });
}

void PairWalk::walkRow(Id i) {
    if (refusesAll(body(i)))
        return;
    // Nothing of the game runs before the first hit, so life is read there as at the row's start.
    bool knownAlive = false;
    Id from = i + 1;
    if (walkHits(i, from, knownAlive))
        return;
    findCandidates(i, from);
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

// Hits lead all over the memory, and the next ones are known.
void PairWalk::fetchAhead(std::size_t hit) const {
    constexpr std::size_t Far = 16, Near = 8;
    if (hit + Far >= mHits.Size())
        return;
    const auto bodyAt = [this](std::size_t at) -> const Body& {
        return mBodies[static_cast<std::size_t>(mHits[at])];
    };
    Fetch(&bodyAt(hit + Far));
    const Body& soon = bodyAt(hit + Near);
    if (!soon.cmpt)
        return;
    Fetch(&soon.entity->mAlive);
    Fetch(&soon.cmpt->mResponse);
}

// False where the row has to go on at `from` in the other way.
bool PairWalk::walkHits(Id i, Id& from, bool& knownAlive) {
    if (!isSettled(body(i)))
        return false;
    for (std::size_t at = mHits.Start(i); at < mHits.Start(i + 1); ++at) {
        const Id j = mHits[at];
        fetchAhead(at);
        // A pair may have been found twice, and a body be gone.
        if (j < from || body(i).kind == Kind::None || body(j).kind == Kind::None)
            continue;
        if (!knownAlive && !body(i).entity->IsAlive())
            return true;
        knownAlive = true;
        from = j + 1;
        if (!body(j).entity->IsAlive())
            continue;
        report(i, j);
        if (!mTouched.empty()) {
            settleAll();
            return false;
        }
    }
    return true;
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
    auto whom = BodyGroup::Whom::All;
    if (a.known && groupOf(a).PairsKnown()) {
        whom = BodyGroup::Whom::Moved;
        const auto known = mHits.Of(i);
        mCandidates.assign(std::lower_bound(known.begin(), known.end(), from), known.end());
    }
    if (a.kind == Kind::Sphere) {
        mSpheres.MeetSphere(whom, bounds, a.index, from, mCandidates);
    } else if (!a.dynamic) {
        // A box that lacks an axis, or may, reaches on along it without an end.
        if (!a.upright)
            bounds.reach = std::numeric_limits<float>::infinity();
        mBoxes.MeetBox(
            whom, bounds, [this, i]() -> const BoxSides& { return shapeOf(i).sides; }, a.index,
            from, mCandidates);
    }

    if (whom == BodyGroup::Whom::Moved)
        SortOut(mCandidates);

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

void PairWalk::settleAll() {
    for (std::size_t k = 0; k < mTouched.size(); ++k)
        refresh(mTouched[k]);
    mTouched.clear();
}

// True if whom the body may meet has changed.
bool PairWalk::refresh(Id id) {
    Body& changed = body(id);
    const Body before = changed;
    Turn& turned = turn(id);
    const Turn turnBefore = turned;
    read(changed, turned);
    if (changed.stray)
        return true;
    if (changed.kind != before.kind || changed.dynamic != before.dynamic) {
        changed.stray = true;
        mStrays.insert(std::upper_bound(mStrays.begin(), mStrays.end(), id), id);
        return true;
    }
    if (changed.kind == Kind::None)
        return false;
    const bool swept = !mDynamicBoxes.empty() || !mDynamicSpheres.empty();
    if (IsSame(before.sphere.center, changed.sphere.center) && IsSame(before.size, changed.size) &&
        IsSame(turnBefore.orientation, turned.orientation) &&
        IsSame(turnBefore.angle, turned.angle) && before.mask == changed.mask &&
        before.category == changed.category &&
        (!swept || IsSame(before.velocity, changed.velocity)))
        return false;
    if (changed.kind == Kind::Box)
        mShapesKnown[static_cast<std::size_t>(changed.place)] = false;
    groupOf(changed).Move(changed.index, boundsOf(changed));
    changed.known = false;
    return true;
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

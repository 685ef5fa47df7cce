// SPDX-License-Identifier: MIT
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <list>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

struct Piece {
    Vorn::Registration<Piece> mRegistration;
};

using PieceList = Vorn::CmptList<Piece>;
using Plain = std::list<Piece*>;

TEST(CmptList, TwoListsRunLikePlainOnes) {
    std::mt19937 random(13);
    std::vector<std::unique_ptr<Piece>> pieces(9);
    std::vector<std::unique_ptr<PieceList>> lists(2);
    std::array<Plain, 2> plain;
    for (auto& piece : pieces)
        piece = std::make_unique<Piece>();
    for (auto& list : lists)
        list = std::make_unique<PieceList>();
    for (int step = 0; step < 30'000; ++step) {
        // Mostly in one list, so that entries pile up.
        const std::size_t at = random() % 16 == 0;
        auto& slot = pieces[random() % pieces.size()];
        Piece* piece = slot.get();
        const auto dice = random() % 1000;
        if (dice < 550) {
            lists[at]->Add(piece);
            plain[1 - at].remove(piece);
            plain[at].push_back(piece);
        } else if (dice < 900) {
            lists[at]->RemoveFirst(piece);
            const auto found = std::find(plain[at].begin(), plain[at].end(), piece);
            if (found != plain[at].end())
                plain[at].erase(found);
        } else if (dice < 940) {
            lists[at]->RemoveAll(piece);
            plain[at].remove(piece);
        } else if (dice < 960) {
            *piece = *pieces[random() % pieces.size()];
        } else if (dice < 995) {
            plain[0].remove(piece);
            plain[1].remove(piece);
            slot.reset();
            slot = std::make_unique<Piece>();
        } else {
            lists[at] = std::make_unique<PieceList>();
            plain[at].clear();
        }
        ASSERT_EQ(lists[0]->Cmpts(), plain[0]) << step;
        ASSERT_EQ(lists[1]->Cmpts(), plain[1]) << step;
    }
}

TEST(CmptList, UsesTheMemoryOfErasedEntriesAgain) {
    Piece piece;
    PieceList list;
    list.Add(&piece);
    const void* entry = &list.Cmpts().back();
    list.RemoveFirst(&piece);
    const Plain other(9, nullptr); // would take memory that was given back
    list.Add(&piece);
    EXPECT_EQ(&list.Cmpts().back(), entry);
}

using Ids = std::vector<int>;

/// Writes its number into a log whenever its system's walk comes by.
template <typename Cmpt>
class Probe : public Cmpt {
public:
    Probe(Ids& log, int id) : mLog(log), mId(id) {}
    void Init() override { mLog.push_back(mId); }
    void Deinit() override { mLog.push_back(-mId); }

private:
    Ids& mLog;
    int mId;
};

template <typename Cmpt, typename System>
void ExpectRegistrationRules(bool erasesAll) {
    Vorn::System<System, Cmpt>& system = *System::Instance();
    Ids log;
    const auto walk = [&] {
        log.clear();
        system.Init();
        Ids inits = std::exchange(log, {});
        system.Update(0.1f);
        system.Deinit();
        std::transform(log.begin(), log.end(), log.begin(), std::negate());
        EXPECT_EQ(log, inits);
        return inits;
    };
    EXPECT_EQ(walk(), Ids{});
    Probe<Cmpt> a(log, 1), b(log, 2), stranger(log, 3);
    {
        Probe<Cmpt> copied(log, 4);
        for (Probe<Cmpt>* probe : {&b, &a, &copied, &a, &b, &copied, &a})
            system.Register(probe);
        EXPECT_EQ(walk(), (Ids{2, 1, 4, 1, 2, 4, 1}));
        Probe<Cmpt> copy(copied);
        for (Cmpt* none : {static_cast<Cmpt*>(&copy), static_cast<Cmpt*>(&stranger),
                           static_cast<Cmpt*>(nullptr)})
            system.Unregister(none);
        EXPECT_EQ(walk(), (Ids{2, 1, 4, 1, 2, 4, 1}));
    }
    EXPECT_EQ(walk(), (Ids{2, 1, 1, 2, 1})) << "what dies leaves with all its entries";
    system.Unregister(&a);
    EXPECT_EQ(walk(), erasesAll ? (Ids{2, 2}) : (Ids{2, 1, 2, 1}));
    system.Unregister(&b);
    EXPECT_EQ(walk(), erasesAll ? Ids{} : (Ids{1, 2, 1}));
}

TEST(ComponentSystems, WalkInOrderAndTakeOutTheFirstOrEveryEntry) {
    ExpectRegistrationRules<Vorn::GraphicsCmpt, Vorn::GraphicsSystem>(false);
    ExpectRegistrationRules<Vorn::EmitterCmpt, Vorn::EmitterSystem>(false);
    ExpectRegistrationRules<Vorn::PhysicsCmpt, Vorn::PhysicsSystem>(true);
}

} // namespace

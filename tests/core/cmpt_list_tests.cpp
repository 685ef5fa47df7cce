// SPDX-License-Identifier: MIT
#include "vorn/scene/cmpt_list.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <list>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace {

struct Piece {
    Vorn::Registration<Piece> mRegistration;
};

using PieceList = Vorn::CmptList<Piece>;
using Plain = std::list<Piece*>;

TEST(CmptList, KeepsTheOrderOfEntering) {
    Piece a, b, c;
    PieceList list;
    EXPECT_TRUE(list.Cmpts().empty());
    for (Piece* piece : {&b, &a, &b, &c, &b})
        list.Add(piece);
    EXPECT_EQ(list.Cmpts(), (Plain{&b, &a, &b, &c, &b}));
    list.RemoveFirst(&b);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &b, &c, &b}));
    list.Add(&b);
    list.RemoveFirst(&b);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &c, &b, &b}));
    list.RemoveAll(&b);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &c}));
    list.RemoveFirst(&b);
    list.RemoveAll(&b);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &c}));
    list.Add(&b);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &c, &b}));
}

TEST(CmptList, NeverHoldsWhatIsGone) {
    PieceList list;
    Piece stays;
    {
        Piece goes;
        for (Piece* piece : {&goes, &stays, &goes, &goes, &stays})
            list.Add(piece);
    }
    EXPECT_EQ(list.Cmpts(), (Plain{&stays, &stays}));
}

TEST(CmptList, MayGoBeforeItsEntries) {
    Piece piece;
    auto first = std::make_unique<PieceList>();
    first->Add(&piece);
    first->Add(&piece);
    first.reset();
    PieceList second;
    second.RemoveFirst(&piece);
    second.RemoveAll(&piece);
    second.Add(&piece);
    EXPECT_EQ(second.Cmpts(), Plain{&piece});
    second.RemoveFirst(&piece);
    EXPECT_TRUE(second.Cmpts().empty());
}

TEST(CmptList, ACopyOfAnEntryIsNone) {
    Piece a, b;
    PieceList list;
    list.Add(&a);
    list.Add(&a);
    {
        Piece copy(a);
        list.RemoveFirst(&copy);
        list.RemoveAll(&copy);
    }
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &a}));
    list.Add(&b);
    a = b;
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &a, &b}));
    const Piece outside;
    a = outside;
    b = a;
    list.RemoveFirst(&a);
    EXPECT_EQ(list.Cmpts(), (Plain{&a, &b}));
}

TEST(CmptList, EnteringAnotherListLeavesTheFirst) {
    Piece a, b;
    PieceList first, second;
    first.Add(&a);
    first.Add(&b);
    first.Add(&a);
    second.RemoveFirst(&a);
    second.RemoveAll(&b);
    EXPECT_EQ(first.Cmpts(), (Plain{&a, &b, &a}));
    second.Add(&a);
    EXPECT_EQ(first.Cmpts(), Plain{&b});
    EXPECT_EQ(second.Cmpts(), Plain{&a});
    first.RemoveAll(&a);
    EXPECT_EQ(second.Cmpts(), Plain{&a});
}

// Entries are known by where they are stored: other lists that take what was given back in between
// would move them.
TEST(CmptList, UsesTheMemoryOfErasedEntriesAgain) {
    constexpr std::size_t Count = 100;
    std::vector<Piece> pieces(Count);
    PieceList list;
    const auto fill = [&] {
        std::set<const void*> nodes;
        for (Piece& piece : pieces) {
            list.Add(&piece);
            nodes.insert(&list.Cmpts().back());
        }
        return nodes;
    };
    const std::set<const void*> before = fill();
    ASSERT_EQ(before.size(), Count);
    for (Piece& piece : pieces)
        list.RemoveFirst(&piece);
    const Plain other(2 * Count, nullptr);
    EXPECT_EQ(fill(), before);
    for (Piece& piece : pieces)
        list.RemoveAll(&piece);
    const Plain another(2 * Count, nullptr);
    EXPECT_EQ(fill(), before);
}

TEST(CmptList, TwoListsRunLikePlainOnes) {
    std::mt19937 random(13);
    std::array<std::unique_ptr<Piece>, 9> pieces;
    for (auto& piece : pieces)
        piece = std::make_unique<Piece>();
    std::array<std::unique_ptr<PieceList>, 2> lists{std::make_unique<PieceList>(),
                                                    std::make_unique<PieceList>()};
    std::array<Plain, 2> plain;

    for (int step = 0; step < 30'000; ++step) {
        SCOPED_TRACE(step);
        const std::size_t at = random() % 2;
        auto& slot = pieces[random() % pieces.size()];
        Piece* piece = slot.get();
        const auto dice = random() % 1000;
        if (dice < 550) {
            // Mostly in the list that it stands in, so that entries pile up.
            const std::size_t to =
                std::count(plain[1 - at].begin(), plain[1 - at].end(), piece) && dice < 500 ? 1 - at
                                                                                            : at;
            lists[to]->Add(piece);
            plain[1 - to].remove(piece);
            plain[to].push_back(piece);
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
        ASSERT_EQ(lists[0]->Cmpts(), plain[0]);
        ASSERT_EQ(lists[1]->Cmpts(), plain[1]);
    }
}

} // namespace

// SPDX-License-Identifier: MIT
#include "trigger_world.hpp"

#include <locale>

namespace {

using namespace TriggerTests;

const std::string A = "CREATE_ENTITY w thing POSITION 1 2 3";
const std::string B = "CREATE_ENTITY w other POSITION 4 5 6";
const std::string MadeA = "thing master 1 2 3";
const std::string MadeB = "other master 4 5 6";

class TriggerManager : public TriggerTest {
protected:
    void PushFor(char key, const Texts& action) {
        manager.Push(Load(std::string("KEY_TRIGGERED ") + key, action));
    }
    void Press(char key) { Raise<Key_Triggered>(manager, static_cast<unsigned int>(key)); }
};

TEST_F(TriggerManager, RunsACommandAFrameAndWaitsInFull) {
    struct Row {
        Texts action;
        std::vector<double> dts;
        std::string created;
    };
    const std::vector<double> eight(8, 0.5);
    const std::vector<Row> rows = {
        {{A}, {0.5, 0.5}, MadeA + "|"},
        {{A}, {0.0, 0.0, 0.5}, "||" + MadeA},
        {{A, B, A}, {0.5, 0.0, 0.0}, MadeA + "|" + MadeB + "|" + MadeA},
        // The wait begins in the frame after A, and a rest of exactly 0 is a wait.
        {{A, "WAIT 2.5", B}, eight, MadeA + "|||||||" + MadeB},
        {{A, "WAIT 2.25", B}, eight, MadeA + "||||||" + MadeB + "|"},
        {{"WAIT 1", "WAIT 1", A}, eight, "||||||" + MadeA + "|"},
        {{A, "WAIT 0", B}, {0.5, 0.5, 0.0, 0.0, 0.5}, MadeA + "||||" + MadeB},
        {{"WAIT -3", A}, {0.5, 0.0}, "|" + MadeA},
        {{A, "WAIT", B}, {0.5, 0.5, 0.0, 0.5}, MadeA + "|||" + MadeB},
        {{"WAIT 3", "WAIT soon", B}, {1, 4, 0.0, 1}, "|||" + MadeB},
        {{"  WAIT   1  2 ", A}, {1, 1, 1}, "||" + MadeA},
        {{"WAIT 1e308", A}, {1, 1e300, 1}, "||"},
        // Whatever does nothing takes its frame, and leaves nothing for the line after it.
        {{"EXPLODE now", "wait 5", "Create_Entity w thing POSITION 0 0 0", "WAITING 4", A},
         eight,
         "||||" + MadeA + "|||"},
        {{A, "", "    ", B}, {1, 1, 1, 1}, MadeA + "|||" + MadeB},
        {{"WAIT 2", "", B}, {1, 3, 0.0, 0.0}, "||" + MadeB + "|"},
        {{A, "CREATE_ENTITY", "CREATE_ENTITY w", "CREATE_ENTITY w thing",
          "CREATE_ENTITY w thing position 1 2 3", "CREATE_ENTITY w thing POSITIONS 1 2 3",
          "CREATE_ENTITY w POSITION 1 2 3"},
         eight,
         MadeA + "|||||||"},
        // A number that cannot be read is 0 and ends the line.
        {{A, "CREATE_ENTITY w thing POSITION 7", "CREATE_ENTITY w thing POSITION x 8 9",
          "CREATE_ENTITY w thing POSITION 7 x 9", "CREATE_ENTITY w thing POSITION",
          "CREATE_ENTITY w thing POSITION 1e999 8 9"},
         {1, 1, 1, 1, 1, 1},
         MadeA + "|thing master 7 0 0|thing master 0 0 0|thing master 7 0 0|thing master 0 0 0" +
             "|thing master 0 0 0"},
        {{"   CREATE_ENTITY  any   other POSITION  -1.5 +2 .25 9 9"},
         {1},
         "other master -1.5 2 0.25"},
        {{}, {1, 1}, "|"},
    };
    for (const Row& row : rows) {
        Vorn::TriggerManager own;
        own.Push(Load("KEY_TRIGGERED a", row.action));
        Raise<Key_Triggered>(own, 65u);
        EXPECT_EQ(Frames(own, row.dts), row.created) << Array(row.action);
    }
}

TEST_F(TriggerManager, ScriptsHaveADecimalPointWhateverTheHostHas) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    Vorn::TriggerManager own;
    own.Push(
        Load("TIME_ELAPSED 0.75", {"WAIT 0.75", "CREATE_ENTITY w thing POSITION 1.5 2.5 -.5"}));
    const std::string created = Frames(own, {0.5, 0.5, 0.5, 0.5, 0.5});
    std::locale::global(before);
    EXPECT_EQ(created, "|||thing master 1.5 2.5 -0.5|");
}

TEST_F(TriggerManager, ResetCountsFromZeroForThoseThatHaveNotFired) {
    manager.Push(Load("TIME_ELAPSED 1", {A}));
    manager.Push(Load("TIME_ELAPSED 2", {B}));
    EXPECT_EQ(Frames({1, 0.5}), "|" + MadeA);
    manager.ResetTimeElapsed();
    EXPECT_EQ(Frames({1, 1, 0, 1, 5}), "|||" + MadeB + "|");
}

TEST_F(TriggerManager, CreatedEntityIsInitialisedInPlaceAtOnceAndEntersTheSceneAtItsNextEnd) {
    Vorn::Entity parent;
    parent.Position(10.0f, 20.0f, 30.0f);
    things.parent = &parent;
    PushFor('A', {A});
    Press('A');
    EXPECT_EQ(Frames({0.5}), MadeA);
    Spawn& made = things.made.back();
    EXPECT_EQ(made.inits, 1);
    EXPECT_EQ(made.LocalPosition(), Vorn::Vector3(-9.0f, -18.0f, -27.0f));
    EXPECT_THAT(scene.EntityList(), IsEmpty());
    scenes.Update(0.5f);
    EXPECT_THAT(scene.EntityList(), ElementsAre(&made));
    EXPECT_EQ(made.inits, 2);
    scenes.Update(0.5f);
    EXPECT_EQ(made.Position(), Vorn::Vector3(1.0f, 2.0f, 3.0f));
}

TEST_F(TriggerManager, WithoutASceneTheCommandIsDroppedAndNothingFetched) {
    scenes = Vorn::SceneManager();
    PushFor('A', {A, "CREATE_ENTITY w nobody POSITION 0 0 0", B});
    Press('A');
    EXPECT_EQ(Frames({1, 1}), "|");
    EXPECT_EQ(things.fetched, 0);
    scenes.SetScene(&scene);
    scenes.Update(0.0f);
    EXPECT_EQ(Frames({1, 1}), MadeB + "|");
}

TEST_F(TriggerManager, TriggersOutliveAChangeOfScene) {
    PushFor('A', {"WAIT 1", A});
    Press('A');
    EXPECT_EQ(Frames({0.5}), "");
    Vorn::Scene next;
    scenes.SetScene(&next);
    scenes.Update(0.5f);
    EXPECT_EQ(Frames({2}), MadeA);
    scenes.Update(0.5f);
    EXPECT_THAT(next.EntityList(), ElementsAre(&things.made.back()));
    scenes = Vorn::SceneManager();
}

TEST_F(TriggerManager, TypeWithoutAPoolRaisesOnceAndTheRestGoesOn) {
    PushFor('A', {"CREATE_ENTITY w nobody POSITION 0 0 0", A});
    PushFor('A', {B, B, B});
    Press('A');
    EXPECT_THROW(manager.Update(0.5), std::out_of_range);
    const std::string rest = Frames({0.5, 0.5, 0.5, 0.5});
    EXPECT_THAT(rest, testing::HasSubstr(MadeA));
    EXPECT_EQ(others.fetched, 3);
}

TEST_F(TriggerManager, EntityMayPushAndRaiseInItsInit) {
    PushFor('A', {A, A, A});
    PushFor('A', {B, B});
    things.onBirth = [this] {
        for (int i = 0; i < 100; ++i) {
            PushFor('C', {B});
            Press('C');
        }
    };
    Press('A');
    Frames({1, 1, 1});
    EXPECT_EQ(things.fetched, 3);
    EXPECT_EQ(others.fetched, 2 + 100 * 101 / 2);
}

} // namespace

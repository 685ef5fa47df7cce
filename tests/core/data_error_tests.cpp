// SPDX-License-Identifier: MIT
#include "vorn/core/data_error.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace {

using Vorn::DataError;
using Vorn::ReadingIn;

template <typename Act>
std::string TextOf(Act act) {
    try {
        act();
    } catch (const DataError& error) {
        return error.what();
    }
    return "no error";
}

TEST(ReadingIn, NamesThePlacesFromTheInsideOut) {
    const std::string text = TextOf([] {
        ReadingIn(
            [] { return std::string("meadow.scene"); },
            [] { ReadingIn([] { return "Entities[17]"; }, [] { throw DataError("A fault"); }); });
    });
    EXPECT_EQ(text, "A fault in Entities[17] in meadow.scene");
}

TEST(ReadingIn, AsksForThePlaceOnlyWhenThereIsAFault) {
    int asked = 0;
    const auto where = [&] {
        ++asked;
        return std::string("place");
    };
    EXPECT_EQ(ReadingIn(where, [] { return 3; }), 3);
    EXPECT_EQ(asked, 0);
    EXPECT_THROW(ReadingIn(where, []() -> int { throw DataError("x"); }), DataError);
    EXPECT_EQ(asked, 1);
}

TEST(ReadingIn, PassesResultsOnAsTheyAre) {
    const auto where = [] { return std::string("place"); };
    int field = 0;
    int& same = ReadingIn(where, [&]() -> int& { return field; });
    EXPECT_EQ(&same, &field);
    const std::unique_ptr<int> moved = ReadingIn(where, [] { return std::make_unique<int>(7); });
    EXPECT_EQ(*moved, 7);
}

TEST(ReadingIn, LeavesOtherExceptionsAlone) {
    const auto where = [] { return std::string("place"); };
    try {
        ReadingIn(where, [] { throw std::runtime_error("plain"); });
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(typeid(error), typeid(std::runtime_error));
        EXPECT_STREQ(error.what(), "plain");
    }
    EXPECT_THROW(ReadingIn(where, [] { throw 5; }), int);
}

TEST(DataError, IsCaughtAsARuntimeErrorAndCopies) {
    const DataError first("first");
    DataError second("second");
    second = first;
    EXPECT_STREQ(second.what(), "first");
    EXPECT_STREQ(DataError(first).what(), "first");
    EXPECT_THROW(throw DataError("thrown"), std::runtime_error);
}

} // namespace

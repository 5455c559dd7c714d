#include "shell/forward.h"

#include <gtest/gtest.h>

namespace kestrune {
namespace {

TEST(clsForward, CallsTheNamedMethodOfItsTarget) {
    int calls = 0;
    auto target = std::make_shared<NamedCalls>();
    target->define("Refresh", [&calls] { ++calls; });
    clsForward forward;
    forward.Set_Destination(target, "Refresh");
    forward.My_Default_Method();
    forward();
    EXPECT_EQ(calls, 2);
}

TEST(clsForward, DoesNothingUntilItIsArmed) {
    const clsForward forward;
    forward.My_Default_Method();
    clsForward without_target;
    without_target.Set_Destination(nullptr, "Refresh");
    without_target.My_Default_Method();
}

TEST(clsForward, MethodThatTheTargetDoesNotHaveIsNotCalled) {
    int calls = 0;
    auto target = std::make_shared<NamedCalls>();
    target->define("Refresh", [&calls] { ++calls; });
    clsForward forward;
    forward.Set_Destination(target, "refresh");
    forward.My_Default_Method();
    EXPECT_EQ(calls, 0);
}

TEST(clsForward, KeepsItsTargetAlive) {
    int calls = 0;
    auto target = std::make_shared<NamedCalls>();
    target->define("Refresh", [&calls] { ++calls; });
    clsForward forward;
    forward.Set_Destination(target, "Refresh");
    target.reset();
    forward();
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace kestrune

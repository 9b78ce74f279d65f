#include "desktop/single_instance.h"

#include <gtest/gtest.h>

#include <optional>

#include "desktop/failure.h"

namespace {

TEST(SingleInstance, ASecondOneIsBusyUntilTheFirstIsGone) {
    std::optional<SingleInstance> first(std::in_place);
    try {
        const SingleInstance second;
        ADD_FAILURE() << "there are two";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kBusy);
        EXPECT_EQ(static_cast<int>(failure.Code()), 7);
    }
    first.reset();
    EXPECT_NO_THROW(first.emplace());
}

}  // namespace

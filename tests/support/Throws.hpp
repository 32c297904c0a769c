#pragma once

#include "support/Outcome.hpp"

#include <opc/core/Exception.hpp>

#include <gtest/gtest.h>

namespace opc::test {

/// Whether `action` throws exactly the class `E` (not a derived class) with exactly `message`.
template <typename E, typename Action>
testing::AssertionResult throws(const std::string& message, Action&& action) {
    const std::string outcome = outcomeOf(action);
    const std::string expected = boost::core::demangle(typeid(E).name()) + ": " + message;
    if (outcome == expected)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "raised " << outcome << "\nexpected: " << expected;
}

} // namespace opc::test

/// Expects that the expression throws exactly the class `E` with exactly `message`.
#define EXPECT_RAISES(E, message, ...)                                                                       \
    EXPECT_TRUE(::opc::test::throws<E>(message, [&] { static_cast<void>(__VA_ARGS__); }))

#pragma once

#include <opc/core/Exception.hpp>

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

namespace opc::test {

/// Whether `action` raises exactly the class `E` (no class derived from it) with exactly `message`.
template <typename E, typename Action>
testing::AssertionResult throws(const std::string& message, Action&& action) {
    try {
        action();
    } catch (const std::exception& caught) {
        if (typeid(caught) != typeid(E))
            return testing::AssertionFailure() << "raised " << typeid(caught).name() << ": " << caught.what();
        if (message != caught.what())
            return testing::AssertionFailure() << "message: " << caught.what() << "\nexpected: " << message;
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "raised nothing; expected: " << message;
}

} // namespace opc::test

/// Expects that the expression raises exactly the class `E` with exactly `message`.
#define EXPECT_RAISES(E, message, ...)                                                                       \
    EXPECT_TRUE(::opc::test::throws<E>(message, [&] { static_cast<void>(__VA_ARGS__); }))

#pragma once

namespace opctool {

enum class StandardStream { Input = 0, Output = 1, Errors = 2 };

bool isTerminal(StandardStream stream) noexcept;

/// Hides what is typed on the terminal. Does nothing without one.
void hideTyping() noexcept;

/// Makes the terminal show again what is typed, if that is hidden. Async-signal-safe, for the handler of a signal that ends
/// the process.
void showTyping() noexcept;

} // namespace opctool

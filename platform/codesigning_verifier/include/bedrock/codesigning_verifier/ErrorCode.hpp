#pragma once

namespace bedrock::codesigning_verifier {

/// The result of checking a signature as a number; 0 is success.
class ErrorCode {
public:
    int value() const noexcept { return code; }

protected:
    explicit ErrorCode(int code) noexcept : code(code) {}

private:
    int code;
};

inline bool operator==(const ErrorCode& left, const ErrorCode& right) noexcept {
    return left.value() == right.value();
}
inline bool operator!=(const ErrorCode& left, const ErrorCode& right) noexcept {
    return !(left == right);
}

/// The code `N`. Use it to make an `ErrorCode`, and to compare with one.
template <int N>
class ErrorMap : public ErrorCode {
public:
    ErrorMap() noexcept : ErrorCode(N) {}
};

} // namespace bedrock::codesigning_verifier

#pragma once

#include <string>

namespace opc::test {

/// Each rule needs a package that breaks it and one that is close and doesn't. When all tests of the program have run, a
/// rule for which none of them noted both is a failure.
void noteBroken(const std::string& rules);
void noteClose(const std::string& rules);

/// What a table expects of a package: the rules that it breaks, as in `error M1.6, info M3.2`, those that it is close to
/// breaking, as in `no M1.6`, or both: `error M1.6; no M3.2`. Notes them.
/// @return what the inspection has to tell: without those that it is only close to
std::string noted(const std::string& expected);

} // namespace opc::test

#include "Workload.hpp"

#include "support/Outcome.hpp"
#include "support/ScriptedPackage.hpp"

#include <opc/core/Text.hpp>
#include <opc/model/XercesGuard.hpp>

#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <stdexcept>

/// @file
/// Lets each call into the store fail once, in the whole life of a package.

namespace {

using opc::physical::MemoryPackage;
using namespace opc::model;
using opc::test::Workload;

using Steps = std::vector<Workload::Step>;

/// A failure of a store, and what it looks like if nothing translates it.
struct Failure {
    const char* name;
    void (*raise)();
    const char* untranslated;
};

void PrintTo(const Failure& failure, std::ostream* stream) {
    *stream << failure.name;
}

const Failure FAILURES[] = {
    {"exception", [] { throw opc::Exception("injected"); }, "opc::Exception: injected"},
    {"foreignException", [] { throw std::runtime_error("injected"); }, "std::runtime_error: injected"},
    {"noMemory", [] { throw std::bad_alloc(); }, "std::bad_alloc: std::bad_alloc"},
};

/// How an `opc::Exception` comes out, by step and call: the first row with words that both begin with. If there is no
/// such row, the exception passes unchanged.
struct Translation {
    const char* step;
    const char* call;
    const char* outcome;
};

const Translation TRANSLATIONS[] = {
    {"sign", "", "opc::model::CouldNotGenerateSignature: injected"},
    {"countersign", "", "opc::model::CouldNotGenerateSignature: injected"},
    {"load signatures", "", "opc::model::InvalidSignature: injected"},
    {"verify", "", "opc::model::InvalidSignature: Signature is invalid: 104"},
    {"remove", "", "opc::model::CouldNotRemoveSignature: injected"},
    {"", "createPart", "opc::model::PartCreateFailed: injected"},
    {"", "deletePart", "opc::model::PartDeleteFailed: injected"},
    {"open", "open ", "opc::model::PackageOpenFailed: injected"},
    {"open", "getParts", "opc::model::PackageOpenFailed: injected"},
    {"open", "getInputStream", "opc::Exception: injected"},
    {"save", "close ", "opc::model::PackageCloseFailed: injected"},
    {"save", "getOutputStream", "opc::Exception: injected"},
    {"", "getInputStream", "opc::model::InvalidPartStream: injected"},
    {"", "getOutputStream", "opc::model::InvalidPartStream: injected"},
};

bool beginsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

std::string expectedOutcome(const Failure& failure, const std::string& step, const std::string& call) {
    const std::string passing = failure.untranslated;
    if (beginsWith(passing, "opc::"))
        for (const Translation& row : TRANSLATIONS)
            if (beginsWith(step, row.step) && beginsWith(call, row.call))
                return row.outcome;
    return passing;
}

/// Everything that can be read in a closed package.
std::string readBack(Package& package, DigitalSignatureManager& signatures) {
    package.open(opc::interfaces::OpenMode::ReadOnly);
    std::string text = opc::test::describeWithContent(package);
    for (const DigitalSignature& signature : signatures.getSignatures())
        text += opc::toUDEString(signature.getName()) + '\n';
    package.close(false);
    return text;
}

/// The life of a package in which one call fails.
class FailingLife {
public:
    /// @param number  of the call, from 1
    FailingLife(const Failure& failure, std::size_t number) : failure(failure) {
        Workload::fill(store);
        physical.beforeEach = [this, number](const std::string& call) {
            if (++calls != number)
                return;
            failedCall = call;
            this->failure.raise();
        };
    }

    /// Continues until a step fails or all are done.
    void run() {
        outcome.clear();
        for (; step != Workload::steps().end(); ++step) {
            if (package.isOpen())
                described = opc::test::describe(package);
            else
                saved = opc::test::contentOf(store);
            outcome = opc::test::outcomeOf([this] { step->run(workload); });
            if (!outcome.empty())
                return;
        }
    }

    void expectDocumentedState() const {
        EXPECT_EQ(outcome, expectedOutcome(failure, step->name, failedCall));
        EXPECT_EQ(package.isOpen(), !beginsWith(step->name, "open"));
        if (package.isOpen() && step->repeatable) {
            EXPECT_EQ(opc::test::describe(package), described);
        }
    }

    void expectAbandoning() {
        package.close(true);
        EXPECT_EQ(opc::test::contentOf(store), saved);
        Package fresh(store);
        DigitalSignatureManager signatures(fresh);
        EXPECT_EQ(readBack(package, workload.signatures), readBack(fresh, signatures));
    }

    bool hasFailed() const { return !outcome.empty(); }

    MemoryPackage store;
    std::size_t calls = 0;
    std::string failedCall;
    Steps::const_iterator step = Workload::steps().begin();

private:
    const Failure& failure;
    opc::test::ScriptedPackage physical{store};
    Workload workload{physical};
    Package& package = workload.package;
    std::string outcome;
    std::string saved;
    std::string described;
};

class FailingCalls : public testing::TestWithParam<Failure> {};

TEST_P(FailingCalls, leaveDocumentedStatesAndTheStoreUntouched) {
    const XercesGuard guard; // starting Xerces for each life would take most of the time
    FailingLife undisturbed(GetParam(), 0);
    undisturbed.run();
    ASSERT_FALSE(undisturbed.hasFailed());
    const std::string expected = opc::test::contentOf(undisturbed.store);

    std::size_t raised = 0;
    for (std::size_t number = 1; number <= undisturbed.calls; ++number) {
        FailingLife life(GetParam(), number);
        life.run();
        SCOPED_TRACE("call " + std::to_string(number) + ", " + life.failedCall);
        if (!life.hasFailed()) {
            // A failure in rewinding a stream after a reader only concerns the next reader.
            EXPECT_TRUE(beginsWith(life.failedCall, "closeInput ") ||
                        beginsWith(life.failedCall, "openStream "));
            EXPECT_EQ(opc::test::contentOf(life.store), expected);
            continue;
        }
        ++raised;
        SCOPED_TRACE(life.step->name);
        life.expectDocumentedState();
        life.expectAbandoning();
        if (!life.step->repeatable)
            continue;
        FailingLife repeating(GetParam(), number);
        repeating.run();
        repeating.run();
        ASSERT_FALSE(repeating.hasFailed());
        EXPECT_EQ(opc::test::contentOf(repeating.store), expected);
    }
    RecordProperty("calls", static_cast<int>(undisturbed.calls));
    EXPECT_GT(raised, undisturbed.calls * 3 / 4);
}

INSTANTIATE_TEST_SUITE_P(All, FailingCalls, testing::ValuesIn(FAILURES),
                         [](const auto& instance) { return instance.param.name; });

} // namespace

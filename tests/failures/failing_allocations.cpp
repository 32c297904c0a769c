// Lets each memory allocation in the life of a package fail once, in a separate process, and checks the result.
//
//   failing_allocations [STRIDE]     every STRIDE-th allocation of each step; default: 1, all of them
//
// An allocation may end its step with an exception, or do no harm. The package must then be in a documented state,
// free all memory, and either save what it would have saved, or leave the store unchanged. Failures of Xerces after
// one of its own allocations failed are listed by function: if ENDS_THE_PROCESS names the function, the process may
// end there, and memory may be lost.

#include "Workload.hpp"

#include <opc/core/Text.hpp>

#include <boost/core/demangle.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <dlfcn.h>
#include <execinfo.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <sstream>

namespace {

/// Functions of Xerces 3.2.4 that end the process when they, or the functions that they call, get no memory: the
/// first one frees what it never allocated, the second one throws inside a destructor.
const char* const ENDS_THE_PROCESS[] = {
    "DFAContentModel::buildDFA",
    "ContentSpecNode::deleteChildNode",
};

/// What a process reports, in memory that it shares with its parent.
struct Report {
    struct Stack {
        void take() { depth = backtrace(frames, 100); }

        int depth;
        void* frames[100];
    };

    Stack failure; ///< where the allocation failed; empty if the step has fewer allocations
    Stack end;     ///< where the process ended early
    bool done;
    char outcome[200];
    char fault[400];
    long lost; ///< blocks
};

Report& report = *static_cast<Report*>(
    mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
long countdown = 0; // the allocation that makes it 0 fails
long blocks = 0;

void* allocate(std::size_t size) {
    if (countdown > 0 && --countdown == 0) {
        report.failure.take();
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (!block)
        throw std::bad_alloc();
    ++blocks;
    return block;
}

void release(void* block) {
    blocks -= block != nullptr;
    std::free(block);
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}

namespace {

using opc::physical::MemoryPackage;
using opc::test::Workload;

struct Life {
    Life() { Workload::fill(store); }

    MemoryPackage store;
    Workload workload{store};
};

template <std::size_t Size>
void put(char (&target)[Size], const std::string& text) {
    std::strncpy(target, text.c_str(), Size - 1);
}

template <typename Action>
std::string outcomeOf(const Action& action) {
    try {
        action();
    } catch (const std::logic_error& e) {
        put(report.fault, std::string("wrong result: ") + e.what());
    } catch (const std::exception& e) {
        return boost::core::demangle(typeid(e).name());
    }
    return {};
}

void require(bool holds, const char* fault) {
    if (!holds && report.fault[0] == 0)
        put(report.fault, fault);
}

/// The result of a life without failures.
std::string savedInTheEnd() {
    Life life;
    for (const Workload::Step& step : Workload::steps())
        step.run(life.workload);
    return opc::test::contentOf(life.store);
}

void finish(Life& life, std::size_t step, const std::string& expected) {
    for (; step < Workload::steps().size(); ++step)
        Workload::steps()[step].run(life.workload);
    require(opc::test::contentOf(life.store) == expected, "other bytes were saved");
}

void abandon(Life& life, const std::string& saved) {
    life.workload.package.close(true);
    require(opc::test::contentOf(life.store) == saved, "the store has changed");
    life.workload.package.open(opc::interfaces::OpenMode::ReadOnly);
    const std::string content = opc::test::describeWithContent(life.workload.package);
    opc::model::Package fresh(life.store);
    life.workload.package.close(false);
    fresh.open(opc::interfaces::OpenMode::ReadOnly);
    require(opc::test::describeWithContent(fresh) == content, "another package is read the second time");
}

/// One allocation of a step fails; all later ones succeed.
void tryAllocation(Life& life, std::size_t index, long number, const std::string& saved,
                   const std::string& expected) {
    const Workload::Step& step = Workload::steps()[index];
    opc::model::Package& package = life.workload.package;
    const std::string described = package.isOpen() ? opc::test::describe(package) : "";
    countdown = number;
    const std::string outcome = outcomeOf([&] { step.run(life.workload); });
    countdown = 0;
    put(report.outcome, outcome.empty() ? "nothing" : outcome);
    const std::string after = outcomeOf([&] {
        if (outcome.empty()) {
            finish(life, index + 1, expected);
            return;
        }
        require(package.isOpen() == (std::strncmp(step.name, "open", 4) != 0), "open or not");
        if (package.isOpen() && step.repeatable)
            require(opc::test::describe(package) == described, "the package has changed");
        if (step.repeatable && number % 2 == 0)
            finish(life, index, expected);
        else
            abandon(life, saved);
    });
    require(after.empty(), ("afterwards: " + after).c_str());
}

std::string nameOf(void* address) {
    Dl_info place{};
    if (dladdr(address, &place) == 0)
        return "?";
    if (place.dli_sname)
        return boost::core::demangle(place.dli_sname);
    std::ostringstream text;
    text << place.dli_fname << '+' << static_cast<char*>(address) - static_cast<char*>(place.dli_fbase);
    return text.str();
}

/// The functions of Xerces on a stack, innermost first, without those that only pass memory through.
std::vector<std::string> functionsOfXerces(const Report::Stack& stack) {
    std::vector<std::string> functions;
    for (int i = 0; i < stack.depth; ++i) {
        const std::string name = nameOf(stack.frames[i]);
        if (name.compare(0, 7, "xercesc") == 0 && name.find("::operator new") == std::string::npos &&
            name.find("MemoryManagerImpl::allocate") == std::string::npos)
            functions.push_back(name.substr(name.find("::") + 2, name.find('(') - name.find("::") - 2));
    }
    return functions;
}

/// The listed function through which Xerces ended the process; empty if it wasn't one of them.
std::string findEnd() {
    for (const Report::Stack* stack : {&report.end, &report.failure})
        for (const std::string& function : functionsOfXerces(*stack))
            if (std::find(std::begin(ENDS_THE_PROCESS), std::end(ENDS_THE_PROCESS), function) !=
                std::end(ENDS_THE_PROCESS))
                return function;
    return {};
}

void printStack(const Report::Stack& stack) {
    for (int i = 0; i < std::min(stack.depth, 30); ++i)
        std::cout << "      " << nameOf(stack.frames[i]) << '\n';
}

/// Records where a process ends.
void reportEnd(int signal) {
    report.end.take();
    _exit(signal);
}

void watchForTheEnd() {
    static char memory[1 << 16]; // a stack that overflowed has no room for the handler
    stack_t stack{};
    stack.ss_sp = memory;
    stack.ss_size = sizeof memory;
    sigaltstack(&stack, nullptr);
    struct sigaction action {};
    action.sa_handler = reportEnd;
    action.sa_flags = SA_ONSTACK;
    for (const int signal : {SIGABRT, SIGSEGV, SIGALRM})
        sigaction(signal, &action, nullptr);
}

/// Counts the results of all allocations.
class Tally {
public:
    /// @param status  the status of the process
    void add(const char* step, long number, int status, long lostWithoutFailure) {
        ++total;
        std::string fault = report.fault;
        if (!report.done) {
            const std::string function = findEnd();
            ++ended[function.empty() ? "another" : function];
            if (function.empty())
                fault += WIFSIGNALED(status) ? " signal " + std::to_string(WTERMSIG(status))
                                             : " exit " + std::to_string(WEXITSTATUS(status));
        } else {
            ++outcomes[report.outcome];
            const std::vector<std::string> functions = functionsOfXerces(report.failure);
            const long lost = report.lost - lostWithoutFailure;
            if (lost != 0 && !functions.empty())
                ++lossy[functions.front()];
            else if (lost != 0)
                fault += " blocks lost: " + std::to_string(lost);
        }
        if (fault.empty())
            return;
        ++faults;
        std::cout << "FAULT " << step << ", allocation " << number << ", outcome " << report.outcome << ": "
                  << fault << '\n';
        printStack(report.failure);
        printStack(report.end);
    }

    /// @return whether there was no fault
    bool print() const {
        std::cout << total << " allocations failed, " << faults << " faults\nThe step ended with\n";
        printCounts(outcomes);
        std::cout << "Xerces ended the process in\n";
        printCounts(ended);
        std::cout << "Xerces lost memory in\n";
        printCounts(lossy);
        return faults == 0;
    }

private:
    using Counts = std::map<std::string, long>;

    static void printCounts(const Counts& counts) {
        for (const auto& [name, count] : counts)
            std::cout << "  " << count << ' ' << name << '\n';
    }

    long total = 0;
    long faults = 0;
    Counts outcomes;
    Counts ended;
    Counts lossy;
};

} // namespace

int main(int count, char** arguments) {
    xercesc::XMLPlatformUtils::
        Initialize(); // so that no parser is kept for later documents: it would be counted
    const long stride = count > 1 ? std::max(1L, std::atol(arguments[1])) : 1;
    const std::string expected = savedInTheEnd(); // also makes everything that is made only once
    report.end.take();                            // and this too
    Tally tally;
    auto life = std::make_unique<Life>();
    std::string saved;
    for (std::size_t step = 0; step < Workload::steps().size(); ++step) {
        if (!life->workload.package.isOpen())
            saved = opc::test::contentOf(life->store);
        long lostWithoutFailure = 0;
        for (long number = 0;; number += number == 0 ? 1 : stride) {
            report = Report{};
            std::cout.flush();
            const pid_t child = fork();
            if (child == 0) {
                watchForTheEnd();
                alarm(60);
                close(STDERR_FILENO);
                const long before = blocks;
                tryAllocation(*life, step, number, saved, expected);
                life.reset();
                report.lost = blocks - before;
                report.done = true;
                _exit(0);
            }
            int status = 0;
            waitpid(child, &status, 0);
            if (number == 0)
                lostWithoutFailure = report.lost;
            else if (report.failure.depth == 0)
                break;
            else
                tally.add(Workload::steps()[step].name, number, status, lostWithoutFailure);
        }
        Workload::steps()[step].run(life->workload);
    }
    return tally.print() ? 0 : 1;
}

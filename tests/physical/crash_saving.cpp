// Kills itself while it saves over an existing package, again and again. Each time the file must be completely the
// old one or completely the new one, and the next save must leave nothing else in the folder. It alternates SIGKILL
// with a SIGTERM whose handler removes the temporary file: then nothing else may be left at once.
//
//   crash_saving [TIMES]     default: 100
//
// The moments come from a fixed seed, and are spread over the time that a save takes on this machine.

#include "PhysicalSupport.hpp"

#include <opc/physical/UnfinishedFiles.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <random>
#include <thread>

namespace {

using namespace opc::test;
using Bytes = std::vector<unsigned char>;
using Clock = std::chrono::steady_clock;

const std::size_t PART_SIZE = 300000;

ZipOptions fixedTimes() {
    ZipOptions options;
    options.deterministic = true;
    return options;
}

void createOld(const std::filesystem::path& path) {
    ZipPackage package(path, fixedTimes());
    package.open(OpenMode::CreateOnly);
    for (const char16_t* name : {u"/a", u"/b", u"/c"})
        create(package, name, noise(PART_SIZE), PartInfo(opc::interfaces::CompressionType::None));
    package.close(false);
}

void save(const std::filesystem::path& path) {
    ZipPackage package(path, fixedTimes());
    package.open(OpenMode::ReadWrite);
    create(package, u"/b", std::string(PART_SIZE, 'b'));
    create(package, u"/d", std::string(PART_SIZE, 'd'));
    package.close(false);
}

void endBySignal(int signal) {
    opc::physical::removeUnfinishedFiles();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Saves in a separate process.
/// @param lifetime  the time after which it is killed
/// @return whether it was killed before it had finished
bool saveAndDie(const std::filesystem::path& path, std::chrono::nanoseconds lifetime, int signal) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGTERM, endBySignal);
        std::thread([lifetime, signal, saver = ::pthread_self()] {
            std::this_thread::sleep_for(lifetime);
            if (signal == SIGTERM)
                ::pthread_kill(saver, signal);
            else
                ::kill(::getpid(), signal);
        }).detach();
        save(path);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status);
}

int crash(int times) {
    const TemporaryFolder folder;
    const auto path = folder / "package.zip";
    createOld(path);
    const Bytes oldBytes = readFile(path);
    const auto start = Clock::now();
    save(path);
    const std::chrono::nanoseconds duration = Clock::now() - start;
    const Bytes newBytes = readFile(path);

    std::mt19937_64 random(2024);
    std::uniform_int_distribution<std::int64_t> instant(0, duration.count() * 5 / 4);
    int killed = 0;
    int foundNew = 0;
    int foundTemporary = 0;
    for (int i = 0; i < times; ++i) {
        writeFile(path, oldBytes);
        const int signal = i % 2 == 0 ? SIGKILL : SIGTERM;
        killed += saveAndDie(path, std::chrono::nanoseconds(instant(random)), signal) ? 1 : 0;
        if (signal == SIGTERM && folder.count() > 1) {
            std::cerr << "crash " << i << " has left its temporary file\n";
            return 1;
        }
        const Bytes found = readFile(path);
        if (found != oldBytes && found != newBytes) {
            std::cerr << "crash " << i << " has left a file that is neither the old nor the new one\n";
            return 1;
        }
        foundNew += found == newBytes ? 1 : 0;
        foundTemporary += folder.count() > 1 ? 1 : 0;
        writeFile(path, oldBytes);
        save(path);
        if (readFile(path) != newBytes || folder.count() != 1) {
            std::cerr << "the save after crash " << i << " has failed, or left something behind\n";
            return 1;
        }
    }
    std::cout << times << " saves, " << killed << " killed in the middle; " << foundNew
              << " times the new file stood there, " << foundTemporary
              << " times a temporary one beside it\n";
    return killed > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    return crash(argc > 1 ? std::atoi(argv[1]) : 100);
}

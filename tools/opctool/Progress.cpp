#include "Progress.hpp"

#include <opc/interfaces/IKeptRelationships.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <iostream>

#include <unistd.h>

namespace opctool {

namespace {

using opc::interfaces::IPhysicalInputStream;
using opc::interfaces::IPhysicalOutputStream;
using opc::interfaces::IPhysicalPackage;
using opc::interfaces::IPhysicalPart;

constexpr std::chrono::milliseconds DELAY(1000);
constexpr std::chrono::milliseconds INTERVAL(200);

class WatchedStream : public IPhysicalInputStream {
public:
    WatchedStream(IPhysicalInputStream& stream, Progress& progress) : stream(stream), progress(progress) {}

    void open() override { stream.open(); }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const std::uint64_t done = stream.read(buffer, count);
        progress.add(done);
        return done;
    }
    bool isDone() const override { return stream.isDone(); }
    void close() override { stream.close(); }

private:
    IPhysicalInputStream& stream;
    Progress& progress;
};

} // namespace

Progress::Progress(bool countsFiles)
    : isTerminal(isatty(STDERR_FILENO) == 1), countsFiles(countsFiles), nextUpdate(Clock::now() + DELAY) {
}

Progress::~Progress() {
    erase();
}

void Progress::hide() {
    pause([] {});
}

void Progress::pause(const std::function<void()>& print) {
    const std::lock_guard<std::mutex> lock(mutex);
    erase();
    print();
}

void Progress::add(std::uint64_t count) {
    bytes += count;
    if (isTerminal)
        show();
}

void Progress::addFile() {
    ++files;
    if (isTerminal)
        show();
}

void Progress::show() {
    const std::lock_guard<std::mutex> lock(mutex);
    if (Clock::now() < nextUpdate)
        return;
    constexpr std::uint64_t MEBIBYTE = std::uint64_t{1024} * 1024;
    std::cerr << '\r';
    if (countsFiles)
        std::cerr << files << " files, ";
    std::cerr << bytes / MEBIBYTE << " MiB read" << std::flush;
    isShown = true;
    nextUpdate = Clock::now() + INTERVAL;
}

void Progress::erase() {
    if (isShown)
        std::cerr << "\r\033[K" << std::flush;
    isShown = false;
}

class WatchedPackage::WatchedPart : public IPhysicalPart {
public:
    WatchedPart(IPhysicalPart& part, Progress& progress) : part(part), progress(progress) {}

    std::u16string getName() const override { return part.getName(); }
    std::u16string getContentType() const override { return part.getContentType(); }
    IPhysicalInputStream* getInputStream() override {
        streams.push_back(std::make_unique<WatchedStream>(*part.getInputStream(), progress));
        return streams.back().get();
    }
    IPhysicalOutputStream* getOutputStream() override { return part.getOutputStream(); }

private:
    IPhysicalPart& part;
    Progress& progress;
    std::vector<std::unique_ptr<WatchedStream>> streams;
};

WatchedPackage::WatchedPackage(IPhysicalPackage& package, Progress& progress)
    : package(package), progress(progress) {
}

WatchedPackage::~WatchedPackage() = default;

std::vector<IPhysicalPart*> WatchedPackage::getParts() {
    std::vector<IPhysicalPart*> watched = package.getParts();
    for (IPhysicalPart*& part : watched)
        part = watch(part);
    return watched;
}

IPhysicalPart* WatchedPackage::createPart(const std::u16string& name, const std::u16string& contentType,
                                          const opc::interfaces::IPhysicalPartInfo& info) {
    return watch(package.createPart(name, contentType, info));
}

IPhysicalPart* WatchedPackage::watch(IPhysicalPart* part) {
    // A part with a further interface isn't wrapped, so that it keeps that interface.
    if (part == nullptr || dynamic_cast<opc::interfaces::IKeptRelationships*>(part) != nullptr)
        return part;
    parts.push_back(std::make_unique<WatchedPart>(*part, progress));
    return parts.back().get();
}

} // namespace opctool

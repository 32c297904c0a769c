#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace opctool {

/// Tells on a terminal's standard error how much has been read, once that takes a while. Writes nothing if standard
/// error is no terminal. Several threads may use it at the same time.
class Progress {
public:
    /// @param countsFiles  whether it tells the number of files, too
    explicit Progress(bool countsFiles = false);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void add(std::uint64_t bytes);
    void addFile();

    /// Removes the line, as the destructor does.
    void hide();

    /// Takes the line away and calls `print`, while nobody brings the line back.
    void pause(const std::function<void()>& print);

private:
    using Clock = std::chrono::steady_clock;

    void show();
    void erase();

    const bool isTerminal;
    const bool countsFiles;
    std::atomic<std::uint64_t> bytes{0};
    std::atomic<std::uint64_t> files{0};
    std::mutex mutex;
    bool isShown = false;
    Clock::time_point nextUpdate;
};

/// A package that wraps another one, which it doesn't own, and reports how much of the parts is read.
class WatchedPackage : public opc::interfaces::IPhysicalPackage {
public:
    WatchedPackage(opc::interfaces::IPhysicalPackage& package, Progress& progress);
    ~WatchedPackage() override;

    bool usesContentTypeStream() override { return package.usesContentTypeStream(); }
    opc::interfaces::IPhysicalInputStream* getContentTypeInputStream() override {
        return package.getContentTypeInputStream();
    }
    opc::interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override {
        return package.getContentTypeOutputStream();
    }
    std::vector<opc::interfaces::IPhysicalPart*> getParts() override;
    void open(const opc::interfaces::OpenMode& mode) override { package.open(mode); }
    void close(bool abandon) override {
        progress.hide(); // so that others can print
        package.close(abandon);
    }
    opc::interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                               const opc::interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override { package.deletePart(name); }
    std::vector<opc::interfaces::IgnoredItem> getIgnoredItems() override { return package.getIgnoredItems(); }
    std::vector<opc::interfaces::Oddity> getOddities() override { return package.getOddities(); }

private:
    class WatchedPart;

    opc::interfaces::IPhysicalPart* watch(opc::interfaces::IPhysicalPart* part);

    opc::interfaces::IPhysicalPackage& package;
    Progress& progress;
    std::vector<std::unique_ptr<WatchedPart>> parts; ///< deleted ones stay, unused
};

} // namespace opctool

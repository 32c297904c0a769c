#pragma once

#include <opc/interfaces/IPhysicalPackage.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace opctool {

/// Tells on a terminal's standard error how much has been read, once that takes a while. Writes nothing if standard error is no terminal.
class Progress {
public:
    Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void add(std::uint64_t bytes);

    /// Removes the line, as the destructor does.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    bool isTerminal;
    bool isShown = false;
    std::uint64_t total = 0;
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

#pragma once

#include <opc/core/Exception.hpp>
#include <opc/interfaces/IPhysicalInputStream.hpp>
#include <opc/interfaces/IPhysicalOutputStream.hpp>
#include <opc/interfaces/IPhysicalPackage.hpp>
#include <opc/interfaces/IPhysicalPart.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace opc::test {

/// A physical package that forwards to another one, records every call as a text ("createPart /a.xml a/b", "close
/// true", "getInputStream /a.xml", "closeStream /a.xml" …), and can do something before a call, such as to fail. The
/// content types stream has the name "types".
class ScriptedPackage : public interfaces::IPhysicalPackage {
public:
    explicit ScriptedPackage(interfaces::IPhysicalPackage& inner) : inner(inner) {}

    /// Runs `action` before each call with that text, or with its first word.
    void before(const std::string& call, std::function<void()> action) { actions[call] = std::move(action); }
    void failAt(const std::string& call, const std::string& message,
                boost::system::errc::errc_t code = boost::system::errc::io_error);
    void forgetScript() { actions.clear(); }

    /// The call that returns null: "getInputStream /a.xml", "createPart", "getParts" (for each part) …
    std::string nullAt;

    /// How many bytes each write leaves out.
    std::uint64_t unwritten = 0;

    /// Runs before every call to the package, its parts and its streams, including calls that aren't recorded ("read
    /// /a.xml", "isDone /a.xml", "getName /a.xml" …).
    std::function<void(const std::string&)> beforeEach;

    /// All calls so far.
    std::vector<std::string> calls;

    /// How many of them begin with `start`.
    std::size_t countCalls(const std::string& start) const;

    bool usesContentTypeStream() override;
    interfaces::IPhysicalInputStream* getContentTypeInputStream() override;
    interfaces::IPhysicalOutputStream* getContentTypeOutputStream() override;
    std::vector<interfaces::IPhysicalPart*> getParts() override;
    void open(const interfaces::OpenMode& mode) override;
    void close(bool abandon) override;
    interfaces::IPhysicalPart* createPart(const std::u16string& name, const std::u16string& contentType,
                                          const interfaces::IPhysicalPartInfo& info) override;
    void deletePart(const std::u16string& name) override;

private:
    template <typename Interface>
    class Scripted;
    class ScriptedPart;
    class ScriptedInputStream;
    class ScriptedOutputStream;

    void announce(const std::string& call) const;
    void record(const std::string& call);
    template <typename Given>
    Given* unlessNull(const std::string& call, Given* given) const {
        return call == nullAt ? nullptr : given;
    }
    interfaces::IPhysicalPart* wrap(interfaces::IPhysicalPart* part);
    interfaces::IPhysicalInputStream* wrap(interfaces::IPhysicalInputStream* stream, const std::string& name);
    interfaces::IPhysicalOutputStream* wrap(interfaces::IPhysicalOutputStream* stream,
                                            const std::string& name);

    interfaces::IPhysicalPackage& inner;
    std::map<std::string, std::function<void()>> actions;
    std::map<interfaces::IPhysicalPart*, std::unique_ptr<interfaces::IPhysicalPart>> wrapped;
    std::vector<std::unique_ptr<interfaces::IPhysicalInputStream>> inputs;
    std::vector<std::unique_ptr<interfaces::IPhysicalOutputStream>> outputs;
};

} // namespace opc::test

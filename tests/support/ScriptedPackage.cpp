#include "support/ScriptedPackage.hpp"

#include <opc/core/Text.hpp>

#include <algorithm>

namespace opc::test {

/// A part or a stream. It reports its calls under the part's name and forwards them.
template <typename Interface>
class ScriptedPackage::Scripted : public Interface {
public:
    Scripted(ScriptedPackage& owner, Interface& inner, std::string name)
        : owner(owner), inner(inner), name(std::move(name)) {}

protected:
    ScriptedPackage& owner;
    Interface& inner;
    std::string name;
};

class ScriptedPackage::ScriptedInputStream : public Scripted<interfaces::IPhysicalInputStream> {
public:
    using Scripted::Scripted;

    void open() override {
        owner.announce("openStream " + name);
        inner.open();
    }
    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        owner.announce("read " + name);
        return inner.read(buffer, count);
    }
    bool isDone() const override {
        owner.announce("isDone " + name);
        return inner.isDone();
    }
    void close() override {
        owner.announce("closeInput " + name);
        inner.close();
    }
};

class ScriptedPackage::ScriptedOutputStream : public Scripted<interfaces::IPhysicalOutputStream> {
public:
    using Scripted::Scripted;

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        owner.record("write " + name);
        return inner.write(buffer, count - std::min(count, owner.unwritten));
    }
    bool isDone() const override {
        owner.announce("isDone " + name);
        return inner.isDone();
    }
    void flush() override {
        owner.announce("flush " + name);
        inner.flush();
    }
    void close() override {
        owner.record("closeStream " + name);
        inner.close();
    }
};

class ScriptedPackage::ScriptedPart : public Scripted<interfaces::IPhysicalPart> {
public:
    using Scripted::Scripted;

    std::u16string getName() const override {
        owner.announce("getName " + name);
        return inner.getName();
    }
    std::u16string getContentType() const override {
        owner.announce("getContentType " + name);
        return inner.getContentType();
    }
    interfaces::IPhysicalInputStream* getInputStream() override {
        owner.record("getInputStream " + name);
        return owner.unlessNull("getInputStream " + name, owner.wrap(inner.getInputStream(), name));
    }
    interfaces::IPhysicalOutputStream* getOutputStream() override {
        owner.record("getOutputStream " + name);
        return owner.unlessNull("getOutputStream " + name, owner.wrap(inner.getOutputStream(), name));
    }
};

void ScriptedPackage::failAt(const std::string& call, const std::string& message,
                             boost::system::errc::errc_t code) {
    before(call, [=] { throw Exception(message, boost::system::errc::make_error_code(code)); });
}

std::size_t ScriptedPackage::countCalls(const std::string& start) const {
    return static_cast<std::size_t>(
        std::count_if(calls.begin(), calls.end(), [&start](const std::string& call) {
            return call.compare(0, start.size(), start) == 0;
        }));
}

void ScriptedPackage::announce(const std::string& call) const {
    if (beforeEach)
        beforeEach(call);
}

void ScriptedPackage::record(const std::string& call) {
    announce(call);
    calls.push_back(call);
    for (const std::string& key : {call, call.substr(0, call.find(' '))}) {
        const auto action = actions.find(key);
        if (action != actions.end()) {
            action->second();
            return;
        }
    }
}

interfaces::IPhysicalPart* ScriptedPackage::wrap(interfaces::IPhysicalPart* part) {
    auto& wrapper = wrapped[part];
    if (!wrapper)
        wrapper = std::make_unique<ScriptedPart>(*this, *part, toUDEString(part->getName()));
    return wrapper.get();
}

interfaces::IPhysicalInputStream* ScriptedPackage::wrap(interfaces::IPhysicalInputStream* stream,
                                                        const std::string& name) {
    inputs.push_back(std::make_unique<ScriptedInputStream>(*this, *stream, name));
    return inputs.back().get();
}

interfaces::IPhysicalOutputStream* ScriptedPackage::wrap(interfaces::IPhysicalOutputStream* stream,
                                                         const std::string& name) {
    outputs.push_back(std::make_unique<ScriptedOutputStream>(*this, *stream, name));
    return outputs.back().get();
}

bool ScriptedPackage::usesContentTypeStream() {
    announce("usesContentTypeStream");
    return inner.usesContentTypeStream();
}

interfaces::IPhysicalInputStream* ScriptedPackage::getContentTypeInputStream() {
    record("getContentTypeInputStream");
    return unlessNull("getContentTypeInputStream", wrap(inner.getContentTypeInputStream(), "types"));
}

interfaces::IPhysicalOutputStream* ScriptedPackage::getContentTypeOutputStream() {
    record("getContentTypeOutputStream");
    return unlessNull("getContentTypeOutputStream", wrap(inner.getContentTypeOutputStream(), "types"));
}

std::vector<interfaces::IPhysicalPart*> ScriptedPackage::getParts() {
    record("getParts");
    auto parts = inner.getParts();
    std::transform(parts.begin(), parts.end(), parts.begin(),
                   [this](auto* part) { return unlessNull("getParts", wrap(part)); });
    return parts;
}

void ScriptedPackage::open(const interfaces::OpenMode& mode) {
    record("open " + std::to_string(static_cast<unsigned>(mode)));
    wrapped.clear();
    inner.open(mode);
}

void ScriptedPackage::close(bool abandon) {
    record(abandon ? "close true" : "close false");
    inner.close(abandon);
}

interfaces::IPhysicalPart* ScriptedPackage::createPart(const std::u16string& name,
                                                       const std::u16string& contentType,
                                                       const interfaces::IPhysicalPartInfo& info) {
    record("createPart " + toUDEString(name) + " " + toUDEString(contentType));
    return unlessNull("createPart", wrap(inner.createPart(name, contentType, info)));
}

void ScriptedPackage::deletePart(const std::u16string& name) {
    record("deletePart " + toUDEString(name));
    inner.deletePart(name);
}

} // namespace opc::test

#include "MemoryPart.hpp"

#include <algorithm>
#include <cerrno>

namespace opc::physical::memory {

namespace {

class MemoryInputStream : public interfaces::IPhysicalInputStream {
public:
    explicit MemoryInputStream(const MemoryContent& content) : content(content), bytes(content.get()) {}

    void open() override {
        bytes = content.get();
        position = 0;
    }

    std::uint64_t read(unsigned char* buffer, std::uint64_t count) override {
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, bytes->size() - position));
        std::copy_n(bytes->data() + position, taken, buffer);
        position += taken;
        return taken;
    }

    bool isDone() const override { return position == bytes->size(); }
    void close() override {}

private:
    const MemoryContent& content;
    SharedBytes bytes;
    std::size_t position = 0;
};

class MemoryOutputStream : public interfaces::IPhysicalOutputStream {
public:
    MemoryOutputStream(const MemoryContent& content, const std::u16string& owner)
        : content(content), bytes(content.get()), owner(owner) {}

    std::uint64_t write(const unsigned char* buffer, std::uint64_t count) override {
        if (closed)
            raise("the output stream has been closed", owner, EBADF);
        if (bytes != content.get())
            raise("the content has been replaced since this output stream was made", owner, EBADF);
        bytes->insert(bytes->end(), buffer, buffer + count);
        return count;
    }

    bool isDone() const override { return false; }
    void flush() override {}
    void close() override { closed = true; }

private:
    const MemoryContent& content;
    SharedBytes bytes;
    const std::u16string owner;
    bool closed = false;
};

} // namespace

interfaces::IPhysicalInputStream* MemoryContent::read() {
    return inputs.emplace_back(std::make_unique<MemoryInputStream>(*this)).get();
}

interfaces::IPhysicalOutputStream* MemoryContent::write(const std::u16string& name) {
    if (readOnly)
        raise("opened to read", name, EACCES);
    bytes = std::make_shared<std::vector<unsigned char>>();
    return outputs.emplace_back(std::make_unique<MemoryOutputStream>(*this, name)).get();
}

} // namespace opc::physical::memory

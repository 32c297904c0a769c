#include "ArchiveSource.hpp"

#include <cerrno>
#include <new>

namespace opc::physical::zip {

namespace {

/// What one source of libzip stands on. The answers are what libzip expects of each command: -1 after an
/// error, which it then asks for.
class Callback {
public:
    Callback(std::shared_ptr<ByteSource> bytes, ByteTarget* archive) : input(std::move(bytes)) {
        zip_error_init(&error);
        if (archive)
            target = std::make_unique<BufferedTarget>(*archive);
    }
    Callback(const Callback&) = delete;
    Callback& operator=(const Callback&) = delete;
    ~Callback() { zip_error_fini(&error); }

    static zip_int64_t call(void* self, void* data, zip_uint64_t length, zip_source_cmd_t command) {
        if (command == ZIP_SOURCE_FREE) {
            delete static_cast<Callback*>(self);
            return 0;
        }
        return static_cast<Callback*>(self)->answer(data, length, command);
    }

private:
    zip_int64_t answer(void* data, zip_uint64_t length, zip_source_cmd_t command);
    zip_int64_t answerWriting(void* data, zip_uint64_t length, zip_source_cmd_t command);
    zip_int64_t supported() const;
    zip_int64_t stat(void* data, zip_uint64_t length);
    zip_int64_t read(void* data, zip_uint64_t length);
    zip_int64_t seek(std::uint64_t& place, std::uint64_t end, void* data, zip_uint64_t length);

    zip_int64_t failed(int what, int code) {
        zip_error_set(&error, what, code);
        return -1;
    }

    std::shared_ptr<ByteSource> input;
    std::uint64_t position = 0;
    std::unique_ptr<BufferedTarget> target;
    zip_error_t error{};
};

zip_int64_t Callback::answer(void* data, zip_uint64_t length, zip_source_cmd_t command) {
    switch (command) {
    case ZIP_SOURCE_OPEN:
        position = 0;
        return 0;
    case ZIP_SOURCE_READ:
        return read(data, length);
    case ZIP_SOURCE_SEEK:
        return seek(position, input->size(), data, length);
    case ZIP_SOURCE_TELL:
        return static_cast<zip_int64_t>(position);
    case ZIP_SOURCE_CLOSE:
        return 0;
    case ZIP_SOURCE_STAT:
        return stat(data, length);
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&error, data, length);
    case ZIP_SOURCE_SUPPORTS:
        return supported();
    default:
        return answerWriting(data, length, command);
    }
}

zip_int64_t Callback::answerWriting(void* data, zip_uint64_t length, zip_source_cmd_t command) {
    if (!target)
        return failed(ZIP_ER_OPNOTSUPP, 0);
    switch (command) {
    case ZIP_SOURCE_BEGIN_WRITE:
    case ZIP_SOURCE_ROLLBACK_WRITE: // the owner of the target throws it away
        return 0;
    case ZIP_SOURCE_WRITE:
        if (const int code = target->write(static_cast<const unsigned char*>(data), length))
            return failed(ZIP_ER_WRITE, code);
        return static_cast<zip_int64_t>(length);
    case ZIP_SOURCE_SEEK_WRITE: {
        std::uint64_t place = target->tell();
        const zip_int64_t result = seek(place, target->size(), data, length);
        target->seek(place);
        return result;
    }
    case ZIP_SOURCE_TELL_WRITE:
        return static_cast<zip_int64_t>(target->tell());
    case ZIP_SOURCE_COMMIT_WRITE:
        if (const int code = target->flush())
            return failed(ZIP_ER_WRITE, code);
        return 0;
    default:
        return failed(ZIP_ER_OPNOTSUPP, 0);
    }
}

zip_int64_t Callback::supported() const {
    zip_int64_t commands = ZIP_SOURCE_SUPPORTS_SEEKABLE;
    if (target)
        commands |= ZIP_SOURCE_SUPPORTS_WRITABLE;
    return commands;
}

zip_int64_t Callback::stat(void* data, zip_uint64_t length) {
    auto* status = ZIP_SOURCE_GET_ARGS(zip_stat_t, data, length, &error);
    if (!status)
        return -1;
    zip_stat_init(status);
    if (!input)
        return failed(ZIP_ER_READ, ENOENT);
    status->size = input->size();
    status->valid = ZIP_STAT_SIZE;
    return sizeof(zip_stat_t);
}

zip_int64_t Callback::read(void* data, zip_uint64_t length) {
    std::size_t got = 0;
    if (const int code = input->readAt(position, static_cast<unsigned char*>(data), length, got))
        return failed(ZIP_ER_READ, code);
    position += got;
    return static_cast<zip_int64_t>(got);
}

zip_int64_t Callback::seek(std::uint64_t& place, std::uint64_t end, void* data, zip_uint64_t length) {
    const zip_int64_t offset = zip_source_seek_compute_offset(place, end, data, length, &error);
    if (offset < 0)
        return -1;
    place = static_cast<std::uint64_t>(offset);
    return 0;
}

} // namespace

SourcePtr makeSource(std::shared_ptr<ByteSource> bytes, ByteTarget* target) {
    auto callback = std::make_unique<Callback>(std::move(bytes), target);
    SourcePtr source(zip_source_function_create(Callback::call, callback.get(), nullptr));
    if (!source)
        throw std::bad_alloc();
    callback.release();
    return source;
}

} // namespace opc::physical::zip

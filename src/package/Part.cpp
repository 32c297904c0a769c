#include "package/PartImpl.hpp"

#include <opc/interfaces/IPhysicalPartSize.hpp>
#include <opc/model/Errors.hpp>
#include <opc/model/Package.hpp>

#include <utility>

namespace opc::model {

void Part::Impl::forgetPhysicalPart() {
    if (inputStream)
        inputStream->disconnect();
    if (outputStream)
        outputStream->disconnect();
    physicalPart = nullptr;
}

template <typename Ask>
auto Part::Impl::askContent(Ask ask) const {
    try {
        if (physicalPart == nullptr)
            throw Exception("The part's content has been deleted");
        return ask(*physicalPart);
    } catch (const Exception& e) {
        throw translated<InvalidPartStream>(e, e.what());
    }
}

template <typename Adapter, typename GetStream>
Adapter& Part::Impl::connect(std::unique_ptr<Adapter>& adapter, GetStream getStream) const {
    return *askContent([&](interfaces::IPhysicalPart& content) {
        if (!adapter)
            adapter = std::make_unique<Adapter>(getStream(content));
        return adapter.get();
    });
}

Part::Part(std::shared_ptr<Impl> impl) : RelationshipSource(std::move(impl)) {
}

Part::Part(const Part&) = default;
Part& Part::operator=(const Part&) = default;
Part::~Part() = default;

Part::Impl& Part::state() const noexcept {
    return static_cast<Impl&>(getState());
}

PartName Part::getName() const {
    return state().name;
}

ContentType Part::getContentType() const {
    return state().contentType;
}

InputStream& Part::getInputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    return state().connect(state().inputStream, [](auto& content) { return content.getInputStream(); });
}

OutputStream& Part::getOutputStream() const {
    throwIfInvalid();
    throwIfNotOpen();
    throwIfReadOnly();
    return state().connect(state().outputStream, [](auto& content) { return content.getOutputStream(); });
}

OutputStream& Part::restartOutputStream() const {
    if (state().outputStream == nullptr)
        return getOutputStream();
    throwIfInvalid();
    throwIfNotOpen();
    return *state().askContent([this](interfaces::IPhysicalPart& content) {
        state().outputStream->connect(content.getOutputStream());
        return state().outputStream.get();
    });
}

std::optional<std::uint64_t> Part::getSize() const {
    throwIfInvalid();
    throwIfNotOpen();
    return state().askContent([](const interfaces::IPhysicalPart& content) {
        const auto* sized = dynamic_cast<const interfaces::IPhysicalPartSize*>(&content);
        return sized ? std::optional(sized->getSize()) : std::nullopt;
    });
}

bool Part::isValid() const {
    return state().valid;
}

// A part of a closed package is invalid: its handles report that first.
bool Part::isOpen() const {
    return true;
}

bool Part::isReadOnly() const {
    return state().openMode == interfaces::OpenMode::ReadOnly;
}

bool Part::isCreateOnly() const {
    return state().openMode == interfaces::OpenMode::CreateOnly;
}

Package& Part::getPackage() const {
    return *state().package;
}

} // namespace opc::model

#pragma once

#include <opc/model/XmlEvents.hpp>

#include <vector>

namespace opc::inspection {

/// Passes the events of one document on to several readers.
class EventFork final : public model::XmlEvents {
public:
    /// @param reader  outlives this object
    void add(model::XmlEvents& reader) { readers.push_back(&reader); }

    void onDeclaration(std::u16string_view encoding) override {
        for (model::XmlEvents* reader : readers)
            reader->onDeclaration(encoding);
    }
    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override {
        for (model::XmlEvents* reader : readers)
            reader->onStart(element, behind);
    }
    void onEnd() override {
        for (model::XmlEvents* reader : readers)
            reader->onEnd();
    }
    void onText(std::u16string_view text) override {
        for (model::XmlEvents* reader : readers)
            reader->onText(text);
    }

private:
    std::vector<model::XmlEvents*> readers;
};

} // namespace opc::inspection

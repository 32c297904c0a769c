#include <opc/model/CorePropertyField.hpp>

namespace opc::model {

const std::array<CorePropertyField, 15>& CorePropertyField::all() {
    using P = CoreProperties;
    constexpr Attribute NONE = Attribute::None;
    static constexpr std::array<CorePropertyField, 15> FIELDS = {{
        {"cp:category", &P::category, NONE},
        {"cp:contentStatus", &P::contentStatus, NONE},
        {"dcterms:created", &P::created, Attribute::Type},
        {"dc:creator", &P::creator, NONE},
        {"dc:description", &P::description, NONE},
        {"dc:identifier", &P::identifier, NONE},
        {"cp:keywords", &P::keywords, Attribute::Language},
        {"dc:language", &P::language, NONE},
        {"cp:lastModifiedBy", &P::lastModifiedBy, NONE},
        {"cp:lastPrinted", &P::lastPrinted, NONE},
        {"dcterms:modified", &P::modified, Attribute::Type},
        {"cp:revision", &P::revision, NONE},
        {"dc:subject", &P::subject, NONE},
        {"dc:title", &P::title, NONE},
        {"cp:version", &P::version, NONE},
    }};
    return FIELDS;
}

} // namespace opc::model

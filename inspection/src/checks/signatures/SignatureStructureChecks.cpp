#include "checks/signatures/SignatureChecks.hpp"

#include <algorithm>

namespace opc::inspection {

namespace {

/// The type of a reference to the properties that XAdES signs, which are in an object.
constexpr std::string_view SIGNED_PROPERTIES = "http://uri.etsi.org/01903#SignedProperties";

/// The form of each `Format` of a time, in the digits of a value.
struct TimeForm {
    const char* format;
    const char* value;
};

constexpr TimeForm TIME_FORMS[] = {
    {"YYYY", "dddd"},
    {"YYYY-MM", "dddd-dd"},
    {"YYYY-MM-DD", "dddd-dd-dd"},
    {"YYYY-MM-DDThh:mmTZD", "dddd-dd-ddTdd:ddZ"},
    {"YYYY-MM-DDThh:mm:ssTZD", "dddd-dd-ddTdd:dd:ddZ"},
    {"YYYY-MM-DDThh:mm:ss.sTZD", "dddd-dd-ddTdd:dd:dd.fZ"},
};

std::string trimmedText(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin);
}

/// @param form  d: a digit; f: some digits; Z: a zone, to the end
bool fits(std::string_view value, std::string_view form) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    for (; !form.empty(); form.remove_prefix(1)) {
        if (form[0] == 'Z') {
            const bool isOffset = !value.empty() && (value[0] == '+' || value[0] == '-');
            return value == "Z" || (isOffset && fits(value.substr(1), "dd:dd"));
        }
        if (value.empty() || !(form[0] == 'd' || form[0] == 'f' ? isDigit(value[0]) : value[0] == form[0]))
            return false;
        do
            value.remove_prefix(1);
        while (form[0] == 'f' && !value.empty() && isDigit(value[0]));
    }
    return value.empty();
}

class StructureChecks {
public:
    StructureChecks(const FoundSignature& signature, Findings& findings)
        : document(signature.document), part(*signature.part), isOwn(signature.form == SignatureForm::Own),
          findings(findings) {}

    void run() {
        checkCanonicalization();
        checkPackageObject();
        checkSignedReferences();
        for (const SignatureReference& reference : document.manifest)
            checkTransforms(reference);
        checkTime();
        if (document.packageObjectUsesCompatibility)
            add("M6.32", document.compatibilityPlace, "The package object uses markup compatibility");
    }

private:
    void add(std::string_view rule, const SignaturePlace& at, std::string message) {
        findings.add(rule, placeIn(part, at), std::move(message));
    }

    void checkCanonicalization() {
        const SignatureTransform method{document.canonicalizationMethod, {}, {}};
        if (!method.isCanonicalization())
            add("M6.34", document.canonicalizationPlace,
                "The signed information is canonicalized by \"" + method.algorithm + "\"");
    }

    void checkPackageObject() {
        const auto objects = document.packageObjects();
        if (objects.empty())
            add("M6.7", {}, "The signature has no object \"" + PACKAGE_OBJECT + "\"");
        else if (objects.size() > 1)
            add("M6.7", objects[1]->place,
                "The signature has more than one object \"" + PACKAGE_OBJECT + "\"");
        else if (const SignatureObject& object = *objects[0];
                 object.manifests != 1 || object.propertyLists != 1 || object.others != 0)
            add("M6.8", object.place,
                "The package object has " + std::to_string(object.manifests) + " Manifest, " +
                    std::to_string(object.propertyLists) + " SignatureProperties and " +
                    std::to_string(object.others) + " other elements");
    }

    void checkSignedReferences() {
        std::size_t toPackage = 0;
        for (const SignatureReference& reference : document.signedReferences) {
            const std::string id = reference.uri.empty() ? "" : reference.uri.substr(1);
            const bool isToldElsewhere = id == PACKAGE_OBJECT && document.packageObjects().empty();
            if (isToldElsewhere)
                continue;
            if (reference.uri.empty() || reference.uri[0] != '#' || document.ids.count(id) == 0)
                add("M6.5", reference.place,
                    "The signed information refers to \"" + reference.uri +
                        "\", which isn't in the signature");
            else if (document.ids.at(id) > 1 && id != PACKAGE_OBJECT)
                add("M6.5", reference.place,
                    "The signature has more than one element with the Id \"" + id + "\"");
            else if (id != PACKAGE_OBJECT && document.ids.at(id) == 1 && !isObject(id) && !isOwn &&
                     reference.type != SIGNED_PROPERTIES)
                add("S6.5", reference.place,
                    "The signed information refers to \"" + id + "\", which is no object");
            toPackage += reference.uri == "#" + PACKAGE_OBJECT ? 1 : 0;
            checkSignedTransforms(reference);
        }
        if (toPackage != 1 && document.packageObjects().size() == 1)
            add("M6.16", {},
                toPackage == 0
                    ? "The signed information doesn't refer to the package object: the signature says "
                      "nothing about the package"
                    : "The signed information refers to the package object more than once");
    }

    bool isObject(const std::string& id) const {
        return std::any_of(document.objects.begin(), document.objects.end(),
                           [&id](const SignatureObject& object) { return object.id == id; });
    }

    void checkSignedTransforms(const SignatureReference& reference) {
        const bool isToPackage = reference.uri == "#" + PACKAGE_OBJECT;
        for (const SignatureTransform& transform : reference.transforms)
            if (!transform.isCanonicalization())
                add(isToPackage ? "M6.6" : "M6.19", reference.place,
                    "The reference to \"" + reference.uri + "\" has the transform \"" + transform.algorithm +
                        "\"");
    }

    void checkTransforms(const SignatureReference& reference) {
        const auto& transforms = reference.transforms;
        const std::string of = "\"" + partNameOf(reference) + "\"";
        for (const SignatureTransform& transform : transforms)
            if (!transform.isCanonicalization() && !transform.isOfRelationships())
                return add("M6.12", reference.place,
                           "The reference to " + of + " has the transform \"" + transform.algorithm + "\"");
        // Of two relationship transforms, one behind the other, another rule tells (M6.35).
        for (std::size_t i = 0; i < transforms.size() && !isOwn; ++i)
            if (transforms[i].isOfRelationships() &&
                (i + 1 == transforms.size() ||
                 !(transforms[i + 1].isCanonicalization() || transforms[i + 1].isOfRelationships())))
                return add("M6.26", reference.place,
                           "No canonicalization follows the relationship transform of " + of);
    }

    void checkTime() {
        std::size_t times = 0;
        for (const SignatureProperty& property : document.properties) {
            if (property.id != "idSignatureTime")
                continue;
            ++times;
            if (!property.target.empty() && property.target != "#" + document.id)
                add("M6.14", property.place, "The time of signing is that of \"" + property.target + "\"");
            if (property.times != 1)
                add("M6.14", property.place,
                    "The property of the time has not one time, but " + std::to_string(property.times));
            else
                checkTimeForm(property);
        }
        const auto objects = document.packageObjects();
        const bool isToldElsewhere = objects.size() != 1 || objects[0]->propertyLists == 0;
        if (times > 1 || (times == 0 && !isOwn && !isToldElsewhere))
            add("M6.14", {}, "The signature has " + std::to_string(times) + " times of signing");
    }

    void checkTimeForm(const SignatureProperty& property) {
        const std::string format = trimmedText(property.timeFormat);
        const std::string value = trimmedText(property.timeValue);
        const auto* const form = std::find_if(std::begin(TIME_FORMS), std::end(TIME_FORMS),
                                              [&](const TimeForm& one) { return format == one.format; });
        if (form == std::end(TIME_FORMS))
            add("M6.23", property.place, "\"" + format + "\" is no format of a time");
        else if (!isOwn && !fits(value, form->value))
            add("M6.24", property.place, "The time \"" + value + "\" isn't in the format \"" + format + "\"");
    }

    const SignatureDocument& document;
    const PartView& part;
    const bool isOwn;
    Findings& findings;
};

} // namespace

void checkSignatureStructure(const FoundSignature& signature, Findings& findings) {
    StructureChecks(signature, findings).run();
}

} // namespace opc::inspection

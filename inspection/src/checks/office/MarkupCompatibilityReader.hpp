#pragma once

#include "checks/Findings.hpp"
#include "hash/TextHash.hpp"

#include <opc/model/XmlEvents.hpp>

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace opc::inspection {

/// Reads one part after the other and tells where it breaks the rules of markup compatibility.
class MarkupCompatibilityReader final : public model::XmlEvents {
public:
    static constexpr std::u16string_view NAMESPACE =
        u"http://schemas.openxmlformats.org/markup-compatibility/2006";

    explicit MarkupCompatibilityReader(Findings& findings) : findings(findings) {}

    /// @param isOfOffice  whether office programs read the part: only their vocabularies are known
    void begin(const std::string& part, bool isOfOffice);

    void onStart(const model::XmlElement& element, const model::XmlPlace& behind) override;
    void onEnd() override;
    void onText(std::u16string_view text) override;

private:
    enum class Role { Other, AlternateContent, Choice, Fallback };

    /// The text of a branch, as far as it takes to tell whether two are the same.
    struct Text {
        std::uint64_t hash = 0;
        std::size_t length = 0;
        void add(std::u16string_view piece);
        bool operator==(const Text& other) const { return hash == other.hash && length == other.length; }
    };

    /// An AlternateContent that is open.
    struct Alternatives {
        std::size_t choices = 0, fallbacks = 0;
        Text first, current;
        model::XmlPlace place{};
    };

    struct Level {
        Role role = Role::Other;
        std::size_t declared = 0, ignorables = 0; ///< how many there were outside
        bool isOpenContent = false;               ///< anything may stand within
        bool isText = false;                      ///< an element for text that is shown
    };

    void checkAttributes(const model::XmlElement& element);
    void checkPrefixes(std::u16string_view list, const char* attribute, bool areNames);
    void declare(const model::XmlElement& element);
    void takeIgnorable(std::u16string_view list);
    void checkProcessContent(std::u16string_view list);
    void checkMustUnderstand(std::u16string_view list);
    void checkRole(const model::XmlElement& element, Role role, Role parent);
    void checkRoleAttributes(const model::XmlElement& element, Role role);
    void checkVocabulary(const model::XmlElement& element);
    void checkVocabulary(std::u16string_view uri);
    void endAlternatives();
    void endBranch();

    const std::u16string* uriOf(std::u16string_view prefix) const;
    bool isIgnorable(std::u16string_view uri) const;
    void add(const char* rule, Severity severity, const std::string& message);

    Findings& findings;
    std::string part;
    bool knowsVocabulary = false;
    model::XmlPlace place{};
    std::vector<Level> levels;
    std::unordered_map<std::u16string, std::vector<std::u16string>, TextHash>
        namespaces;                                         ///< of a prefix, the innermost last
    std::vector<std::u16string> declared;                   ///< prefixes, in their order
    std::unordered_set<std::u16string, TextHash> ignorable; ///< namespaces
    std::vector<std::u16string> ignorables;                 ///< the same in their order
    std::vector<Alternatives> alternatives;
    std::set<std::u16string, std::less<>> told; ///< namespaces and prefixes that one finding is enough for
};

} // namespace opc::inspection
